#pragma once

#include <platform/qz_core.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

// Two hexadecimal digits for each byte, in storage order.
std::string write_key(Core128BitHashKey const& key);

// Writes one JSON object to a stream, member by member, in a form that is the same on every
// machine:
// - floats in the fewest of 9 significant digits that read back, doubles in the fewest of 17, as %g
//   has them; -0 as -0, a NaN as null, infinities as 1e999 and -1e999;
// - names byte by byte, bytes outside of 0x20 to 0x7E as \u00XX;
// - arrays flat, or with `digests` those of more than 64 entries as their count, their type and the
//   64-bit FNV-1a hash of their entries as little-endian 32-bit words: doubles narrowed, smaller
//   integers widened, a NaN as 0x7FC00000.
class DumpWriter {
  public:
    DumpWriter(std::FILE* stream, bool const& digests) : m_stream(stream), m_digests(digests) {}

    void begin_object();  // the whole, or an entry of a list
    void end_object();
    void begin_list(char const* key);
    void end_list();

    void write(char const* key, bool const& value);
    void write(char const* key, unsigned int const& value) { write_integer(key, value); }
    void write(char const* key, unsigned long long const& value) { write_integer(key, value); }
    void write(char const* key, double const& value);
    void write(char const* key, CoreString const& name);
    void write(char const* key, CoreBasicArray<CoreString> const& names);
    void write(char const* key, Core128BitHashKey const& hash_key);

    // `entries` has `count` numbers of type T.
    template <typename T>
    void write_array(char const* key, T const* entries, unsigned long long const& count);

    void finish();

  private:
    void begin_member(char const* key);
    void separate();
    void put(std::string_view const& text);
    void put_name(CoreString const& name);
    void put_hexadecimal(unsigned long long const& value, int const& digit_count);
    void put_number(unsigned long long const& value);
    template <typename T>
    requires std::is_floating_point_v<T>
    void put_number(T const& value);
    void write_integer(char const* key, unsigned long long const& value);

    std::FILE* m_stream;
    bool m_digests;
    bool m_is_first = true;  // of its object or list
};
