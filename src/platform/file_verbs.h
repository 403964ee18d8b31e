// What can be done to files and folders by name: tests, attributes, and the verbs.
//
// A `path` is in the library's form, at most 259 characters; null, empty and longer ones fail, and so do drives that
// don't exist. Unless said otherwise the result is a code of system_error.h, 0 for done: file_not_found for a missing
// last element, path_not_found for what is missing in front of it (and a missing drive), path_too_long, invalid_name.
// Links are followed, except by what removes or renames a name. Threads: no state; any thread.
//
// Names belong to the host. The desktop compares them without regard to case, passes over points and blanks at the end
// of an element, and refuses "*", "?", "<", ">", "|" and '"' in them with invalid_name. On Linux case counts, points,
// blanks and these signs are part of a name, and only a missing name with such a sign gives invalid_name; devices have
// no names of their own either. Elements "." and ".." are resolved in the text on both.
#ifndef ZR_PLATFORM_FILE_VERBS_H
#define ZR_PLATFORM_FILE_VERBS_H

#include <cstdint>

#include "platform/system_error.h"

namespace zr::platform {

// Attribute bits, the desktop's own. On Linux read-only is a missing write permission for everybody, hidden a leading
// dot, which nobody can take off; files bear the archive bit nowhere, and the other bits are clear.
enum FileAttribute : std::uint32_t {
    attribute_read_only = 1,
    attribute_hidden = 2,
    attribute_system = 4,
    attribute_folder = 16,
    attribute_archive = 32,
    attribute_normal = 128,
    attribute_link = 1024, // what a search says of a link, beside the attributes of that which the link leads to
};

int GetAttributes(const char *path, std::uint32_t &out);

// Linux knows the read-only bit alone: setting it takes all write permissions, clearing it gives the owner's back.
// Other bits are accepted without effect.
int SetAttributes(const char *path, std::uint32_t attributes);

// Whether the standard access test passes: `mode` 0 exists, 2 may be written, 4 may be read, 6 both. The right to write
// is decided as the desktop decides it, by the read-only attribute first; a folder can always be written. Other bits of
// `mode` are a failure. On Linux the user's own rights count as well.
bool CanAccess(const char *path, int mode);

// Removes a file or a link, also one that leads to a folder, which then stays as it is; refuses a folder and what is
// read-only with access_denied.
int RemoveUnprotectedFile(const char *path);

// Copies a file with its modification time and, on Linux, its permissions for reading, writing and executing; an
// existing target is written over in place, a read-only one or a folder refused with access_denied, on the desktop a
// hidden one too, and a file onto itself, by whatever name, with sharing_violation. Only files are copied: a folder,
// and on Linux a pipe or device, as the source is access_denied. If it fails half-way (disk full), what was written of
// a new target is removed; of a former target the content is lost.
int CopyFileOver(const char *from, const char *to);

// Moves a file or a folder to a name that nothing bears yet (else already_exists; the file's own name is done at once).
// Another drive: files are copied and the original removed, folders fail with access_denied, on Linux between two
// drives on one file system too. A link moves as a link. Fails with not_a_folder for a file whose new name ends in a
// separator.
int MoveToNewName(const char *from, const char *to);

// One level. already_exists, path_not_found.
int MakeFolder(const char *path);

// The folder must be empty, and not read-only (access_denied); no link to a folder (not_a_folder); not the current
// folder of the process (sharing_violation).
int RemoveEmptyFolder(const char *path);

} // namespace zr::platform

#endif
