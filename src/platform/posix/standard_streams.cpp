// The streams that a program is born with: nothing is translated here.
#include "platform/standard_streams.h"

namespace zr::platform {

bool MakeBinary(std::FILE *stream) {
    return stream != nullptr;
}

} // namespace zr::platform
