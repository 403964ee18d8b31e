// Any calls on pools of any size: each allocation lies where the reference has it, is zero if the pool clears, keeps what is
// written into it, and all memory comes back.
#include <cstdint>
#include <cstring>
#include <vector>

#include <zrclb/heap.h>

#include "byte_input.h"
#include "frame/counted_allocation.h"
#include "frame/pool.h"
#include "frame/reference_pool.h"
#include "platform/services.h"

namespace {

using fuzz::Require;
using zr::test::ReferencePool;

int error_texts = 0;

struct Given {
    unsigned char *data;
    unsigned size;
    unsigned char fill;
};

class Run {
public:
    Run(unsigned cachesize, int clear)
        : m_pool(heap_open(cachesize, clear)), m_reference(cachesize), m_clear(clear), m_bytes(BytesNow()) {
        Require(m_pool != nullptr, "pool opens");
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;
    ~Run() { heap_close(m_pool); }

    void Allocate(unsigned size) {
        DirtyWhatIsFree(m_pool);
        error_texts = 0;
        auto *data = static_cast<unsigned char *>(heap_allocate(m_pool, size));
        m_bytes += size;
        const auto expected = m_reference.Allocate(size);
        Require(m_reference.IsLike(m_pool, m_clear), "same chain");
        Require(BytesNow() == m_bytes, "sizes are summed");
        Require((error_texts > 0) == !expected, "error where the size is too large");
        Require((data != nullptr) == expected.has_value(), "allocated where it fits");
        if (!expected)
            return;
        heap_pool_block *block = ReferencePool::BlockAt(m_pool, expected->block);
        Require(reinterpret_cast<char *>(data) == ReferencePool::DataOf(block) + expected->offset, "same place");
        Require(reinterpret_cast<std::uintptr_t>(data) % 8 == 0, "on a multiple of 8");
        CheckBytes(data, size);
        const auto fill = static_cast<unsigned char>(m_given.size() * 7 + 1);
        std::memset(data, fill, size);
        m_given.push_back({data, size, fill});
    }

    void Deallocate() { heap_deallocate(m_pool, m_given.empty() ? nullptr : m_given.back().data); }

    // Nothing that was given has been written by anybody else.
    void CheckGiven() const {
        for (const Given &given : m_given) {
            for (unsigned i = 0; i < given.size; ++i)
                Require(given.data[i] == given.fill, "bytes stay");
        }
    }

private:
    static constexpr unsigned char dirt = 0xAA;

    static std::uint32_t BytesNow() { return static_cast<std::uint32_t>(zr::frame::heap_pool_bytes.load()); }

    static void DirtyWhatIsFree(heap_pool_block *block) {
        for (; block != nullptr; block = block->next_block)
            std::memset(block->next_free, dirt, static_cast<std::size_t>(block->free));
    }

    // Zeros for the size asked for, and in blocks that were there before not for more.
    void CheckBytes(const unsigned char *data, unsigned size) {
        for (unsigned i = 0; m_clear != 0 && i < size; ++i)
            Require(data[i] == 0, "zeros");
        if (m_reference.BlockCount() == m_blocks) {
            for (unsigned i = size; i % 8 != 0; ++i)
                Require(data[i] == dirt, "no zeros behind");
        }
        m_blocks = m_reference.BlockCount();
    }

    heap_pool_block *m_pool;
    ReferencePool m_reference;
    int m_clear;
    std::uint32_t m_bytes;
    std::size_t m_blocks = 1;
    std::vector<Given> m_given;
};

} // namespace

// Two bytes of cachesize, one of flags, then a call a byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 3 || size > 600)
        return 0;
    zr::platform::services.debug_output = [](const char *) { ++error_texts; };
    const zr_long blocks = zr::frame::heap_block_count;
    {
        Run run(data[0] + 256u * (data[1] % 16), data[2] % 3 - 1);
        for (std::size_t i = 3; i < size; ++i) {
            if (data[i] == 255)
                run.Deallocate();
            else if (data[i] >= 240) // the upper four bits of a size, whose lower ones are those of the byte before
                run.Allocate((data[i] - 240u) << 28 | data[i - 1]);
            else
                run.Allocate(data[i]);
        }
        run.CheckGiven();
    }
    Require(zr::frame::heap_block_count == blocks, "no block is left");
    return 0;
}
