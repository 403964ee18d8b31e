// Error codes of the operating system with their texts.
#include <string>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>
#include <zrclb/window_utilities.hpp>

#include "env/refused_memory.h"
#include "platform/system_text.h"
#include "process_measures.h"

namespace {

constexpr zr_ulong unknown = 0x2FFF1234; // of an application

TEST(WinError, HoldsACode) {
    EXPECT_EQ(sizeof(CZrWinError), sizeof(zr_ulong));
    EXPECT_FALSE(std::is_polymorphic_v<CZrWinError>);
    EXPECT_EQ(CZrWinError().GetCode(), 0u);
    CZrWinError error(5);
    EXPECT_EQ(error.GetCode(), 5u);
    EXPECT_EQ(static_cast<zr_ulong>(error), 5u);
    error.SetCode(0xFFFFFFFF);
    EXPECT_EQ(error.GetCode(), 0xFFFFFFFFu);
    const CZrWinError from_code = 6;
    EXPECT_EQ(from_code.GetCode(), 6u);
}

TEST(WinError, IsCopiedAndAssigned) {
    CZrWinError error(5);
    const CZrWinError copy(error);
    CZrWinError other;
    EXPECT_EQ(&(other = error), &other);
    EXPECT_EQ(&(error = 2), &error);
    EXPECT_EQ(copy.GetCode(), 5u);
    EXPECT_EQ(other.GetCode(), 5u);
    EXPECT_EQ(error.GetCode(), 2u);
    CZrWinError &self = error;
    error = self;
    EXPECT_EQ(error.GetCode(), 2u);
}

TEST(WinError, TextIsThatOfTheSystem) {
    for (zr_ulong code : {0u, 2u, 5u, 87u, 112u, 193u}) {
        const zr::platform::SystemText text(code);
        ASSERT_NE(text.Get(), nullptr) << code;
        EXPECT_EQ(CZrWinError::GetFormattedMsg(code), text.Get());
        EXPECT_EQ(CZrWinError(code).GetFormattedMsg(), text.Get());
        EXPECT_GT(CZrWinError(code).GetFormattedMsg().size(), 5u);
    }
    EXPECT_NE(CZrWinError::GetFormattedMsg(2), CZrWinError::GetFormattedMsg(5));
}

TEST(WinError, TextHasItsLineEndAndItsInserts) {
    const std::string success = CZrWinError().GetFormattedMsg();
    ASSERT_GT(success.size(), 2u);
    EXPECT_EQ(success.substr(success.size() - 2), "\r\n");
    EXPECT_NE(CZrWinError::GetFormattedMsg(193).find("%1"), std::string::npos);
}

TEST(WinError, UnknownCodeHasNoText) {
    EXPECT_EQ(CZrWinError(unknown).GetFormattedMsg(), "");
    EXPECT_EQ(CZrWinError::GetFormattedMsg(unknown), "");
    EXPECT_EQ(CZrWinError(5).GetFormattedMsg(unknown), ""); // the code given counts, not the object's
    EXPECT_NE(CZrWinError(unknown).GetFormattedMsg(5), "");
}

TEST(WinError, TextsAreGivenBack) {
    CZrWinError::GetFormattedMsg(5);
    const long long heap_before = ProcessMeasures::Now().heap;
    for (int i = 0; i < 1000; ++i)
        CZrWinError::GetFormattedMsg(5);
    EXPECT_LT(ProcessMeasures::Now().heap, heap_before + 10000);
}

// All that this family has, each thread with arguments of its own.
TEST(WindowUtilities, OfTwoThreads_DoNotMeet) {
    const auto use = [](const char *name, const char *date, int order, zr_ulong code, const std::string &message) {
        for (int i = 0; i < 1000; ++i) {
            char file[20] = "before";
            ASSERT_EQ(wu_ANCmp(name, "Pos 10a"), order);
            ASSERT_EQ(wu_DateCmp(date, "15.06.13 12:30:30"), order);
            ASSERT_EQ(wu_GetFontFile("no such font", file, sizeof file), 0);
            ASSERT_EQ(CZrWinError(code).GetFormattedMsg(), message);
        }
    };
    const std::string second = CZrWinError::GetFormattedMsg(2), fifth = CZrWinError::GetFormattedMsg(5);
    std::thread beside(use, "Pos 9a", "15.06.13 12:30:29", -1, 2, second);
    use("Pos 11a", "15.06.13 12:30:31", 1, 5, fifth);
    beside.join();
}

TEST(WinError, WithoutMemoryThereIsNoText) {
    std::string text = "before";
    {
        zr::test::NthAllocation refused(0);
        text = CZrWinError::GetFormattedMsg(5);
        EXPECT_TRUE(refused.Met());
    }
    EXPECT_EQ(text, "");
    EXPECT_NE(CZrWinError::GetFormattedMsg(5), "");
}

} // namespace
