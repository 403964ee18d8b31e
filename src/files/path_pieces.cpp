// Where drive, folder and file name of a path meet.
#include "files/path_pieces.h"

#include <cstring>

#include "platform/files.h"

namespace zr::files {
namespace {

using platform::path_size;

constexpr std::size_t part_limit = 255; // characters of a folder, a base name, an extension

// Whether base name and extension of the file name both fit.
bool FileFits(const char *file, std::size_t length) {
    if (length <= part_limit)
        return true;
    std::size_t base = length;
    while (base > 0 && file[base - 1] != '.')
        --base;
    base = base > 0 ? base - 1 : length; // the extension takes its point along
    return base <= part_limit && length - base <= part_limit;
}

} // namespace

PathPieces Divide(const char *path) {
    if (path == nullptr)
        return {"", 0, 0, 0};
    const void *end = std::memchr(path, '\0', path_size);
    const std::size_t length =
        end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - path) : path_size;
    const std::size_t drive = length >= 2 && path[1] == ':' ? 2 : 0;
    std::size_t file = length;
    while (file > drive && !IsSeparator(path[file - 1]))
        --file;
    if (file - drive > part_limit || !FileFits(path + file, length - file))
        return {path, 0, 0, 0};
    return {path, drive, file - drive, length - file};
}

} // namespace zr::files
