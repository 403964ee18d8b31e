// Blocks of 24 bytes from a pool beside std::pmr::monotonic_buffer_resource, which is the standard's pool of this kind.
//
// Warm: a pool is filled again and again in memory that the process has touched before. Fresh: each filling is the first
// use of its memory, so that the system's work for new pages counts. The first word of every block is written. Making and
// ending a pool is timed with the rest, for both. The compiler puts the peer's code into the loop; Called is the peer
// behind a call, as the pool is. The library is linked in, so the step through a shared library's table is not measured.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory_resource>
#include <new>

#include <benchmark/benchmark.h>

#include <zrclb/zrclb.h>

namespace {

constexpr unsigned block_size = 24;
constexpr unsigned warm_blocks = 1000;
constexpr unsigned fresh_blocks = 4000000; // 96 MB: above what the allocator keeps for later

// Memory from the counted allocation, as the pool has it.
class Counted : public std::pmr::memory_resource {
    void *do_allocate(std::size_t size, std::size_t) override {
        void *memory = heap_malloc(static_cast<unsigned>(size));
        if (memory == nullptr)
            throw std::bad_alloc();
        return memory;
    }
    void do_deallocate(void *memory, std::size_t, std::size_t) override { heap_free(memory); }
    bool do_is_equal(const memory_resource &other) const noexcept override { return this == &other; }
};

void Touch(void *block) {
    *static_cast<std::uint64_t *>(block) = 1;
    benchmark::DoNotOptimize(block);
}

void FillPool(benchmark::State &state, unsigned count, int clear) {
    for (auto _ : state) {
        heap_pool_block *pool = heap_open(block_size * count + 8, clear);
        for (unsigned i = 0; i < count; ++i)
            Touch(heap_allocate(pool, block_size));
        if (pool->next_block != nullptr)
            state.SkipWithError("more than one block");
        heap_close(pool);
    }
    state.counters["each"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

using Monotonic = std::pmr::monotonic_buffer_resource;

void *AllocateInline(Monotonic &pool) {
    return pool.allocate(block_size, 8);
}

[[gnu::noinline]] void *AllocateCalled(Monotonic &pool) {
    return pool.allocate(block_size, 8);
}

template <void *(*allocate)(Monotonic &)>
void FillMonotonicBy(benchmark::State &state, unsigned count) {
    Counted counted;
    for (auto _ : state) {
        Monotonic pool(block_size * count + 8, &counted);
        for (unsigned i = 0; i < count; ++i)
            Touch(allocate(pool));
    }
    state.counters["each"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void FillMonotonic(benchmark::State &state, unsigned count) {
    FillMonotonicBy<AllocateInline>(state, count);
}

void FillMonotonicCalled(benchmark::State &state, unsigned count) {
    FillMonotonicBy<AllocateCalled>(state, count);
}

BENCHMARK_CAPTURE(FillPool, warm, warm_blocks, 0);
BENCHMARK_CAPTURE(FillPool, warm_clear, warm_blocks, 1);
BENCHMARK_CAPTURE(FillMonotonic, warm, warm_blocks);
BENCHMARK_CAPTURE(FillMonotonicCalled, warm, warm_blocks);
BENCHMARK_CAPTURE(FillPool, fresh, fresh_blocks, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(FillMonotonic, fresh, fresh_blocks)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
