#include <platform/qz_obj/obj_groups.h>

#include <algorithm>
#include <cstdint>

namespace {

constexpr unsigned int first_slot_count = 64;
constexpr std::string_view default_name = "default";

}  // namespace

// The seed differs from load to load, so that no file can be made whose names all collide. Numbers
// follow the order of the polygons, whatever the seed.
ObjGroups::ObjGroups()
    : m_seed(static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(this) >> 4)),
      m_name(default_name) {
    m_slots.resize(first_slot_count);
    m_slots.fill({0, no_number});
}

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
    std::string_view const wanted = name.empty() ? default_name : name;
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
    Core128BitHashKey key;
    CoreHash::generate_murmur3(name.data(), name.size(), key, m_seed);
    unsigned int const hash = static_cast<unsigned int>(key.words[0]);
    Slot* slot = &find_slot(hash, name);
    if (slot->number == no_number) {
        if (m_names.get_count() >= m_slots.get_count() / 2) {
            grow_slots();
            slot = &find_slot(hash, name);
        }
        *slot = {hash, m_names.get_count()};
        m_names.append(CoreString(name));
    }
    return slot->number;
}

ObjGroups::Slot& ObjGroups::find_slot(unsigned int const& hash, std::string_view const& name) {
    unsigned int const mask = m_slots.get_count() - 1;
    unsigned int at = hash & mask;
    while (m_slots[at].number != no_number &&
           (m_slots[at].hash != hash || m_names[m_slots[at].number].get_view() != name)) {
        at = (at + 1) & mask;
    }
    return m_slots[at];
}

void ObjGroups::grow_slots() {
    CoreArray<Slot> old;
    old.swap(m_slots);
    m_slots.resize(old.get_count() * 2);
    m_slots.fill({0, no_number});
    unsigned int const mask = m_slots.get_count() - 1;
    for (Slot const& slot : old) {
        if (slot.number != no_number) {
            unsigned int at = slot.hash & mask;
            while (m_slots[at].number != no_number) {
                at = (at + 1) & mask;
            }
            m_slots[at] = slot;
        }
    }
}
