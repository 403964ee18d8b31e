// The streams that a program is born with.
#ifndef ZR_PLATFORM_STANDARD_STREAMS_H
#define ZR_PLATFORM_STANDARD_STREAMS_H

#include <cstdio>

namespace zr::platform {

// From now on the bytes of `stream` pass as they are; where the system translates line ends, that ends. For programs that
// put out finished text; call it before the first use of the stream. Answers true on success.
bool MakeBinary(std::FILE *stream);

} // namespace zr::platform

#endif
