#pragma once

#include <platform/qz_core.h>
#include <platform/qz_resource/export.h>
#include <platform/qz_resource/resource_import_data.h>

#include <memory>

// An object that the application caches by its key, budgets by its size, and may store as bytes.
class QZ_RESOURCE_EXPORT ResourceData : public CoreBaseObject {
  public:
    ~ResourceData() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;

    // Resources of equal content have equal keys; the null key means that nothing is known.
    virtual Core128BitHashKey get_hash_key() const;
    // False: `serialize` gives no block, and `deserialize` takes none.
    virtual bool is_serializable() const;
    // A block that the caller releases with `free`, or null; `size` in bytes.
    virtual unsigned char* serialize(unsigned long long& size) const;
    // False when the block is refused; the object is then unchanged. The block stays the caller's.
    virtual bool deserialize(unsigned char const* block, unsigned long long const& size);

    // Takes over `import_data`, which may be null; what was held before is deleted. Copies of the
    // resource start without.
    void set_import_data(ResourceImportData* import_data);
    ResourceImportData const* get_import_data() const { return m_import_data.get(); }

  protected:
    ResourceData();
    ResourceData(ResourceData const& other);
    ResourceData& operator=(ResourceData const& other);

  private:
    std::unique_ptr<ResourceImportData> m_import_data;
};
