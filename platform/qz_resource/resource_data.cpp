#include <platform/qz_resource/resource_data.h>

ResourceData::ResourceData() = default;

ResourceData::ResourceData(ResourceData const& other) : CoreBaseObject(other) {}

ResourceData::~ResourceData() = default;

ResourceData& ResourceData::operator=(ResourceData const& other) {
    if (this != &other) {
        CoreBaseObject::operator=(other);
        m_import_data.reset();
    }
    return *this;
}

CoreClassInfo const& ResourceData::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "ResourceData", core_destroy<ResourceData>, &CoreBaseObject::class_info(), nullptr);
    return info;
}

CoreClassInfo const& ResourceData::get_class_info() const { return class_info(); }

Core128BitHashKey ResourceData::get_hash_key() const { return CoreHash::null_key(); }

bool ResourceData::is_serializable() const { return false; }

unsigned char* ResourceData::serialize(unsigned long long& size) const {
    size = 0;
    return nullptr;
}

bool ResourceData::deserialize(unsigned char const*, unsigned long long const&) { return false; }

void ResourceData::set_import_data(ResourceImportData* import_data) {
    m_import_data.reset(import_data);
}
