#pragma once

#include <tests/scratch_path.h>
#include <tools/qzpoly/commands/program.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

struct ToolRun {
    int status;
    std::string output;
    std::string errors;
};

inline ToolRun run_tool(std::vector<std::string> const& arguments) {
    std::vector<char const*> all = {"qzpoly"};
    for (std::string const& argument : arguments) {
        all.push_back(argument.c_str());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int const status = run_program(static_cast<int>(all.size()), all.data());
    std::string const output = testing::internal::GetCapturedStdout();
    return {status, output, testing::internal::GetCapturedStderr()};
}

// A folder of the running test.
class ToolFolder {
  public:
    ToolFolder() { std::filesystem::create_directories(m_path); }

    std::string get_path(std::string const& name) const { return (m_path / name).string(); }
    // Returns the path.
    std::string write(std::string const& name, std::string const& text) const {
        std::ofstream(get_path(name), std::ios::binary) << text;
        return get_path(name);
    }
    std::string read(std::string const& name) const {
        std::ifstream file(get_path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path m_path = get_scratch_path("");
};

// A crooked block with a wall that has a notch: quads and a concave polygon. `lift` moves its top.
inline std::string make_block(double const& lift) {
    std::string const top = std::to_string(1.0 + lift);
    return "v -1 0 -1\nv 1 0 -1\nv 1 0 1\nv -1 0 1\n"
           "v -1 " +
           top + " -1\nv 1.2 " + top + " -1\nv 1 " + top + " 1.1\nv -1 " + top +
           " 1\nv 0 0.3 1\n"
           "usemtl side\nf 4 3 2 1\nf 1 2 6 5\nf 2 3 7 6\nf 4 1 5 8\nf 3 9 4 8 7\n"
           "usemtl top\nf 5 6 7 8\n";
}
