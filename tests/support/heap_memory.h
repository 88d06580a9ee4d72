// How much memory this process holds on its heap, for the tests that watch a
// long-running show for growth from inside.
#pragma once

#include <cstddef>

// Bytes this process has allocated and not yet freed. Unlike the resident size
// it does not count freed memory the allocator keeps (the sanitizers hold
// freed blocks back for hundreds of megabytes), so it grows only with a leak.
size_t heapInUseBytes();
