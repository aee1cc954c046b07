#include <platform/qz_core/core_string.h>

#include <platform/qz_core/core_memory.h>

#include <cassert>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

// Shortest forms of a double take at most 24 characters, 64-bit integers at most 20.
constexpr int number_capacity = 32;

template <typename T>
CoreString& append_number(CoreString& string, T const& value) {
    char text[number_capacity];
    auto const result = std::to_chars(text, text + number_capacity, value);
    return string.append(std::string_view(text, static_cast<std::size_t>(result.ptr - text)));
}

// The sign of a NaN depends on the processor that made it, so it is not shown.
template <typename T>
CoreString& append_real(CoreString& string, T const& value) {
    return std::isnan(value) ? string.append("nan") : append_number(string, value);
}

}  // namespace

CoreString::CoreString(char const* text) {
    if (text) {
        append(std::string_view(text));
    }
}

CoreString::CoreString(char const* data, unsigned int const& length) {
    append(std::string_view(data, length));
}

CoreString::CoreString(std::string_view const& text) { append(text); }

CoreString::CoreString(CoreString const& other) { append(other.get_view()); }

CoreString::CoreString(CoreString&& other) noexcept { swap(other); }

CoreString::~CoreString() { core_release(m_data); }

CoreString& CoreString::operator=(CoreString const& other) {
    if (this != &other) {
        CoreString copy(other);
        swap(copy);
    }
    return *this;
}

CoreString& CoreString::operator=(CoreString&& other) noexcept {
    swap(other);
    return *this;
}

CoreString& CoreString::append(std::string_view const& text) {
    if (text.empty()) {
        return *this;
    }
    if (text.data() >= m_data && text.data() < m_data + m_length) {
        return append(CoreString(text));  // our own bytes would move while they are read
    }
    assert(text.size() < 0xFFFFFFFFu - m_length);
    grow_for(static_cast<unsigned int>(text.size()));
    std::memcpy(m_data + m_length, text.data(), text.size());
    m_length += static_cast<unsigned int>(text.size());
    m_data[m_length] = '\0';
    return *this;
}

CoreString& CoreString::append(char const* text) {
    return text ? append(std::string_view(text)) : *this;
}

CoreString& CoreString::append(char const& character) {
    char const copy = character;
    return append(std::string_view(&copy, 1));
}

CoreString& CoreString::append(int const& value) { return append_number(*this, value); }
CoreString& CoreString::append(unsigned int const& value) { return append_number(*this, value); }
CoreString& CoreString::append(long const& value) { return append_number(*this, value); }
CoreString& CoreString::append(unsigned long const& value) { return append_number(*this, value); }
CoreString& CoreString::append(long long const& value) { return append_number(*this, value); }
CoreString& CoreString::append(unsigned long long const& value) {
    return append_number(*this, value);
}
CoreString& CoreString::append(float const& value) { return append_real(*this, value); }
CoreString& CoreString::append(double const& value) { return append_real(*this, value); }

void CoreString::clear() {
    core_release(m_data);
    m_data = nullptr;
    m_allocated_size = 0;
    m_length = 0;
}

void CoreString::swap(CoreString& other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_allocated_size, other.m_allocated_size);
    std::swap(m_length, other.m_length);
}

// The first text fits exactly; from then on storage at least doubles.
void CoreString::grow_for(unsigned int const& extra) {
    unsigned long long const needed = 1ull + m_length + extra;
    if (needed <= m_allocated_size) {
        return;
    }
    unsigned long long size = 2ull * m_allocated_size;
    size = size < needed ? needed : size;
    size = size > 0xFFFFFFFFull ? 0xFFFFFFFFull : size;
    m_data = static_cast<char*>(core_reallocate(m_data, static_cast<std::size_t>(size)));
    m_allocated_size = static_cast<unsigned int>(size);
}
