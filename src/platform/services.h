// The replaceable calls of the platform seam, as a table of pointers.
//
// Every call of the seam that waits for a person, depends on the time of day or reaches a file goes through this table,
// so that a test or a tool can put its own function there, on either platform. The table starts with the back end's
// functions. It is not guarded: replace entries before other threads call the seam, and put the old value back.
#ifndef ZR_PLATFORM_SERVICES_H
#define ZR_PLATFORM_SERVICES_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include <zrclb/types.h>

namespace zr::platform {

enum class GroupVerb;
enum class HelpCommand : unsigned;
enum class LibraryText : unsigned;
enum class RegistryHive;
enum class SpaceAnswer;
struct ClusterSpace;
struct FileStatus;
struct FileVersion;
struct GroupOptions;
struct PortSettings;
struct SystemVersion;
struct Uuid;

// Takes a font's name and file; false ends the walk (installed_fonts.h).
using FontVisitor = bool (*)(void *context, const char *name, const char *file);

// Takes a window and its title; valid during the call only (server_programs.h).
using WindowVisitor = void (*)(void *context, zr_window window, const char *title);

// A function of a library, to be called as what it is (libraries.h).
using LibraryFunction = void (*)();

// What the back end provides. Contracts stand at the callers' faces: streams.h, files.h, message_box.h, debug.h,
// clock.h, temporary.h, drives.h, shell.h, raw_file.h, raw_output.h, modules.h, registry.h, known_folders.h,
// library_record.h, system_kind.h, users.h, processes.h, installed_fonts.h, libraries.h, serial_port.h,
// window_timers.h, help_viewer.h, server_programs.h.
namespace backend {
std::FILE *OpenText(const char *path, const char *mode);
std::FILE *OpenBinary(const char *path, const char *mode);
bool GetFileStatus(const char *path, FileStatus &out);
std::intptr_t OpenRaw(const char *path);
std::ptrdiff_t ReadRaw(std::intptr_t file, char *out, std::size_t size);
void CloseRaw(std::intptr_t file);
int OpenOutput(const char *path, std::intptr_t &file, std::uint64_t &size);
void MakePrivate(std::intptr_t file);
int ReserveOutput(std::intptr_t file, std::uint64_t size);
int WriteOutput(std::intptr_t file, std::uint64_t at, const char *bytes, std::size_t size);
int CutOutput(std::intptr_t file, std::uint64_t size);
int CloseOutput(std::intptr_t file);
int ShowMessageBox(zr_window owner, const char *text, const char *caption, unsigned type);
zr_window FocusWindow();
void DebugOutput(const char *text);
std::int64_t Now();
std::int64_t NowMilliseconds();
int SimpleSound();
std::size_t TempFolder(char *out, std::size_t size);
unsigned TempFileName(const char *folder, const char *prefix, unsigned unique, char *out);
std::uint32_t TickCount();
int CreateUuid(Uuid &out);
int DriveType(const char *path);
SpaceAnswer FreeSpace(const char *path, std::uint64_t &bytes);
bool FreeClusters(const char *path, ClusterSpace &out);
int DoGroupOperation(GroupVerb verb, const char *from, const char *to, const GroupOptions &options, bool &aborted);
std::size_t ModulePath(char *out, std::size_t size);
std::size_t ProgramPath(char *out, std::size_t size);
bool ReadRegistryText(RegistryHive hive, const char *key, const char *name, char *out, std::size_t size);
bool KnownFolder(int number, char *out, std::size_t size);
bool KnownFolderBelow(int number, const char *below, char *out, std::size_t size);
std::size_t WindowsFolder(char *out, std::size_t size);
std::size_t LongPath(const char *path, char *out, std::size_t size);
bool GetFileVersion(FileVersion &out);
std::size_t GetLibraryText(LibraryText text, char *out, std::size_t size);
bool GetSystemVersion(SystemVersion &out);
bool SystemUser(char *out, std::size_t size);
bool SystemLogin(char *out, std::size_t size);
int StartProgram(char *command_line, unsigned short show);
void VisitInstalledFonts(FontVisitor visit, void *context);
void *OpenLibrary(const char *name);
LibraryFunction FindFunction(void *library, const char *name);
void CloseLibrary(void *library);
zr_value OpenPort(const char *port);
bool BuildPortSettings(const char *port, const char *configuration, PortSettings &out);
bool ApplyPortSettings(zr_value port, const PortSettings &settings);
std::size_t WritePort(zr_value port, const void *bytes, std::size_t size);
void ClosePort(zr_value port);
std::int64_t SteadyNanoseconds();
zr_value StartWindowTimer(zr_window window, zr_value id, zr_long period);
bool StopWindowTimer(zr_window window, zr_value id);
bool IsOnline();
void OpenUrl(const char *url);
bool ShowHelpFile(const char *path, HelpCommand command, zr_ulong id);
bool FindClassId(const char *program_id, char *out, std::size_t size);
std::size_t VersionRecordSize(const char *path);
bool ReadVersionRecord(const char *path, void *record, std::size_t size);
bool FindProductVersion(const void *record, FileVersion &out);
void VisitTopWindows(WindowVisitor visit, void *context);
bool IsWindowAlive(zr_window window);
bool StartServer(char *command_line, unsigned short show, std::uint32_t milliseconds);
} // namespace backend

struct Services {
    std::FILE *(*open_text)(const char *path, const char *mode) = backend::OpenText;
    std::FILE *(*open_binary)(const char *path, const char *mode) = backend::OpenBinary;
    bool (*file_status)(const char *path, FileStatus &out) = backend::GetFileStatus;
    std::intptr_t (*open_raw)(const char *path) = backend::OpenRaw;
    std::ptrdiff_t (*read_raw)(std::intptr_t file, char *out, std::size_t size) = backend::ReadRaw;
    int (*open_output)(const char *path, std::intptr_t &file, std::uint64_t &size) = backend::OpenOutput;
    int (*reserve_output)(std::intptr_t file, std::uint64_t size) = backend::ReserveOutput; // or not_supported
    int (*write_output)(std::intptr_t file, std::uint64_t at, const char *bytes,
                        std::size_t size) = backend::WriteOutput; // all of them
    int (*cut_output)(std::intptr_t file, std::uint64_t size) = backend::CutOutput;
    int (*close_output)(std::intptr_t file) = backend::CloseOutput;
    int (*show_message_box)(zr_window owner, const char *text, const char *caption,
                            unsigned type) = backend::ShowMessageBox;
    zr_window (*focus_window)() = backend::FocusWindow;
    void (*debug_output)(const char *text) = backend::DebugOutput;
    std::int64_t (*now)() = backend::Now;
    std::int64_t (*now_milliseconds)() = backend::NowMilliseconds;
    int (*simple_sound)() = backend::SimpleSound;
    std::size_t (*temp_folder)(char *out, std::size_t size) = backend::TempFolder;
    unsigned (*temp_file_name)(const char *folder, const char *prefix, unsigned unique,
                               char *out) = backend::TempFileName;
    std::uint32_t (*tick_count)() = backend::TickCount;
    int (*create_uuid)(Uuid &out) = backend::CreateUuid;
    int (*drive_type)(const char *path) = backend::DriveType;
    SpaceAnswer (*free_space)(const char *path, std::uint64_t &bytes) = backend::FreeSpace;
    bool (*free_clusters)(const char *path, ClusterSpace &out) = backend::FreeClusters;
    int (*do_group_operation)(GroupVerb verb, const char *from, const char *to, const GroupOptions &options,
                              bool &aborted) = backend::DoGroupOperation;
    std::size_t (*module_path)(char *out, std::size_t size) = backend::ModulePath;
    std::size_t (*program_path)(char *out, std::size_t size) = backend::ProgramPath;
    bool (*registry_text)(RegistryHive hive, const char *key, const char *name, char *out,
                          std::size_t size) = backend::ReadRegistryText;
    bool (*known_folder)(int number, char *out, std::size_t size) = backend::KnownFolder;
    bool (*known_folder_below)(int number, const char *below, char *out, std::size_t size) = backend::KnownFolderBelow;
    std::size_t (*windows_folder)(char *out, std::size_t size) = backend::WindowsFolder;
    std::size_t (*long_path)(const char *path, char *out, std::size_t size) = backend::LongPath;
    bool (*file_version)(FileVersion &out) = backend::GetFileVersion;
    std::size_t (*library_text)(LibraryText text, char *out, std::size_t size) = backend::GetLibraryText;
    bool (*system_version)(SystemVersion &out) = backend::GetSystemVersion;
    bool (*system_user)(char *out, std::size_t size) = backend::SystemUser;
    bool (*system_login)(char *out, std::size_t size) = backend::SystemLogin;
    int (*start_program)(char *command_line, unsigned short show) = backend::StartProgram;
    void (*installed_fonts)(FontVisitor visit, void *context) = backend::VisitInstalledFonts;
    void *(*open_library)(const char *name) = backend::OpenLibrary;
    LibraryFunction (*find_function)(void *library, const char *name) = backend::FindFunction;
    void (*close_library)(void *library) = backend::CloseLibrary;
    zr_value (*open_port)(const char *port) = backend::OpenPort;
    bool (*build_port_settings)(const char *port, const char *configuration,
                                PortSettings &out) = backend::BuildPortSettings;
    bool (*apply_port_settings)(zr_value port, const PortSettings &settings) = backend::ApplyPortSettings;
    std::size_t (*write_port)(zr_value port, const void *bytes, std::size_t size) = backend::WritePort;
    void (*close_port)(zr_value port) = backend::ClosePort;
    std::int64_t (*steady_nanoseconds)() = backend::SteadyNanoseconds;
    zr_value (*start_window_timer)(zr_window window, zr_value id, zr_long period) = backend::StartWindowTimer;
    bool (*stop_window_timer)(zr_window window, zr_value id) = backend::StopWindowTimer;
    bool (*is_online)() = backend::IsOnline;
    void (*open_url)(const char *url) = backend::OpenUrl;
    bool (*show_help_file)(const char *path, HelpCommand command, zr_ulong id) = backend::ShowHelpFile;
    bool (*class_id)(const char *program_id, char *out, std::size_t size) = backend::FindClassId;
    std::size_t (*version_record_size)(const char *path) = backend::VersionRecordSize;
    bool (*read_version_record)(const char *path, void *record, std::size_t size) = backend::ReadVersionRecord;
    bool (*product_version)(const void *record, FileVersion &out) = backend::FindProductVersion;
    void (*top_windows)(WindowVisitor visit, void *context) = backend::VisitTopWindows;
    bool (*is_window_alive)(zr_window window) = backend::IsWindowAlive;
    bool (*start_server)(char *command_line, unsigned short show, std::uint32_t milliseconds) = backend::StartServer;
};

inline constinit Services services;

} // namespace zr::platform

#endif
