#include "core/zeroed_array.h"

#include <cstdlib>
#include <new>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#define QUILLON_HAVE_ANON_MMAP 1
#endif

namespace quillon::detail {

ZeroedMemory AllocateZeroed(std::size_t bytes) {
#ifdef QUILLON_HAVE_ANON_MMAP
    // Mapped directly: the heap may hand back used memory, which calloc clears.
    constexpr std::size_t kMapFrom = std::size_t{1} << 20;
    if (bytes >= kMapFrom) {
        void* p = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (p != MAP_FAILED) return {p, true};
    }
#endif
    void* p = std::calloc(bytes > 0 ? bytes : 1, 1);
    if (!p) throw std::bad_alloc();
    return {p, false};
}

void FreeZeroed(ZeroedMemory memory, std::size_t bytes) {
#ifdef QUILLON_HAVE_ANON_MMAP
    if (memory.mapped) {
        ::munmap(memory.data, bytes);
        return;
    }
#endif
    std::free(memory.data);
}

}  // namespace quillon::detail
