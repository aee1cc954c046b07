#pragma once

#include <platform/qz_core/core_string.h>
#include <platform/qz_core/export.h>

// The run-time record of a class: its name, its parent's record and the function that destroys its
// instances. Records live in a process-wide registry until the process ends and may be read from
// any thread.
class QZ_CORE_EXPORT CoreClassInfo {
  public:
    // Destroys one object, or an array made by new[]; true when that was done or nothing was to do.
    using Destructor = bool (*)(void* object, bool const& is_array);
    // Runs once for a new record, before anybody else can see it; must not call the registry.
    using Initialiser = void (*)(CoreClassInfo& info);

    // Registers a class and returns its record. A name that is taken keeps its first record, which
    // is returned. `parent` is null for a root; `initialiser` may be null. Thread-safe.
    static CoreClassInfo const& new_class(CoreString const& name, Destructor const& destructor,
                                          CoreClassInfo const* parent,
                                          Initialiser const& initialiser);
    // The record of a name, or null.
    static CoreClassInfo const* get_class(CoreString const& name);

    CoreString const& get_name() const { return m_name; }
    CoreClassInfo const* get_parent() const { return m_parent; }
    // The class is `other` or descends from it.
    bool is_kindof(CoreClassInfo const& other) const;

    // Destroys `object`, which must be null, of this class or of one that descends from it, through
    // the class's destructor; false when the class has none.
    bool destroy(void* object, bool const& is_array) const;

  private:
    CoreString m_name;
    Destructor m_destructor = nullptr;
    CoreClassInfo const* m_parent = nullptr;
};

// How many elements an array has that new[] made of a class with a destructor: they stand in the
// word before the first (Itanium C++ ABI, 2.7).
QZ_CORE_EXPORT unsigned long long core_get_element_count(void const* array);

// The class destructor that classes hand to the registry. An array is one made by new[], of T or of
// a class that descends from it: the elements of that one have another size, so its own record
// destroys them. An array of no elements is just released.
template <typename T>
bool core_destroy(void* object, bool const& is_array) {
    T* const first = static_cast<T*>(object);
    if (!object || !is_array) {
        delete first;
        return true;
    }
    if (core_get_element_count(object) != 0 && &first->get_class_info() != &T::class_info()) {
        return first->get_class_info().destroy(object, true);
    }
    delete[] first;
    return true;
}
