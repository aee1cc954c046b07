#include <tools/qzpoly/models/dump_writer.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr unsigned long long largest_plain_count = 64;

unsigned int get_word(float const& value) {
    return std::isnan(value) ? 0x7FC00000u : std::bit_cast<unsigned int>(value);
}
unsigned int get_word(double const& value) { return get_word(static_cast<float>(value)); }
template <typename T>
requires std::is_unsigned_v<T>
unsigned int get_word(T const& value) { return value; }

using NumberText = char[32];

// As %.{p}g with the lowest precision p that reads back.
template <typename T>
std::string_view write_number(T const& value, NumberText& text) {
    char* const text_end = std::end(text);
    // No fewer digits than the shortest form has read back. At powers of two, where it need not be
    // the nearest of its length, %g may need more.
    int precision = 0;
    std::to_chars(text, text_end, value, std::chars_format::scientific);
    for (char const* at = text; *at != 'e'; ++at) {
        precision += *at >= '0' && *at <= '9' ? 1 : 0;
    }
    for (;; ++precision) {
        char const* const end =
            std::to_chars(text, text_end, value, std::chars_format::general, precision).ptr;
        T read = 0;
        std::from_chars(text, end, read);
        if (read == value) {
            return {text, end};
        }
    }
}

template <typename T>
unsigned long long get_digest(T const* entries, unsigned long long const& count) {
    unsigned long long hash = 0xcbf29ce484222325ull;
    for (unsigned long long i = 0; i < count; ++i) {
        unsigned int const word = get_word(entries[i]);
        for (unsigned int shift = 0; shift < 32; shift += 8) {
            hash = (hash ^ (word >> shift & 0xFFu)) * 0x100000001b3ull;
        }
    }
    return hash;
}

}  // namespace

std::string write_key(Core128BitHashKey const& key) {
    unsigned char bytes[sizeof key.words];
    std::memcpy(bytes, key.words, sizeof bytes);
    std::string text;
    for (unsigned char const byte : bytes) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

void DumpWriter::begin_object() {
    separate();
    put("{");
    m_is_first = true;
}

void DumpWriter::end_object() {
    put("}");
    m_is_first = false;
}

void DumpWriter::begin_list(char const* key) {
    begin_member(key);
    put("[");
    m_is_first = true;
}

void DumpWriter::end_list() {
    put("]");
    m_is_first = false;
}

void DumpWriter::write(char const* key, bool const& value) {
    begin_member(key);
    put(value ? "true" : "false");
}

void DumpWriter::write(char const* key, double const& value) {
    begin_member(key);
    put_number(value);
}

void DumpWriter::write(char const* key, CoreString const& name) {
    begin_member(key);
    put_name(name);
}

void DumpWriter::write(char const* key, CoreBasicArray<CoreString> const& names) {
    begin_list(key);
    for (CoreString const& name : names) {
        separate();
        put_name(name);
    }
    end_list();
}

void DumpWriter::write(char const* key, Core128BitHashKey const& hash_key) {
    begin_member(key);
    put("\"");
    put(write_key(hash_key));
    put("\"");
}

template <typename T>
void DumpWriter::write_array(char const* key, T const* entries, unsigned long long const& count) {
    begin_member(key);
    if (m_digests && count > largest_plain_count) {
        put("{\"count\":");
        put_number(count);
        put(std::is_floating_point_v<T> ? ",\"type\":\"f32\",\"fnv1a64\":\""
                                        : ",\"type\":\"u32\",\"fnv1a64\":\"");
        put_hexadecimal(get_digest(entries, count), 16);
        put("\"}");
        return;
    }
    put("[");
    m_is_first = true;
    for (unsigned long long i = 0; i < count; ++i) {
        separate();
        if constexpr (std::is_floating_point_v<T>) {
            put_number(entries[i]);
        } else {
            put_number(static_cast<unsigned long long>(entries[i]));
        }
    }
    end_list();
}

template void DumpWriter::write_array(char const*, float const*, unsigned long long const&);
template void DumpWriter::write_array(char const*, double const*, unsigned long long const&);
template void DumpWriter::write_array(char const*, unsigned int const*, unsigned long long const&);
template void DumpWriter::write_array(char const*, unsigned short const*,
                                      unsigned long long const&);
template void DumpWriter::write_array(char const*, unsigned char const*, unsigned long long const&);

void DumpWriter::finish() { put("\n"); }

void DumpWriter::begin_member(char const* key) {
    separate();
    put("\"");
    put(key);
    put("\":");
}

void DumpWriter::separate() {
    if (!m_is_first) {
        put(",");
    }
    m_is_first = false;
}

void DumpWriter::put(std::string_view const& text) {
    std::fwrite(text.data(), 1, text.size(), m_stream);
}

void DumpWriter::put_name(CoreString const& name) {
    put("\"");
    for (char const character : name.get_view()) {
        auto const byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte > 0x7E) {
            put("\\u00");
            put_hexadecimal(byte, 2);
        } else {
            put(character == '"' || character == '\\' ? "\\" : "");
            put({&character, 1});
        }
    }
    put("\"");
}

void DumpWriter::put_hexadecimal(unsigned long long const& value, int const& digit_count) {
    for (int digit = digit_count - 1; digit >= 0; --digit) {
        std::fputc("0123456789abcdef"[value >> (4 * digit) & 15u], m_stream);
    }
}

void DumpWriter::put_number(unsigned long long const& value) {
    char text[24];
    put({text, std::to_chars(text, text + sizeof text, value).ptr});
}

template <typename T>
requires std::is_floating_point_v<T>
void DumpWriter::put_number(T const& value) {
    NumberText text;
    if (std::isfinite(value)) {
        put(write_number(value, text));
    } else {
        put(std::isnan(value) ? "null" : value > 0 ? "1e999" : "-1e999");
    }
}

void DumpWriter::write_integer(char const* key, unsigned long long const& value) {
    begin_member(key);
    put_number(value);
}
