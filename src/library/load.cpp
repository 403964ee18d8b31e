// Loading and unloading of the library.
#include "library/load.h"

#include "desktop/living_timers.h"
#include "desktop/timer_table.h"
#include "env/chunks.h"
#include "env/env_lock.h"
#include "frame/invalid_parameter.h"
#include "frame/log.h"
#include "frame/log_hook.h"
#include "frame/message_box_stack.h"
#include "library/frame_settings.h"
#include "platform/locks.h"
#include "platform/modules.h"
#include "platform/window_timers.h"

namespace zr::library {
namespace {

constinit bool loaded = false;

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
    desktop::TimerSection().Create();
    platform::InstallInvalidParameterReporter(frame::InvalidParameterReporter);
    frame::SetLogHook({LogIsOn, LogPath, ProgramName});
    ReserveMemory();
}

void LibraryUnload() {
    if (!loaded) {
        return;
    }
    loaded = false;
    // Later calls of the C library must not reach code that is about to leave the process.
    platform::InstallInvalidParameterReporter(nullptr);
    zr::env::DropSpareChunks();
    desktop::DeleteTimers();
    platform::EndMessagePumps();
    frame::LogSection().Delete();
    env::Section().Delete();
    frame::MessageBoxSection().Delete();
    desktop::TimerSection().Delete();
}

} // namespace zr::library
