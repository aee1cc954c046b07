#include <platform/qz_obj/obj_groups.h>

#include <algorithm>

void ObjGroups::assign(unsigned int const& polygon_count) {
    unsigned int const count = polygon_count - m_numbers.get_count();
    if (count == 0) {
        return;
    }
    if (m_number == no_number) {
        m_number = get_number(m_name.get_view());
    }
    m_numbers.make_room(count, ~0u);
    std::fill_n(m_numbers.get_end(), count, m_number);
    m_numbers.commit(count);
}

void ObjGroups::set_name(std::string_view const& name) {
    std::string_view const wanted = name.empty() ? "default" : name;
    if (wanted != m_name.get_view()) {
        m_name = CoreString(wanted);
        m_number = no_number;
    }
}

CoreArray<CoreString> ObjGroups::take_names() {
    m_names.shrink_to_fit();
    return std::move(m_names);
}

unsigned int ObjGroups::get_number(std::string_view const& name) {
    auto const found = m_numbers_by_name.find(name);
    if (found != m_numbers_by_name.end()) {
        return found->second;
    }
    unsigned int const number = m_names.get_count();
    m_names.append(CoreString(name));
    m_numbers_by_name.emplace(m_names[number].get_view(), number);
    return number;
}
