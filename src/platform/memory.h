// What the system can be told about memory.
#ifndef ZR_PLATFORM_MEMORY_H
#define ZR_PLATFORM_MEMORY_H

#include <cstddef>

namespace zr::platform {

// The size and alignment of a large page, which costs a single fault and a single entry of the processor's address
// cache; 0 where a process cannot have any without special rights.
std::size_t LargePageSize();

// Asks for large pages behind the whole ones in [memory, memory + size), before they are first touched. A hint: the
// contents are the same with and without, and so is what releases the memory. Leaves errno alone.
void WantLargePages(void *memory, std::size_t size);

} // namespace zr::platform

#endif
