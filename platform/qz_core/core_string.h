#pragma once

#include <platform/qz_core/export.h>

#include <string_view>

// A string of bytes, UTF-8 or not: nothing is validated, and a NUL may stand inside. The bytes are
// followed by a NUL, so `get_data` serves as a C string too; it is never null. Copies are deep and
// hold exactly their bytes. At most 2^32 - 2 bytes.
class QZ_CORE_EXPORT CoreString {
  public:
    CoreString() = default;
    CoreString(char const* text);  // a C string; null gives the empty string
    CoreString(char const* data, unsigned int const& length);
    explicit CoreString(std::string_view const& text);
    CoreString(CoreString const& other);
    CoreString(CoreString&& other) noexcept;
    ~CoreString();

    CoreString& operator=(CoreString const& other);
    CoreString& operator=(CoreString&& other) noexcept;

    char const* get_data() const { return m_data ? m_data : ""; }
    unsigned int const& get_length() const { return m_length; }
    // Bytes of storage, the final NUL included; 0 without storage.
    unsigned int const& get_allocated_size() const { return m_allocated_size; }
    bool is_empty() const { return m_length == 0; }
    std::string_view get_view() const { return {get_data(), m_length}; }

    // Appending returns the string itself. Integers are written in decimal; a float or double in
    // its shortest decimal form that reads back to the same value (30 gives "30"), whatever the
    // locale; infinities as "inf", a NaN as "nan".
    CoreString& append(std::string_view const& text);
    CoreString& append(CoreString const& text) { return append(text.get_view()); }
    CoreString& append(char const* text);
    CoreString& append(char const& character);
    CoreString& append(int const& value);
    CoreString& append(unsigned int const& value);
    CoreString& append(long const& value);
    CoreString& append(unsigned long const& value);
    CoreString& append(long long const& value);
    CoreString& append(unsigned long long const& value);
    CoreString& append(float const& value);
    CoreString& append(double const& value);

    void clear();
    void swap(CoreString& other) noexcept;

    friend bool operator==(CoreString const& a, CoreString const& b) {
        return a.get_view() == b.get_view();
    }
    friend auto operator<=>(CoreString const& a, CoreString const& b) {
        return a.get_view() <=> b.get_view();
    }

  private:
    void grow_for(unsigned int const& extra);

    char* m_data = nullptr;
    unsigned int m_allocated_size = 0;
    unsigned int m_length = 0;
};
