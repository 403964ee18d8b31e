// Error codes of file operations, in the desktop's numbering on every platform.
//
// The verbs of the seam answer one of these: 0 for done. On Windows it is the system's own code, whatever it is; on Linux the
// back end turns errno into the code that the desktop gives in the same case.
#ifndef ZR_PLATFORM_SYSTEM_ERROR_H
#define ZR_PLATFORM_SYSTEM_ERROR_H

namespace zr::platform {

enum SystemError : int {
    done = 0,
    file_not_found = 2,
    path_not_found = 3, // also a drive that doesn't exist
    too_many_open_files = 4,
    access_denied = 5,
    out_of_memory = 8,
    other_device = 17, // a folder can't move to another drive
    no_more_files = 18,
    write_protected = 19, // the medium
    io_failure = 31,
    sharing_violation = 32,
    lock_violation = 33,
    not_supported = 50,
    file_exists = 80,
    invalid_parameter = 87,
    disk_full = 112,
    buffer_too_small = 122,
    invalid_name = 123,
    folder_not_empty = 145,
    bad_path_name = 161,
    already_exists = 183,
    bad_program_format = 193, // what should be started is no program
    path_too_long = 206,
    not_a_folder = 267,
    cannot_resolve_name = 1921, // a ring of links
};

} // namespace zr::platform

#endif
