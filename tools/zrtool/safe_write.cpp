// Puts a new content in place of a file so that nobody ever meets half of it.
#include "safe_write.h"

#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "platform/files.h"
#include "session.h"

namespace zrtool {

namespace {

using zr::platform::path_size;

bool WriteAll(std::FILE *stream, std::string_view bytes) {
    return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
}

[[noreturn]] void Fail(const std::string &path, const char *what) {
    const int reason = errno;
    throw Failure(InputOutput, path + ": " + what + (reason == 0 ? "" : std::string(": ") + std::strerror(reason)));
}

std::string HostForm(const std::string &path) {
    std::array<char, 4 * path_size> host;
    return zr::platform::HostPath(path.c_str(), host.data(), host.size()) ? host.data() : std::string();
}

// The seam takes paths in the library's form. A path of the host is one as it stands, unless the host gives a backslash
// or a drive letter no meaning while the library does.
void RefuseForeignName(const std::string &path) {
    errno = 0;
    if (HostForm(path).empty())
        Fail(path, "not a usable file name");
    const bool hostKnowsDrives = HostForm("\\a") != "/a";
    const bool hasDrive = path.size() > 1 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0])) != 0;
    if (!hostKnowsDrives && (hasDrive || path.find('\\') != std::string::npos))
        throw Failure(InputOutput, path + ": a name with a backslash or a drive cannot be written here");
}

enum class Kind {
    Missing,
    Regular,
    Folder,
    Other
};

Kind KindOf(const std::string &path) {
    try {
        std::error_code error;
        switch (std::filesystem::status(path, error).type()) {
        case std::filesystem::file_type::not_found:
            return Kind::Missing;
        case std::filesystem::file_type::directory:
            return Kind::Folder;
        case std::filesystem::file_type::regular:
        case std::filesystem::file_type::unknown:
        case std::filesystem::file_type::none: // a status that cannot be had fails again, and is told, further on
            return Kind::Regular;
        default:
            return Kind::Other;
        }
    } catch (const std::system_error &) { // a name that is not in the encoding that the standard library expects
        zr::platform::FileStatus status = {};
        if (!zr::platform::GetFileStatus(path.c_str(), status))
            return Kind::Missing;
        return status.folder ? Kind::Folder : Kind::Regular;
    }
}

// Removes the temporary file on every way out, until it has become the target.
class Temporary {
public:
    explicit Temporary(const std::string &path) : m_path(path) {}
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;
    ~Temporary() {
        if (!m_path.empty())
            zr::platform::RemoveFile(m_path.c_str());
    }
    const char *Path() const { return m_path.c_str(); }
    void Keep() { m_path.clear(); }

private:
    std::string m_path;
};

// Writes, flushes and closes; the stream is closed in every case.
void Fill(const std::string &shown, std::FILE *stream, std::string_view bytes, bool toDisk) {
    errno = 0;
    const bool written = file_steps.write(stream, bytes) && std::fflush(stream) == 0;
    const bool flushed = written && (!toDisk || file_steps.flush_to_disk(stream));
    const int reason = errno;
    const bool closed = std::fclose(stream) == 0;
    if (!flushed)
        errno = reason;
    if (!flushed || !closed)
        Fail(shown, "cannot be written");
}

void WriteDirectly(const std::string &path, std::string_view bytes) {
    errno = 0;
    std::FILE *stream = std::fopen(path.c_str(), "wb");
    if (stream == nullptr)
        Fail(path, "cannot be opened for writing");
    Fill(path, stream, bytes, false);
}

std::string TargetOf(std::string path) {
    if (path.starts_with("//")) // a plain path of the host, but the start of a network name to the library
        path.erase(0, path.find_first_not_of('/') - 1);
    RefuseForeignName(path);
    std::array<char, path_size> target;
    errno = 0;
    if (!zr::platform::FollowLinks(path.c_str(), target.data(), target.size()))
        Fail(path, "cannot be followed to its file");
    return target.data();
}

std::string CreateTemporary(const std::string &path, const std::string &target) {
    std::array<char, path_size> made;
    errno = 0;
    if (!file_steps.create_beside(target.c_str(), made.data(), made.size()))
        Fail(path, "no temporary file can be made beside it");
    return made.data();
}

} // namespace

FileSteps file_steps = {zr::platform::CreateBeside, WriteAll, zr::platform::FlushToDisk, zr::platform::CopyMode,
                        zr::platform::MoveOver};

void ReplaceFile(const std::string &path, std::string_view bytes) {
    const Kind kind = KindOf(path);
    if (kind == Kind::Folder)
        throw Failure(InputOutput, path + ": is a folder");
    if (kind == Kind::Other)
        return WriteDirectly(path, bytes);

    const std::string target = TargetOf(path);
    Temporary temporary(CreateTemporary(path, target));
    // The temporary file is private. A new target is to get the mode that the user's own new files get, so the private
    // one makes room for an ordinary one of the same name.
    if (kind == Kind::Missing)
        zr::platform::RemoveFile(temporary.Path());
    errno = 0;
    std::FILE *stream = std::fopen(HostForm(temporary.Path()).c_str(), "wb");
    if (stream == nullptr)
        Fail(path, "its temporary file cannot be opened");
    Fill(path, stream, bytes, true);
    errno = 0;
    if (kind == Kind::Regular && !file_steps.copy_mode(target.c_str(), temporary.Path()))
        Fail(path, "its mode cannot be kept");
    errno = 0;
    if (!file_steps.move_over(temporary.Path(), target.c_str()))
        Fail(path, "cannot be replaced");
    temporary.Keep();
}

} // namespace zrtool
