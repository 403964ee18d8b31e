// Loading and unloading of the library.
#include "library/load.h"

#include "env/env_lock.h"
#include "frame/invalid_parameter.h"
#include "frame/log.h"
#include "frame/log_hook.h"
#include "frame/message_box_stack.h"
#include "platform/modules.h"

namespace zr::library {
namespace {

constinit bool loaded = false;

// The settings that could switch the log on and place it have no reader yet, and neither has the program's name.
bool LogIsOn() {
    return false;
}

bool LogPath(char *, std::size_t) {
    return false;
}

bool ProgramName(char *, std::size_t) {
    return false;
}

} // namespace

void LibraryLoad(void *module) {
    if (loaded) {
        return;
    }
    loaded = true;
    platform::StoreModule(module);
    frame::LogSection().Create();
    env::Section().Create();
    frame::MessageBoxSection().Create();
    platform::InstallInvalidParameterReporter(frame::InvalidParameterReporter);
    frame::SetLogHook({LogIsOn, LogPath, ProgramName});
}

void LibraryUnload() {
    if (!loaded) {
        return;
    }
    loaded = false;
    // Later calls of the C library must not reach code that is about to leave the process.
    platform::InstallInvalidParameterReporter(nullptr);
    frame::LogSection().Delete();
    env::Section().Delete();
    frame::MessageBoxSection().Delete();
}

} // namespace zr::library
