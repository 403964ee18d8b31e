// The trace stack: brackets that applications open and close around their functions.
#include "frame/trace.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <zrclb/report.h>

#include "frame/log.h"
#include "platform/message_box.h"

namespace zr::frame {
namespace {

constexpr int trace_limit = 20;
constexpr std::size_t trace_name_size = 80;

// One stack for the process and no lock, so brackets of several threads mix. The bytes are atomic so that a mixed
// traceback is the worst that comes of it.
struct TraceSlot {
    std::atomic<std::uint32_t> count = 0;
    std::atomic<char> name[trace_name_size] = {}; // the last byte is always 0
};

constinit TraceSlot trace_slots[trace_limit];
constinit std::atomic<bool> trace_active = true;
constinit std::atomic<int> trace_depth = 0; // 0..trace_limit

// Whether the slot holds `name`, as far as a slot can hold it.
bool HoldsName(const TraceSlot &slot, const char *name) {
    std::size_t i = 0;
    while (i < trace_name_size - 1 && name[i] != '\0') {
        if (slot.name[i].load(std::memory_order_relaxed) != name[i]) {
            return false;
        }
        ++i;
    }
    return slot.name[i].load(std::memory_order_relaxed) == '\0';
}

void StoreName(TraceSlot &slot, const char *name) {
    std::size_t i = 0;
    for (; i < trace_name_size - 1 && name[i] != '\0'; ++i) {
        slot.name[i].store(name[i], std::memory_order_relaxed);
    }
    slot.name[i].store('\0', std::memory_order_relaxed);
}

void CopyName(const TraceSlot &slot, char (&out)[trace_name_size]) {
    for (std::size_t i = 0; i < trace_name_size; ++i) {
        out[i] = slot.name[i].load(std::memory_order_relaxed);
    }
}

void ShowMismatch() {
    const char *caption = "MISSMATCH WITH BEGIN-END-BRACKET:\n";
    const char *text = "  END without BEGIN!\n\n";
    constexpr unsigned always_on_top = 0x40000;
    // The box comes before the log section is entered, so that a waiting box blocks nobody's reports.
    platform::ShowMessageBox(platform::FocusWindow(), text, caption, always_on_top);
    LogRecord record;
    record.Write("> ");
    record.Write(caption);
    record.Write(text);
}

} // namespace

void WriteTraceback(LogRecord &record) {
    int depth = trace_depth.load(std::memory_order_relaxed);
    if (trace_active.load(std::memory_order_relaxed) && depth > 0) {
        record.Write("  traceback:\n");
        for (int i = depth - 1; i >= 0; --i) {
            char name[trace_name_size];
            CopyName(trace_slots[i], name);
            record.WriteCall(name, trace_slots[i].count.load(std::memory_order_relaxed));
        }
        record.Write("  - main.\n");
    }
    record.Write("\n\n");
}

} // namespace zr::frame

using namespace zr::frame;

extern "C" {

void zr_begin(const char *name) noexcept {
    if (!trace_active.load(std::memory_order_relaxed)) {
        return;
    }
    const char *text = name != nullptr ? name : "";
    // Read once: with another thread in between, every index still lies in the table.
    int depth = trace_depth.load(std::memory_order_relaxed);
    if (depth > 0 && HoldsName(trace_slots[depth - 1], text)) {
        trace_slots[depth - 1].count.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    if (depth >= trace_limit) {
        // Tracing ends first, so that this record already goes without a traceback.
        trace_active.store(false, std::memory_order_relaxed);
        zr_error("zr_begin: runtime stack overflow", nullptr, nullptr, "Zr", __LINE__);
        return;
    }
    StoreName(trace_slots[depth], text);
    trace_slots[depth].count.store(1, std::memory_order_relaxed);
    trace_depth.store(depth + 1, std::memory_order_relaxed);
}

void zr_end(void) noexcept {
    if (!trace_active.load(std::memory_order_relaxed)) {
        return;
    }
    int depth = trace_depth.load(std::memory_order_relaxed);
    if (depth < 1) {
        ShowMismatch();
    } else if (trace_slots[depth - 1].count.load(std::memory_order_relaxed) >= 2) {
        trace_slots[depth - 1].count.fetch_sub(1, std::memory_order_relaxed);
    } else {
        trace_depth.store(depth - 1, std::memory_order_relaxed);
    }
}
}
