// The last step of a rewrite: the temporary file over the settings file.
#include "settings/ini_copy.h"

#include <cstddef>
#include <cstdint>

#include <zrclb/files.h>

#include "platform/files.h"
#include "platform/raw_file.h"
#include "platform/raw_output.h"

namespace zr::settings {

namespace {

using platform::done;

int WriteBytes(std::string_view bytes, platform::RawOutput &target) {
    const int code = target.Reserve(bytes.size());
    return code == done ? target.Write(bytes.data(), bytes.size()) : code;
}

// A file that was written a moment ago. What it should hold and doesn't must not pass for its end.
int WriteFile(const char *path, platform::RawOutput &target) {
    platform::RawFile source;
    platform::FileStatus status;
    if (!platform::GetFileStatus(path, status) || !source.Open(path))
        return platform::file_not_found;
    int code = target.Reserve(status.size);
    while (code == done && target.Written() < status.size) {
        char block[32768];
        const std::ptrdiff_t count = source.Read(block, sizeof block);
        code = count > 0 ? target.Write(block, static_cast<std::size_t>(count)) : int{platform::io_failure};
    }
    return code;
}

} // namespace

int CopyOverFile(const char *temporary, const char *path, std::string_view whole) {
    platform::RawOutput target;
    int code = target.Open(path);
    if (code == platform::file_not_found)
        return fio_copy("", temporary, "", path);
    if (code == done)
        code = whole.empty() ? WriteFile(temporary, target) : WriteBytes(whole, target);
    if (code == done)
        code = target.Cut();
    const int closing = target.Close();
    return code != done ? code : closing;
}

} // namespace zr::settings
