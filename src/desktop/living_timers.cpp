// Which timers exist.
#include "desktop/living_timers.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <new>

#include "platform/locks.h"

namespace zr::desktop {
namespace {

struct Entry {
    const zrTimer *timer;
    std::uint64_t number; // timers that were noted earlier; another timer at the same place has another one
};

constinit platform::Lock section;

// The timers in the order of their addresses: entries[0..count-1] of a block with room for `room`. Not a container, as
// it has to last until the library is unloaded, which comes behind the end of static objects.
constinit Entry *entries = nullptr;
constinit std::size_t count = 0;
constinit std::size_t room = 0;

// Adds 1, under the lock; answers the value before.
std::uint64_t Increase(std::atomic<std::uint64_t> &counter) {
    const std::uint64_t before = counter.load(std::memory_order_relaxed);
    counter.store(before + 1, std::memory_order_relaxed);
    return before;
}

Entry *PlaceOf(const zrTimer *timer) {
    return std::lower_bound(entries, entries + count, timer, [](const Entry &entry, const zrTimer *address) {
        return std::less<>()(entry.timer, address);
    });
}

bool StandsAt(const Entry *place, const zrTimer *timer) {
    return place != entries + count && place->timer == timer;
}

bool MakeRoom() {
    if (count < room)
        return true;
    const std::size_t wider = room != 0 ? room * 2 : 32;
    auto *block = new (std::nothrow) Entry[wider];
    if (block == nullptr)
        return false;
    std::copy(entries, entries + count, block);
    delete[] entries;
    entries = block;
    room = wider;
    return true;
}

void GiveBack() {
    delete[] entries;
    entries = nullptr;
    count = 0;
    room = 0;
}

} // namespace

platform::Lock &TimerSection() noexcept {
    return section;
}

void AddLivingTimer(const zrTimer *timer) noexcept {
    const platform::LockGuard guard(section);
    if (!MakeRoom())
        return;
    Entry *place = PlaceOf(timer);
    std::copy_backward(place, entries + count, entries + count + 1);
    *place = {timer, Increase(timer_starts)};
    ++count;
}

void RemoveLivingTimer(const zrTimer *timer) noexcept {
    const platform::LockGuard guard(section);
    Entry *place = PlaceOf(timer);
    if (!StandsAt(place, timer))
        return;
    std::copy(place + 1, entries + count, place);
    --count;
    Increase(timer_ends);
    if (count == 0)
        GiveBack();
}

bool IsLivingTimer(const zrTimer *timer) noexcept {
    const platform::LockGuard guard(section);
    return StandsAt(PlaceOf(timer), timer);
}

void ForgetLivingTimers() noexcept {
    const platform::LockGuard guard(section);
    GiveBack();
}

bool TimerWatch::IsStillNoted() const noexcept {
    const platform::LockGuard guard(section);
    const Entry *place = PlaceOf(m_timer);
    return StandsAt(place, m_timer) && place->number < m_starts;
}

} // namespace zr::desktop
