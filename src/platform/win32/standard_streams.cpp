// The streams that a program is born with.
#include "platform/standard_streams.h"

#include <fcntl.h>
#include <io.h>

namespace zr::platform {

bool MakeBinary(std::FILE *stream) {
    return stream != nullptr && _setmode(_fileno(stream), _O_BINARY) != -1;
}

} // namespace zr::platform
