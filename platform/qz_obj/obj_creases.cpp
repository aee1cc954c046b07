#include <platform/qz_obj/obj_creases.h>

#include <platform/qz_obj/obj_number.h>

#include <charconv>

namespace {

// The counts of "2/1/0"; ones that are missing are 0.
bool parse_counts(std::string_view const& word, unsigned int (&counts)[3]) {
    char const* at = word.data();
    char const* const end = at + word.size();
    for (unsigned int i = 0; i < 3; ++i) {
        auto const result = std::from_chars(at, end, counts[i]);
        if (result.ec != std::errc()) {
            return false;
        }
        at = result.ptr;
        if (at == end) {
            return true;
        }
        if (*at != '/') {
            return false;
        }
        ++at;
    }
    return false;
}

}  // namespace

void ObjCreases::begin_tag() {
    begin_edge();
    m_expected = NAME;
    m_first_number = 0;
    m_indices_left = 0;
    m_sharpnesses_left = 0;
}

void ObjCreases::begin_edge() {
    m_expected = SHARPNESS;
    m_is_other_tag = false;
    m_first_number = 1;
    m_indices_left = 2;
    m_sharpnesses_left = 1;
    m_first_index = m_indices.get_count();
    m_first_sharpness = m_sharpnesses.get_count();
}

bool ObjCreases::add_word(std::string_view const& word) {
    switch (m_expected) {
    case NAME:
        m_is_other_tag = word != "crease";
        m_expected = COUNTS;
        return !m_is_other_tag;
    case COUNTS:
        m_expected = VALUES;
        return add_counts(word);
    case SHARPNESS:
        m_expected = VALUES;
        return add_sharpness(word);
    case VALUES:
        return m_indices_left != 0 ? add_index(word) : add_sharpness(word);
    }
    return false;
}

bool ObjCreases::add_counts(std::string_view const& word) {
    unsigned int counts[3] = {0, 0, 0};
    bool const is_good = parse_counts(word, counts);
    m_indices_left = counts[0];
    m_sharpnesses_left = counts[1];
    return is_good;
}

bool ObjCreases::add_index(std::string_view const& word) {
    int value = 0;
    char const* const end = word.data() + word.size();
    auto const result = std::from_chars(word.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument) {
        return false;
    }
    bool const is_known = result.ec == std::errc() && value >= static_cast<int>(m_first_number);
    --m_indices_left;
    return m_indices.append(is_known ? value - static_cast<int>(m_first_number) : -1, ~0u);
}

bool ObjCreases::add_sharpness(std::string_view const& word) {
    float value = 0.0f;
    if (m_sharpnesses_left == 0 || obj_parse_number(word, value) != ObjNumber::WHOLE) {
        return false;
    }
    --m_sharpnesses_left;
    return m_sharpnesses.append(value > 0.0f ? value : 0.0f, ~0u);  // a NaN is no sharpness
}

bool ObjCreases::has_good_counts() const {
    unsigned int const indices = m_indices.get_count() - m_first_index;
    unsigned int const sharpnesses = m_sharpnesses.get_count() - m_first_sharpness;
    return m_indices_left == 0 && m_sharpnesses_left == 0 && indices != 0 && indices % 2 == 0 &&
           (sharpnesses == 1 || sharpnesses == indices / 2);
}

void ObjCreases::end_statement(ObjReport& report) {
    if (m_is_other_tag || m_expected == NAME) {
        return;
    }
    if (!has_good_counts()) {
        m_indices.truncate(m_first_index);
        m_sharpnesses.truncate(m_first_sharpness);
        report.warn(ObjReport::CREASE_FORM);
        return;
    }
    float const sharpness = m_sharpnesses.get_data()[m_first_sharpness];
    while (m_sharpnesses.get_count() < m_indices.get_count() / 2) {
        m_sharpnesses.append(sharpness, ~0u);
    }
    for (unsigned int i = m_first_index; i < m_indices.get_count(); ++i) {
        m_forward.note(static_cast<unsigned int>(m_indices.get_data()[i]), report.line);
    }
}

void ObjCreases::finish(unsigned int const& point_count, ObjReport& report,
                        ResourceImportData& data) {
    if (m_forward.is_beyond(point_count)) {
        unsigned int const count = m_sharpnesses.get_count();
        int* const indices = m_indices.get_data();
        float* const sharpnesses = m_sharpnesses.get_data();
        unsigned int kept = 0;
        for (unsigned int i = 0; i < count; ++i) {
            if (static_cast<unsigned int>(indices[2 * i]) < point_count &&
                static_cast<unsigned int>(indices[2 * i + 1]) < point_count) {
                indices[2 * kept] = indices[2 * i];
                indices[2 * kept + 1] = indices[2 * i + 1];
                sharpnesses[kept++] = sharpnesses[i];
            }
        }
        m_indices.truncate(2 * kept);
        m_sharpnesses.truncate(kept);
        report.warn_at(ObjReport::CREASE_RANGE, m_forward.line, count - kept);
    }
    data.crease_indices = m_indices.take();
    data.crease_sharpnesses = m_sharpnesses.take();
}
