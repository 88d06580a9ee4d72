#include "tests/support/heap_memory.h"

#include <malloc.h>


#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KASKADE_HEAP_FROM_SANITIZER 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define KASKADE_HEAP_FROM_SANITIZER 1
#endif

#ifdef KASKADE_HEAP_FROM_SANITIZER
// The sanitizer runtime's own count (GCC ships the function, not its header).
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

size_t heapInUseBytes() {
#ifdef KASKADE_HEAP_FROM_SANITIZER
    // The sanitizer replaces malloc; glibc's own counters see none of it.
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}
