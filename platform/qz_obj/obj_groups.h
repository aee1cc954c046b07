#pragma once

#include <platform/qz_obj/obj_list.h>

#include <string_view>

// Shading groups: numbered by their first polygon, and looked up by name in constant time, since a
// file may change the material before every polygon.
class ObjGroups {
  public:
    ObjGroups();

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

    struct Slot {
        unsigned int hash;
        unsigned int number;  // no_number: the slot is free
    };

    unsigned int get_number(std::string_view const& name);
    Slot& find_slot(unsigned int const& hash, std::string_view const& name);
    void grow_slots();

    ObjList<unsigned int> m_numbers;
    CoreArray<CoreString> m_names;
    CoreArray<Slot> m_slots;  // a power of two, at most half of them taken
    unsigned int m_seed;
    CoreString m_name;
    unsigned int m_number = no_number;  // of m_name, once a polygon has it
};
