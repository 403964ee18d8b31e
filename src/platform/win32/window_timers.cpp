// Timers of windows, the messages they post, and windows that receive them: the system's own.
//
// The system doesn't tell when a timer is due next, so each thread keeps in mind when its timers are. The system's stay in step with
// their start, however late a message is taken.
#include "platform/window_timers.h"

#include <atomic>
#include <new>

#include <windows.h>

#include "platform/modules.h"
#include "platform/timer_schedule.h"

namespace zr::platform {

namespace {

static_assert(timer_message == WM_TIMER);
static_assert(shortest_period == USER_TIMER_MINIMUM && longest_period == USER_TIMER_MAXIMUM);

constexpr std::int64_t millisecond = 1000000;
constexpr std::int64_t system_tick = 20 * millisecond; // a timer's message may be that much behind its time
constexpr char class_name[] = "zrclb messages";

// Places of a window's own values.
constexpr int procedure_offset = 0;
constexpr int user_offset = sizeof(LONG_PTR);

struct WindowValues {
    WindowProcedure procedure;
    void *user;
};

LRESULT CALLBACK HandleMessage(HWND window, UINT message, WPARAM identifier, LPARAM parameter) {
    if (message == WM_NCCREATE) {
        const auto *values =
            static_cast<const WindowValues *>(reinterpret_cast<const CREATESTRUCTA *>(parameter)->lpCreateParams);
        SetWindowLongPtrA(window, procedure_offset, reinterpret_cast<LONG_PTR>(values->procedure));
        SetWindowLongPtrA(window, user_offset, reinterpret_cast<LONG_PTR>(values->user));
    }
    if (message != WM_TIMER)
        return DefWindowProcA(window, message, identifier, parameter);
    const auto procedure = reinterpret_cast<WindowProcedure>(GetWindowLongPtrA(window, procedure_offset));
    procedure(window, message, identifier, reinterpret_cast<void *>(GetWindowLongPtrA(window, user_offset)));
    return 0;
}

HINSTANCE OwnModule() {
    void *module = StoredModule();
    return module != nullptr ? static_cast<HINSTANCE>(module) : GetModuleHandleA(nullptr);
}

bool IsOfThisThread(HWND window) {
    return GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

// When the timers of a thread are due, and how many of its messages are being dispatched, in one another.
struct Schedule : TimerSchedule {
    int dispatching = 0;
};

void WINAPI DeleteSchedule(void *schedule) {
    delete static_cast<Schedule *>(schedule);
}

// The threads' own schedules: made when they are first needed, ended with their threads.
class Schedules {
public:
    // Null if this thread has none yet.
    Schedule *Own() const {
        const DWORD slot = m_slot.load();
        return slot != FLS_OUT_OF_INDEXES ? static_cast<Schedule *>(FlsGetValue(slot)) : nullptr;
    }

    // Null without memory.
    Schedule *Make() {
        Schedule *schedule = Own();
        if (schedule != nullptr || !HasSlot())
            return schedule;
        schedule = new (std::nothrow) Schedule();
        if (schedule != nullptr && FlsSetValue(m_slot.load(), schedule) == 0) {
            delete schedule;
            return nullptr;
        }
        return schedule;
    }

    // Ends those of all threads.
    void End() {
        const DWORD slot = m_slot.exchange(FLS_OUT_OF_INDEXES);
        if (slot != FLS_OUT_OF_INDEXES)
            FlsFree(slot);
    }

private:
    // Of two threads that come here at once one gives its slot back.
    bool HasSlot() {
        DWORD slot = m_slot.load();
        if (slot != FLS_OUT_OF_INDEXES)
            return true;
        const DWORD own = FlsAlloc(DeleteSchedule);
        if (own != FLS_OUT_OF_INDEXES && !m_slot.compare_exchange_strong(slot, own))
            FlsFree(own);
        return m_slot.load() != FLS_OUT_OF_INDEXES;
    }

    std::atomic<DWORD> m_slot = FLS_OUT_OF_INDEXES;
};

constinit Schedules schedules;

void Dispatch(const MSG &message) {
    Schedule *schedule = schedules.Own();
    if (schedule == nullptr) {
        DispatchMessageA(&message);
        return;
    }
    if (message.message == WM_TIMER)
        schedule->RepeatInStep(message.hwnd, message.wParam, SteadyNanoseconds());
    ++schedule->dispatching;
    DispatchMessageA(&message);
    --schedule->dispatching;
}

} // namespace

std::int64_t backend::SteadyNanoseconds() {
    LARGE_INTEGER ticks;
    LARGE_INTEGER per_second;
    QueryPerformanceCounter(&ticks);
    QueryPerformanceFrequency(&per_second);
    constexpr std::int64_t second = 1000000000;
    return ticks.QuadPart / per_second.QuadPart * second +
           ticks.QuadPart % per_second.QuadPart * second / per_second.QuadPart;
}

zr_window CreateMessageWindow(WindowProcedure procedure, void *user) {
    WNDCLASSEXA window_class{};
    window_class.cbSize = sizeof window_class;
    window_class.lpfnWndProc = HandleMessage;
    window_class.cbWndExtra = 2 * sizeof(LONG_PTR);
    window_class.hInstance = OwnModule();
    window_class.lpszClassName = class_name;
    RegisterClassExA(&window_class); // fails for every window but the first
    WindowValues values{procedure, user};
    return CreateWindowExA(0, class_name, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, window_class.hInstance, &values);
}

bool DestroyMessageWindow(zr_window window) {
    const auto handle = static_cast<HWND>(window);
    if (handle == nullptr || !IsOfThisThread(handle) ||
        GetClassLongPtrA(handle, GCLP_WNDPROC) != reinterpret_cast<ULONG_PTR>(HandleMessage))
        return false;
    if (Schedule *schedule = schedules.Own(); schedule != nullptr)
        schedule->RemoveWindow(window);
    return DestroyWindow(handle) != 0;
}

zr_value backend::StartWindowTimer(zr_window window, zr_value id, zr_long period) {
    const auto handle = static_cast<HWND>(window);
    if (handle == nullptr)
        return 0;
    Schedule *schedule = schedules.Make();
    if (schedule == nullptr || !schedule->Start(window, id, period, platform::SteadyNanoseconds()))
        return 0;
    const zr_value started = SetTimer(handle, id, static_cast<UINT>(period), nullptr);
    if (started == 0 || !IsOfThisThread(handle))
        schedule->Remove(window, id);
    return started;
}

bool backend::StopWindowTimer(zr_window window, zr_value id) {
    if (window == nullptr)
        return false;
    if (Schedule *schedule = schedules.Own(); schedule != nullptr)
        schedule->Remove(window, id);
    return KillTimer(static_cast<HWND>(window), id) != 0;
}

bool PumpMessage() {
    const Schedule *schedule = schedules.Own();
    MSG message;
    if ((schedule != nullptr && schedule->dispatching == pump_limit) ||
        PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) == 0)
        return false;
    TranslateMessage(&message);
    Dispatch(message);
    return true;
}

int NextMessageDue() {
    if (HIWORD(GetQueueStatus(QS_ALLINPUT)) != 0)
        return 0;
    Schedule *schedule = schedules.Own();
    if (schedule == nullptr)
        return -1;
    const std::int64_t now = SteadyNanoseconds();
    for (const auto *first = schedule->First(); first != nullptr; first = schedule->First()) {
        const std::int64_t left = first->due - now;
        if (!IsWindow(static_cast<HWND>(first->window)))
            schedule->RemoveWindow(first->window); // ended by the application
        else if (left > -system_tick)
            return left > millisecond ? static_cast<int>((left + millisecond - 1) / millisecond) : 1;
        else
            schedule->RepeatInStep(first->window, first->id, now); // a loop of the application took its message
    }
    return -1;
}

int PumpDescriptor() {
    return -1;
}

void EndMessagePumps() {
    schedules.End();
    UnregisterClassA(class_name, OwnModule());
}

} // namespace zr::platform
