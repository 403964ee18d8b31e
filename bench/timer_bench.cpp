// What timers cost between their periods: one turn of a long work, Yield_and_PeekMessage, without timers and with 100 of them that are not
// due; asking for the next one; and the processor time of a thread that waits in a loop of its own.
//
// The peer of the turn is the least that a look at timers takes: one reading of the clock. The peer of a message is a glib
// main context with as many timeouts.
#include <algorithm>
#include <cstdint>
#include <ctime>

#include <benchmark/benchmark.h>
#include <glib.h>
#include <poll.h>

#include <zrclb/zrclb.h>

namespace {

constexpr zr_long far_away = 3600000; // an hour

zr_window window = nullptr;

zr_window CurrentWindow() {
    return window;
}

void HandOn(zr_window, unsigned, zr_value identifier, void *) {
    zrTimerExecute(reinterpret_cast<zrTimer *>(identifier));
}

void Nothing(void *) {}

// Timers of the table for the time of a measurement.
class Timers {
public:
    Timers(int count, zr_long period) {
        window = zrWindowCreate(HandOn, nullptr);
        for (int i = 0; i < count; ++i)
            zrTimerSet(CurrentWindow, period, Nothing, nullptr);
    }
    Timers(const Timers &) = delete;
    Timers &operator=(const Timers &) = delete;
    ~Timers() {
        for (int slot = 0; slot < 100; ++slot)
            zrTimerDel(slot);
        zrWindowDestroy(window);
    }
};

void Clock(benchmark::State &state) {
    for (auto _ : state) {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        benchmark::DoNotOptimize(now);
    }
}

void Yield(benchmark::State &state) {
    const Timers timers(static_cast<int>(state.range(0)), far_away);
    for (auto _ : state)
        Yield_and_PeekMessage();
}

void NextDue(benchmark::State &state) {
    const Timers timers(static_cast<int>(state.range(0)), far_away);
    for (auto _ : state)
        benchmark::DoNotOptimize(zrPumpNextDue());
}

// A turn of glib's loop.
void GlibTurn(benchmark::State &state) {
    GMainContext *context = g_main_context_new();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        GSource *source = g_timeout_source_new(far_away);
        g_source_attach(source, context);
        g_source_unref(source);
    }
    for (auto _ : state)
        g_main_context_iteration(context, FALSE);
    g_main_context_unref(context);
}

double ThreadSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Half a second in a loop that waits for its timers, of a second each: `busy` is the share of the processor.
void Sleeping(benchmark::State &state) {
    const Timers timers(static_cast<int>(state.range(0)), 1000);
    double busy = 0;
    for (auto _ : state) {
        pollfd item{zrPumpDescriptor(), POLLIN, 0};
        const double before = ThreadSeconds();
        const int due = zrPumpNextDue();
        if (poll(&item, 1, due >= 0 ? std::min(due, 500) : 500) == 1)
            Yield_and_PeekMessage();
        busy += ThreadSeconds() - before;
    }
    state.counters["busy"] = benchmark::Counter(busy, benchmark::Counter::kIsRate);
}

BENCHMARK(Clock);
BENCHMARK(Yield)->Arg(0)->Arg(100);
BENCHMARK(NextDue)->Arg(0)->Arg(100);
BENCHMARK(GlibTurn)->Arg(0)->Arg(100);
BENCHMARK(Sleeping)->Arg(0)->Arg(100)->Iterations(4)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
