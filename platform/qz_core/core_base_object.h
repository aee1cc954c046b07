#pragma once

#include <platform/qz_core/core_class_info.h>
#include <platform/qz_core/export.h>

// The root of every class that the application handles by name.
class QZ_CORE_EXPORT CoreBaseObject {
  public:
    virtual ~CoreBaseObject();

    virtual bool is_kindof(CoreClassInfo const& info) const;
    // Bytes held by the object, shared storage counted only where it is owned. The root counts
    // nothing.
    virtual unsigned long long get_memory_size() const;
    virtual CoreClassInfo const& get_class_info() const;

    static CoreClassInfo const& class_info();

  protected:
    CoreBaseObject() = default;
    CoreBaseObject(CoreBaseObject const&) = default;
    CoreBaseObject& operator=(CoreBaseObject const&) = default;
};
