#include <platform/qz_core/core_memory.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

namespace {

// Large blocks ask for large pages, which are faster to come by and to walk over. Only whole ones
// within the block are asked for, so none holds more memory; a system without them takes no notice.
void* prefer_large_pages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t const& size) {
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t page = 0x200000;
    std::uintptr_t const address = reinterpret_cast<std::uintptr_t>(block);
    std::uintptr_t const begin = (address + page - 1) / page * page;
    std::uintptr_t const end = (address + size) / page * page;
    if (block && size >= 2 * page && begin < end) {
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    }
#endif
    return block;
}

void* checked(void* block, std::size_t const& size) {
    if (!block) {
        std::fprintf(stderr, "qz_core: out of memory (%zu bytes)\n", size);
        std::abort();
    }
    return block;
}

}  // namespace

void* core_allocate(std::size_t const& size) {
    return size == 0 ? nullptr : checked(prefer_large_pages(std::malloc(size), size), size);
}

void* core_allocate_zeros(std::size_t const& size) {
    return size == 0 ? nullptr : checked(prefer_large_pages(std::calloc(size, 1), size), size);
}

void* core_reallocate(void* block, std::size_t const& size) {
    if (size == 0) {
        std::free(block);
        return nullptr;
    }
    return checked(prefer_large_pages(std::realloc(block, size), size), size);
}

void core_release(void* block) { std::free(block); }
