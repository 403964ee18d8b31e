// The scratch buffer of the conversions.
#include "env/std_alloc_buffer.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#include <zrclb/heap.h>
#include <zrclb/report.h>

namespace zr::env {

namespace {

constexpr const char *SourceTag = "ZrEnvDataConvert";
constexpr std::uint64_t FixedSize = 10002;
alignas(std::max_align_t) char FixedBlock[FixedSize];

} // namespace

void *g_StdAllocBuff = nullptr;

void *StdAllocBuffer(zr_ulong count, zr_ulong itemSize) {
    if (g_StdAllocBuff != nullptr) {
        zr_error("g_StdAllocBuff !=  NIL", nullptr, nullptr, SourceTag, __LINE__);
        g_StdAllocBuff = nullptr;
    }
    const std::uint64_t size = std::uint64_t{count} * itemSize + 1;
    if (size < FixedSize)
        return FixedBlock;
    if (size <= std::numeric_limits<unsigned int>::max())
        g_StdAllocBuff = heap_malloc(static_cast<unsigned int>(size));
    if (g_StdAllocBuff == nullptr)
        zr_error("heap_malloc", nullptr, nullptr, SourceTag, __LINE__);
    return g_StdAllocBuff;
}

void StdFreeBuffer() {
    heap_free(g_StdAllocBuff);
    g_StdAllocBuff = nullptr;
}

} // namespace zr::env
