#pragma once

#include <platform/qz_obj/obj_list.h>

#include <map>
#include <string_view>

// Shading groups: numbered by their first polygon, and looked up by name, perhaps before every
// polygon, in an ordered map: no names can be made that slow it down, as they can for a hash table.
class ObjGroups {
  public:
    void reserve(unsigned long long const& size, unsigned int const& bytes_per_polygon,
                 unsigned int const& largest_count) {
        m_numbers.reserve(size, bytes_per_polygon, largest_count);
    }
    // All polygons up to `polygon_count` belong to the last name that was set.
    void assign(unsigned int const& polygon_count);
    // Polygons that follow belong to this name, or to "default" when it is empty.
    void set_name(std::string_view const& name);

    // One number per polygon that was assigned.
    CoreArray<unsigned int> take_numbers() { return m_numbers.take(); }
    CoreArray<CoreString> take_names();

  private:
    static constexpr unsigned int no_number = ~0u;

    unsigned int get_number(std::string_view const& name);

    ObjList<unsigned int> m_numbers;
    CoreArray<CoreString> m_names;
    std::map<std::string_view, unsigned int> m_numbers_by_name;  // of m_names
    CoreString m_name{"default"};
    unsigned int m_number = no_number;  // of m_name, once a polygon has it
};
