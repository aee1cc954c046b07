#pragma once

#include <platform/qz_core.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

// The list of published models, and meshes told in its words.

inline std::vector<std::string> split(std::string const& line, std::string const& separator) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + separator.size()) {
        end = line.find(separator, begin);
        parts.push_back(line.substr(begin, end - begin));
    }
    return parts;
}

// The cells of the table whose first line begins with `head`.
inline std::vector<std::vector<std::string>> read_model_rows(std::string const& folder,
                                                             std::string const& head) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream list(folder + "/MODELS.md");
    bool is_in_table = false;
    for (std::string line; std::getline(list, line);) {
        is_in_table = line.starts_with(head) || (is_in_table && line.starts_with("|"));
        if (is_in_table && line.starts_with("| ") && !line.starts_with(head)) {
            rows.push_back(split(line.substr(2), " | "));
        }
    }
    return rows;
}

template <typename T>
std::string get_crc32(CoreArray<T> const& values) {
    unsigned int crc = ~0u;
    unsigned char const* const bytes = reinterpret_cast<unsigned char const*>(values.get_data());
    for (std::size_t i = 0; i < sizeof(T) * values.get_count(); ++i) {
        crc ^= bytes[i];
        for (unsigned int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ (crc % 2 != 0 ? 0xEDB88320u : 0u);
        }
    }
    char text[16];
    std::snprintf(text, sizeof text, "%08x", ~crc);
    return text;
}

// "3:48 4:240": polygons by corner count.
inline std::string describe_faces(CoreArray<unsigned int> const& corner_counts) {
    std::map<unsigned int, unsigned int> numbers;
    for (unsigned int const& count : corner_counts) {
        ++numbers[count];
    }
    std::string text;
    for (auto const& [count, number] : numbers) {
        text.append(text.empty() ? "" : " ").append(std::to_string(count));
        text.append(":").append(std::to_string(number));
    }
    return text.empty() ? "-" : text;
}

// "Sky:3, Ink:1": polygons by group.
inline std::string describe_groups(CoreArray<CoreString> const& names,
                                   CoreArray<unsigned int> const& groups) {
    std::string text;
    for (unsigned int i = 0; i < names.get_count(); ++i) {
        text.append(i == 0 ? "" : ", ").append(names[i].get_view()).append(":");
        text.append(std::to_string(std::count(groups.begin(), groups.end(), i)));
    }
    return text.empty() ? "-" : text;
}
