// What the desktop's path services do with the text of a path: taking it apart, putting it together, making it
// absolute, relative or short. Nothing here looks at a disk, so one implementation serves every platform.
//
// Texts are zero-terminated bytes in code page 1252; a null text counts as empty. Backslash and slash both separate
// unless told otherwise. An output never overlaps an input. Threads: no state; any thread.
#ifndef ZR_PLATFORM_PATH_TEXT_H
#define ZR_PLATFORM_PATH_TEXT_H

#include <cstddef>
#include <cstdint>

namespace zr::platform {

struct PathParts {
    char drive[3];       // "C:", or empty
    char folder[256];    // with its last separator, or empty
    char name[256];      // without its extension
    char extension[256]; // with its point, or empty
};

// Takes `path` apart as the runtime's splitter does; the parts one behind the other are the path again. A drive is any
// character with ":" behind it at the very start; the extension begins at the last point behind the last separator. A
// null path, or a folder, name or extension of more than 255 characters, empties all four parts and gives false.
bool SplitPath(const char *path, PathParts &out);

// Puts a path together as the runtime's path maker does, into out[0..size-1], terminated. Of `drive` the first
// character counts and ":" follows it; a folder gets a backslash if it ends in no separator; an extension gets its
// point if it begins with none. Null and empty parts are left out, with what would be added to them. If it does not
// fit, `out` is empty (if size is not 0) and the result false.
bool MakePath(char *out, std::size_t size, const char *drive, const char *folder, const char *name,
              const char *extension);

// Where relative paths start. `folder` writes the current folder of a drive (1 is A, 3 is C; 0 is the current folder
// itself, which may lie on the network) in absolute form ("C:\home\me") to out[0..size-1]. False if there is none: then
// a path of that drive starts at its root, and one without a drive has no full path.
struct CurrentFolders {
    bool (*folder)(void *user, int drive, char *out, std::size_t size);
    void *user; // passed on to `folder`
};

// `file_part` of a path that ends in a separator, or names a root, a server alone or a device.
inline constexpr std::size_t no_file_part = static_cast<std::size_t>(-1);

// The system's full path of `path` into out[0..size-1]: absolute, with backslashes, "." and ".." resolved (".." stops
// at the root), runs of separators as one, and points and blanks at the end dropped. Names of devices give "\\.\NUL"
// and the like. Result: the length without the terminator; if it does not fit, the size needed with it, and `out` is
// empty (if size is not 0); 0 for a null or empty path, one of nothing but blanks, or one that has no current folder to
// start at, with `out` empty as well. `file_part`, if not null, gets the offset in the full path where its last element
// starts, or `no_file_part`. `out` may be null if size is 0.
std::size_t FullPath(const char *path, const CurrentFolders &current, char *out, std::size_t size,
                     std::size_t *file_part);

// The path of `to` seen from `from`, as the desktop's own function gives it ("..\x", ".\x", ".", or "\x" for a `from`
// that ends in a backslash), into out[0..259]. Purely textual: backslash alone separates, capital and small letters are
// the same, "." and ".." are names like others. An end whose attributes have the bit 0x10 is a folder; any other is a
// file, and `from` is then its folder. False with `out` empty if nothing leads from one to the other (another drive,
// relative paths without a common folder, null), or if `from`, `to` or the result has more than 259 characters.
bool RelativePath(char *out, const char *from, std::uint32_t from_attributes, const char *to,
                  std::uint32_t to_attributes);

// The path cut to width - 1 characters, as the desktop's own function does: "..." stands in front of the last
// separator, and a name that is too long for that is cut at its end ("...\na..."). A path of just width - 1 characters
// is cut too; a shorter one stays as it is. `out` needs `width` bytes; nothing is written with a width of 0. `flags`
// have no effect. Result: 1, or 0 for a null pointer.
int CompactPath(char *out, const char *path, unsigned width, std::uint32_t flags);

} // namespace zr::platform

#endif
