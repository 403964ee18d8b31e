// That Linux does what it is told about pages: puts memory behind them ahead of their first touch, and takes it back.
#include "platform/memory.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zr::platform {
namespace {

class Pages : public testing::Test {
protected:
    ~Pages() override { munmap(memory, size); }

    std::size_t InMemory() const {
        std::vector<unsigned char> pages(count);
        EXPECT_EQ(mincore(memory, size, pages.data()), 0);
        return static_cast<std::size_t>(
            std::count_if(pages.begin(), pages.end(), [](unsigned char flags) { return (flags & 1) != 0; }));
    }

    static constexpr std::size_t count = 16;
    const std::size_t page = static_cast<std::size_t>(getpagesize());
    const std::size_t size = count * page;
    void *const memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
};

TEST_F(Pages, FilledAhead_WholeOnesAlone) {
    ASSERT_NE(memory, MAP_FAILED);
    ASSERT_EQ(InMemory(), 0U);
    if (madvise(memory, page, MADV_POPULATE_WRITE) != 0)
        GTEST_SKIP() << "the system does not know the request";
    FillPagesAhead(static_cast<char *>(memory) + page + 1, 5 * page);
    EXPECT_EQ(InMemory(), 1U + 4U);
    FillPagesAhead(memory, size);
    EXPECT_EQ(InMemory(), count);
}

TEST_F(Pages, Forgotten_IsKnownToTheSystem) {
    ASSERT_NE(memory, MAP_FAILED);
    EXPECT_TRUE(ForgetContents(memory, size));
    EXPECT_TRUE(ForgetContents(static_cast<char *>(memory) + 1, 2 * page));
    EXPECT_FALSE(ForgetContents(static_cast<char *>(memory) + 1, page)) << "no whole page";
}

} // namespace
} // namespace zr::platform
