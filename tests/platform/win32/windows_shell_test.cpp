// What the shell is told of an operation on a group of files.
#include "platform/win32/shell_flags.h"

#include <gtest/gtest.h>

namespace {

using zr::platform::GroupOptions;
using zr::platform::GroupVerb;
using zr::platform::windows::FlagsOf;

constexpr unsigned several = 0x0001, silent = 0x0004, no_confirmation = 0x0010, files_only = 0x0080, simple = 0x0100,
                   no_question_for_folders = 0x0200, no_error_box = 0x0400;

TEST(ShellFlags, NobodyIsAsked) {
    for (const GroupVerb verb : {GroupVerb::copy, GroupVerb::move, GroupVerb::remove})
        EXPECT_EQ(FlagsOf(verb, {}), no_confirmation | no_question_for_folders | no_error_box | silent);
}

TEST(ShellFlags, TitleShowsTheBox) {
    GroupOptions options;
    options.progress_title = "title";
    EXPECT_EQ(FlagsOf(GroupVerb::copy, options), no_confirmation | no_question_for_folders | no_error_box);
    EXPECT_EQ(FlagsOf(GroupVerb::rename, options), no_confirmation | no_error_box | simple);
}

TEST(ShellFlags, TargetsAndFilesOnly) {
    GroupOptions options;
    options.several_targets = true;
    options.files_only = true;
    EXPECT_EQ(FlagsOf(GroupVerb::move, options),
              no_confirmation | no_question_for_folders | no_error_box | silent | several | files_only);
}

} // namespace
