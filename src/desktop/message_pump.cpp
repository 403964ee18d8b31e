// Long work that lets the desktop live, windows that receive timer messages, and waiting for them.
#include <zrclb/timer.h>

#include "platform/window_timers.h"

namespace zr::desktop {
namespace {

constexpr int hook_limit = 64; // calls of the hook in one another

constinit zr_yield_hook yield_hook = nullptr;
constinit bool pump_is_on = true;
constinit int running_hooks = 0;

// A hook that always pumps again would never come to an end.
void CallHook() {
    if (yield_hook == nullptr || running_hooks == hook_limit)
        return;
    ++running_hooks;
    yield_hook();
    --running_hooks;
}

} // namespace
} // namespace zr::desktop

using namespace zr::desktop;

extern "C" {

zr_yield_hook SetYieldCallback(zr_yield_hook hook) noexcept {
    yield_hook = hook;
    return hook;
}

int switch_Yield_and_PeekMessage(int mode) noexcept {
    if (mode == 0 || mode == 1)
        pump_is_on = mode == 1;
    return pump_is_on ? 1 : 0;
}

int Yield_and_PeekMessage(void) noexcept {
    zrTimerUpdateHwnd();
    CallHook();
    if (pump_is_on)
        while (zr::platform::PumpMessage()) {
        }
    return 0;
}

zr_window zrWindowCreate(zr_window_procedure procedure, void *user) noexcept {
    return procedure != nullptr ? zr::platform::CreateMessageWindow(procedure, user) : nullptr;
}

int zrWindowDestroy(zr_window window) noexcept {
    return zr::platform::DestroyMessageWindow(window) ? 1 : 0;
}

int zrPumpNextDue(void) noexcept {
    return zr::platform::NextMessageDue();
}

int zrPumpDescriptor(void) noexcept {
    return zr::platform::PumpDescriptor();
}
}
