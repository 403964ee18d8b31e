// Puts a new content in place of a file so that nobody ever meets half of it.
#ifndef ZRTOOL_SAFE_WRITE_H
#define ZRTOOL_SAFE_WRITE_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace zrtool {

// Writes `bytes`, as they are, as the content of the file `path` (a path of the host). The content goes to a temporary
// file beside the target, is flushed to the disk, and is moved over the target, whose mode is kept; a symbolic link
// stays, and its target is replaced. A missing file is made. A device or pipe is written to directly.
// Failure with InputOutput when any step fails: the old file is then as it was, and the temporary file is gone.
void ReplaceFile(const std::string &path, std::string_view bytes);

// The steps that reach the disk, so that a test can make each of them fail. Paths are in the library's form, results
// are true on success, errno tells the reason of a failure.
struct FileSteps {
    bool (*create_beside)(const char *target, char *out, std::size_t size);
    bool (*write)(std::FILE *stream, std::string_view bytes);
    bool (*flush_to_disk)(std::FILE *stream);
    bool (*copy_mode)(const char *from, const char *to);
    bool (*move_over)(const char *from, const char *to);
};
extern FileSteps file_steps;

} // namespace zrtool

#endif
