#include <platform/qz_core/core_memory.h>

#include <cstdio>
#include <cstdlib>

namespace {

void* checked(void* block, std::size_t const& size) {
    if (!block) {
        std::fprintf(stderr, "qz_core: out of memory (%zu bytes)\n", size);
        std::abort();
    }
    return block;
}

}  // namespace

void* core_allocate(std::size_t const& size) {
    return size == 0 ? nullptr : checked(std::malloc(size), size);
}

void* core_allocate_zeros(std::size_t const& size) {
    return size == 0 ? nullptr : checked(std::calloc(size, 1), size);
}

void* core_reallocate(void* block, std::size_t const& size) {
    if (size == 0) {
        std::free(block);
        return nullptr;
    }
    return checked(std::realloc(block, size), size);
}

void core_release(void* block) { std::free(block); }
