// Fitting a long path into a line, or into several.
#include <zrclb/folders.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"

namespace {

using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

constexpr char bad_arguments[] = "fio_WrapPath: falsche Parameter";
constexpr char too_small[] = "fio_WrapPath: Buffer zu klein";
constexpr char no_break[] = "fio_WrapPath: Umbruch nicht m\xF6glich";

struct Wrapped {
    int code;
    std::string text;
    Reports reports;
};

// Wraps into a buffer of just that size, so that a byte too many is seen.
Wrapped Wrap(const std::string &path, int width, int size) {
    ReportCapture capture;
    std::vector<char> out(static_cast<std::size_t>(size), '#');
    const int code = fio_WrapPath(out.data(), path.c_str(), size, width);
    const std::size_t length = strnlen(out.data(), out.size());
    return {code, std::string(out.data(), length), capture.Take()};
}

// The lines and the code by the rules, plainly.
std::pair<int, std::string> PlainlyWrapped(std::string rest, std::size_t width, std::size_t size) {
    std::string out;
    std::size_t offset = 0;
    if (rest.size() <= width)
        return {0, rest};
    for (;;) {
        const std::string line = rest.substr(0, width);
        if (line.size() < width && out.size() + offset + 2 > size)
            return {-2, out};
        if (line.size() < width)
            return {0, out + line.substr(0, offset + 1)};
        offset = line.rfind('\\');
        if (offset == std::string::npos)
            return {-3, out};
        if (out.size() + offset + 3 > size)
            return {-2, out};
        out += line.substr(0, offset + 1) + "\n";
        rest = rest.substr(offset + 1);
    }
}

TEST(WrapPath, BreaksBehindBackslashes) {
    const Wrapped wrapped = Wrap("abc\\defghi\\jklmnopq", 10, 40);
    EXPECT_EQ(wrapped.code, 0);
    EXPECT_EQ(wrapped.text, "abc\\\ndefghi\\\njklmnop"); // the last piece loses its end
    EXPECT_EQ(wrapped.reports, Reports{});
}

TEST(WrapPath, ShortPathStaysOneLine) {
    EXPECT_EQ(Wrap("abcdefghij", 10, 11).text, "abcdefghij");
    EXPECT_EQ(Wrap("", 1, 1).text, "");
    EXPECT_EQ(Wrap("", 1, 1).code, 0);
}

TEST(WrapPath, BadArgumentsAreReported) {
    char out[8] = "before";
    ReportCapture capture;
    EXPECT_EQ(fio_WrapPath(nullptr, "a", 8, 5), -1);
    EXPECT_EQ(fio_WrapPath(out, nullptr, 8, 5), -1);
    EXPECT_EQ(fio_WrapPath(out, "a", 0, 5), -1);
    EXPECT_EQ(fio_WrapPath(out, "a", 8, 0), -1);
    EXPECT_EQ(fio_WrapPath(out, "a", 8, 256), -1);
    EXPECT_EQ(fio_WrapPath(out, "a", -1, 5), -1);
    EXPECT_EQ(fio_WrapPath(out, "a", 8, -1), -1);
    EXPECT_STREQ(out, "before");
    EXPECT_EQ(capture.Take(), Reports(7, Message("Fio", bad_arguments)));
    EXPECT_EQ(fio_WrapPath(out, "a", 8, 255), 0);
}

TEST(WrapPath, BufferBelowThePathIsTooSmall) {
    const Wrapped wrapped = Wrap("abc\\def", 4, 7);
    EXPECT_EQ(wrapped.code, -2);
    EXPECT_EQ(wrapped.text, "#######");
    EXPECT_EQ(wrapped.reports, Reports{Message("Fio", too_small)});
    EXPECT_EQ(Wrap(std::string(10000, 'x'), 255, 10000).code, -2);
}

TEST(WrapPath, LineThatDoesNotFitEndsIt) {
    // Ten lines of two characters and a line feed each need more than the path has.
    const std::string path = "a\\b\\c\\d\\e\\f\\g\\h\\i\\j\\";
    const Wrapped wrapped = Wrap(path, 2, static_cast<int>(path.size()) + 1);
    EXPECT_EQ(wrapped.code, -2);
    EXPECT_EQ(wrapped.text, "a\\\nb\\\nc\\\nd\\\ne\\\nf\\\n");
    EXPECT_EQ(wrapped.reports, Reports{Message("Fio", too_small)});
}

TEST(WrapPath, LastPieceGoesByTheRoomOfTheLineBefore) {
    // "abcdefg\" and a line feed leave room for the last piece, but not for one as long as the line.
    EXPECT_EQ(Wrap("abcdefg\\x", 8, 17).code, -2);
    EXPECT_EQ(Wrap("abcdefg\\x", 8, 18).code, 0);
    EXPECT_EQ(Wrap("abcdefg\\x", 8, 18).text, "abcdefg\\\nx");
}

TEST(WrapPath, LineWithoutBackslashHasNoBreak) {
    const Wrapped wrapped = Wrap("abcdefghij", 5, 20);
    EXPECT_EQ(wrapped.code, -3);
    EXPECT_EQ(wrapped.text, "");
    EXPECT_EQ(wrapped.reports, Reports{Message("Fio", no_break)});
    EXPECT_EQ(Wrap("ab\\defghijkl", 5, 20).text, "ab\\\n"); // what was written stays
    EXPECT_EQ(Wrap("a/b/c/d/e", 5, 20).code, -3);           // a slash is no place to break
}

TEST(WrapPath, AgreesWithThePlainRulesAtEveryWidth) {
    const std::vector<std::string> paths = {
        "C:\\a\\bb\\ccc\\dddd\\eeeee\\ffffff", "\\\\\\\\\\\\", "a\\", "\\abc\\", "C:\\\xE4\xF6\xFC\\\x80\\\xFF\xFE",
        "one\\two\\three\\four\\five\\six\\"};
    for (const std::string &path : paths)
        for (int width = 1; width <= 255; width = width < 40 ? width + 1 : width + 43) {
            const auto [code, text] = PlainlyWrapped(path, static_cast<std::size_t>(width), 600);
            const Wrapped wrapped = Wrap(path, width, 600);
            EXPECT_NE(code, -2);
            EXPECT_EQ(wrapped.code, code) << path << ' ' << width;
            EXPECT_EQ(wrapped.text, text) << path << ' ' << width;
        }
}

TEST(WrapPath, SmallBuffersEndItAtTheToldPlaces) {
    const std::string path = "ab\\cdef\\g\\hijklm\\n";
    for (std::size_t size = path.size() + 1; size < 60; ++size)
        for (int width = 1; width < 25; ++width) {
            const auto [code, text] = PlainlyWrapped(path, static_cast<std::size_t>(width), size);
            const Wrapped wrapped = Wrap(path, width, static_cast<int>(size));
            EXPECT_EQ(wrapped.code, code) << size << ' ' << width;
            EXPECT_EQ(wrapped.text, text) << size << ' ' << width;
            EXPECT_EQ(wrapped.reports,
                      code == 0 ? Reports{} : Reports{Message("Fio", code == -2 ? too_small : no_break)});
        }
    for (int size = 1; size <= static_cast<int>(path.size()); ++size)
        EXPECT_EQ(Wrap(path, 5, size).code, -2);
}

TEST(CompactPath, CutsInFrontOfTheName) {
    char out[64];
    EXPECT_EQ(fio_CompactPath(out, "C:\\folder\\other\\name.txt", 20, 0), 1);
    EXPECT_EQ(std::strlen(out), 19U);
    EXPECT_NE(std::strstr(out, "...\\name.txt"), nullptr) << out;
    EXPECT_EQ(fio_CompactPath(out, "C:\\a", 20, 7), 1);
    EXPECT_STREQ(out, "C:\\a");
}

TEST(CompactPath, NothingFitsIntoNoWidth) {
    char out[8] = "before";
    EXPECT_EQ(fio_CompactPath(out, "C:\\a", 0, 0), 1);
    EXPECT_STREQ(out, "before");
    EXPECT_EQ(fio_CompactPath(out, "C:\\a", 1, 0), 1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(fio_CompactPath(out, "", 8, 0), 1);
    EXPECT_STREQ(out, "");
}

TEST(CompactPath, OverlongPathsStayInsideTheWidth) {
    for (const std::size_t length : {259U, 260U, 10000U}) {
        char out[41];
        out[40] = '#';
        EXPECT_EQ(fio_CompactPath(out, ("C:\\" + std::string(length - 8, '\xE4') + "\\name").c_str(), 40, 0), 1);
        EXPECT_EQ(out[40], '#');
        EXPECT_EQ(std::string(out).size(), 39U);
        EXPECT_NE(std::strstr(out, "...\\name"), nullptr) << out;
    }
}

TEST(CompactPath, NullPointersGiveZero) {
    char out[8] = "before";
    EXPECT_EQ(fio_CompactPath(nullptr, "a", 8, 0), 0);
    EXPECT_EQ(fio_CompactPath(out, nullptr, 8, 0), 0);
    EXPECT_STREQ(out, "before");
}

} // namespace
