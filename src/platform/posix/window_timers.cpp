// Timers of windows, the messages they post, and windows that receive them: a pump for each thread on the monotonic clock.
//
// The only messages are those of timers, so a queue of messages is the order in which timers are due: one whose time has
// come stands for its message. Nothing runs beside the threads that pump.
#include "platform/window_timers.h"

#include <atomic>
#include <climits>
#include <ctime>
#include <map>
#include <mutex>
#include <new>

#include <pthread.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "platform/timer_schedule.h"

namespace zr::platform {

namespace {

constexpr std::int64_t second = 1000000000;
constexpr std::int64_t millisecond = 1000000;

// A number that no window of the process has had, as a handle.
zr_window NewHandle() {
    constinit static std::atomic<zr_value> last = 0x10000;
    return reinterpret_cast<zr_window>(last.fetch_add(2, std::memory_order_relaxed) + 2);
}

// Windows and timers of a thread. Invariant: every timer belongs to one of the windows.
class Pump {
public:
    Pump() = default;
    Pump(const Pump &) = delete;
    Pump &operator=(const Pump &) = delete;
    ~Pump() {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }

    zr_window Open(WindowProcedure procedure, void *user) noexcept {
        try {
            return m_windows.emplace(NewHandle(), Window{procedure, user}).first->first;
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
    }

    bool Close(zr_window window) noexcept {
        if (m_windows.erase(window) == 0)
            return false;
        m_timers.RemoveWindow(window);
        Arm();
        return true;
    }

    bool Start(zr_window window, zr_value id, zr_long period) noexcept {
        if (!m_windows.contains(window) || !m_timers.Start(window, id, period, SteadyNanoseconds()))
            return false;
        Arm();
        return true;
    }

    bool Stop(zr_window window, zr_value id) noexcept {
        if (!m_timers.Remove(window, id))
            return false;
        Arm();
        return true;
    }

    bool Dispatch() {
        const TimerSchedule::Timer *first = m_timers.First();
        if (first == nullptr || m_dispatching == pump_limit)
            return false;
        const std::int64_t now = SteadyNanoseconds();
        if (first->due > now)
            return false;
        // The procedure may end its timer, its window and, with that, all that is looked at here.
        const zr_window window = first->window;
        const zr_value id = first->id;
        const Window target = m_windows.find(window)->second;
        m_timers.Repeat(window, id, now);
        Arm();
        ++m_dispatching;
        target.procedure(window, timer_message, id, target.user);
        --m_dispatching;
        return true;
    }

    int NextDue() const {
        const TimerSchedule::Timer *first = m_timers.First();
        if (first == nullptr)
            return -1;
        const std::int64_t left = first->due - SteadyNanoseconds();
        return left > 0 ? static_cast<int>((left + millisecond - 1) / millisecond) : 0;
    }

    int Descriptor() {
        if (m_descriptor < 0) {
            m_descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
            Arm();
        }
        return m_descriptor;
    }

private:
    struct Window {
        WindowProcedure procedure;
        void *user;
    };

    // Makes the descriptor tell of the timer that is due first.
    void Arm() {
        if (m_descriptor < 0)
            return;
        const TimerSchedule::Timer *first = m_timers.First();
        const std::int64_t due = first != nullptr ? first->due : no_time;
        if (due == m_armed)
            return;
        m_armed = due;
        itimerspec time{};
        if (first != nullptr) {
            // Counted from now, as the steady clock may be another one than the system's. Nothing left would mean never.
            const std::int64_t left = due - SteadyNanoseconds();
            const std::int64_t wait = left > 0 ? left : 1;
            time.it_value.tv_sec = static_cast<std::time_t>(wait / second);
            time.it_value.tv_nsec = static_cast<long>(wait % second);
        }
        timerfd_settime(m_descriptor, 0, &time, nullptr);
    }

    static constexpr std::int64_t no_time = INT64_MAX;

    std::map<zr_window, Window> m_windows;
    TimerSchedule m_timers;
    int m_descriptor = -1;
    std::int64_t m_armed = no_time; // what the descriptor waits for
    int m_dispatching = 0;          // calls of procedures, in one another
};

void DeletePump(void *pump) {
    delete static_cast<Pump *>(pump);
}

// The threads' own pumps: made when they are first needed, ended with their threads.
class Pumps {
public:
    // Null if this thread has none yet.
    Pump *Own() const {
        return m_has_key.load(std::memory_order_acquire) ? static_cast<Pump *>(pthread_getspecific(m_key)) : nullptr;
    }

    // Null without memory.
    Pump *Make() {
        Pump *pump = Own();
        if (pump != nullptr || !HasKey())
            return pump;
        pump = new (std::nothrow) Pump();
        if (pump != nullptr && pthread_setspecific(m_key, pump) != 0) {
            delete pump;
            return nullptr;
        }
        return pump;
    }

    // The pumps of other threads that still run are lost with the key.
    void End() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (!m_has_key.load(std::memory_order_relaxed))
            return;
        DeletePump(pthread_getspecific(m_key));
        pthread_key_delete(m_key);
        m_has_key.store(false, std::memory_order_relaxed);
    }

private:
    bool HasKey() {
        const std::lock_guard<std::mutex> guard(m_mutex);
        if (!m_has_key.load(std::memory_order_relaxed) && pthread_key_create(&m_key, DeletePump) == 0)
            m_has_key.store(true, std::memory_order_release);
        return m_has_key.load(std::memory_order_relaxed);
    }

    std::mutex m_mutex;
    std::atomic<bool> m_has_key = false;
    pthread_key_t m_key{};
};

constinit Pumps pumps;

} // namespace

std::int64_t backend::SteadyNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * second + now.tv_nsec;
}

zr_window CreateMessageWindow(WindowProcedure procedure, void *user) {
    Pump *pump = pumps.Make();
    return pump != nullptr ? pump->Open(procedure, user) : nullptr;
}

bool DestroyMessageWindow(zr_window window) {
    Pump *pump = pumps.Own();
    return pump != nullptr && pump->Close(window);
}

zr_value backend::StartWindowTimer(zr_window window, zr_value id, zr_long period) {
    Pump *pump = pumps.Own();
    return pump != nullptr && pump->Start(window, id, period) ? id : 0;
}

bool backend::StopWindowTimer(zr_window window, zr_value id) {
    Pump *pump = pumps.Own();
    return pump != nullptr && pump->Stop(window, id);
}

bool PumpMessage() {
    Pump *pump = pumps.Own();
    return pump != nullptr && pump->Dispatch();
}

int NextMessageDue() {
    const Pump *pump = pumps.Own();
    return pump != nullptr ? pump->NextDue() : -1;
}

int PumpDescriptor() {
    Pump *pump = pumps.Make();
    return pump != nullptr ? pump->Descriptor() : -1;
}

void EndMessagePumps() {
    pumps.End();
}

} // namespace zr::platform
