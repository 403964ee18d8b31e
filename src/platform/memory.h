// What the system can be told about memory.
#ifndef ZR_PLATFORM_MEMORY_H
#define ZR_PLATFORM_MEMORY_H

#include <cstddef>

namespace zr::platform {

// Has the system put memory behind the whole pages of [memory, memory + size) in one go, which costs less than a fault for
// each page when it is first touched. For memory that is about to be filled. A hint: the contents are the same with and
// without. Leaves errno alone.
void FillPagesAhead(void *memory, std::size_t size);

// Tells the system that the contents of the whole pages are no longer needed. It may take the memory when it runs short, and
// gives other then; as long as it does not, the next use costs far less than fresh memory. Until they are written, the
// contents are anything. Leaves errno alone. False where there is no such thing: nothing was done then.
bool ForgetContents(void *memory, std::size_t size);

} // namespace zr::platform

#endif
