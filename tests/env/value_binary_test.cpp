// ENV_BIN: the escape table, both versions, plain texts, capacities and reports.
#include "env/value_binary.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/report_capture.h"

namespace {

using zr::test::Message;
using zr::test::ReportCapture;
using zr::test::Reports;

constexpr const char *Tag = "ZrEnvDataConvert";
constexpr const char *SmallBuffer = "Small buffer";
constexpr const char *UnknownSymbol = "Unknown '_'-symbol";
constexpr const char *IncorrectVersion = "Incorrect version of ENV_BIN";

const std::string Version1 = "1\xD0";
const std::string Version2 = "2\xD0";

std::string Encoded(const std::string &bytes) {
    std::vector<char> target(2 * bytes.size() + 11, '#');
    const auto length = static_cast<zr_long>(bytes.size());
    EXPECT_EQ(zr::env::EncodeBinary(bytes.data(), target.data(), length), 0);
    const std::string text = target.data();
    EXPECT_EQ(zr::env::EncodedLength(bytes.data(), length), text.size());
    return text;
}

struct Decoded {
    Zr::EZrEnvError result;
    zr_long size;
    std::string target; // the whole target, filled with # before
};

Decoded Decode(const std::string &text, zr_long capacity) {
    std::string target(capacity > 0 ? static_cast<std::size_t>(capacity) : 1, '#');
    zr_long size = capacity;
    const Zr::EZrEnvError result = zr::env::DecodeBinary(text.c_str(), target.data(), &size);
    return {result, size, target};
}

std::string AllBytes() {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    return bytes;
}

class ValueBinary : public testing::Test {
protected:
    void ExpectReports(const Reports &expected) { EXPECT_EQ(m_reports.Take(), expected); }

    ReportCapture m_reports;
};

TEST_F(ValueBinary, EncodesTheFifteenPairs) {
    const std::string bytes("\0\n\r\x1A ,;=[\\]_{}\xFF", 15);
    EXPECT_EQ(Encoded(bytes), Version2 + "_0_n_r_A_p_m_s_e_O_b_C___o_c_F");
}

TEST_F(ValueBinary, AllOtherBytesStandForThemselves) {
    const std::string escaped("\0\n\r\x1A ,;=[\\]_{}\xFF", 15);
    for (const char byte : AllBytes()) {
        if (escaped.find(byte) == std::string::npos) {
            EXPECT_EQ(Encoded(std::string(1, byte)), Version2 + byte);
        }
    }
    EXPECT_EQ(Encoded("\xD0"), Version2 + "\xD0");
}

TEST_F(ValueBinary, NothingEncodesToTheHeaderAlone) {
    EXPECT_EQ(Encoded(""), Version2);
    char target[11] = "##########";
    EXPECT_EQ(zr::env::EncodeBinary(nullptr, target, -5), 0);
    EXPECT_EQ(target, Version2);
    EXPECT_EQ(zr::env::EncodedLength(nullptr, -5), 2U);
}

TEST_F(ValueBinary, AllBytesSurviveAndTheTextIsSafeInAFile) {
    const std::string bytes = AllBytes();
    const std::string text = Encoded(bytes);
    EXPECT_EQ(text.find_first_of("\n\r []{}=;,\\\x1A\xFF"), std::string::npos);
    EXPECT_EQ(text.size(), 2 + bytes.size() + 15);
    const Decoded decoded = Decode(text, 257);
    EXPECT_EQ(decoded.result, Zr::ENV_OK);
    EXPECT_EQ(decoded.size, 256);
    EXPECT_EQ(decoded.target, bytes + "#");
    ExpectReports({});
}

TEST_F(ValueBinary, TargetNeedsAByteMoreThanThePayload) {
    const Decoded full = Decode(Version2 + "abc", 3);
    EXPECT_EQ(full.result, Zr::ENV_TOO_SMALL);
    EXPECT_EQ(full.size, 3);
    EXPECT_EQ(full.target, "abc");
    ExpectReports({Message(Tag, SmallBuffer)});
    const Decoded fits = Decode(Version2 + "abc", 4);
    EXPECT_EQ(fits.result, Zr::ENV_OK);
    EXPECT_EQ(fits.size, 3);
    EXPECT_EQ(fits.target, "abc#");
    ExpectReports({});
}

TEST_F(ValueBinary, TargetHoldsWhatFits) {
    for (const char *body : {"abcdef", "ab_mde", "a__b_0", "_0_0_0_0"}) {
        const Decoded decoded = Decode(Version2 + body, 2);
        EXPECT_EQ(decoded.result, Zr::ENV_TOO_SMALL) << body;
        EXPECT_EQ(decoded.size, 2) << body;
        ExpectReports({Message(Tag, SmallBuffer)});
    }
    EXPECT_EQ(Decode(Version2 + "a__b_0", 2).target, "a_");
    EXPECT_EQ(Decode(Version2 + "_m_m_m", 1).target, ",");
}

TEST_F(ValueBinary, NoCapacityIsTooSmallForAnything) {
    for (const zr_long capacity : {0, -1, -2147483647 - 1}) {
        for (const std::string &text : {Version2 + "abc", Version2, std::string("abc"), std::string()}) {
            const Decoded decoded = Decode(text, capacity);
            EXPECT_EQ(decoded.result, Zr::ENV_TOO_SMALL);
            EXPECT_EQ(decoded.size, capacity);
            EXPECT_EQ(decoded.target, "#");
            ExpectReports({Message(Tag, SmallBuffer)});
        }
    }
}

TEST_F(ValueBinary, EmptyBodyIsNoBytes) {
    for (const std::string &text : {Version1, Version2}) {
        const Decoded decoded = Decode(text, 1);
        EXPECT_EQ(decoded.result, Zr::ENV_OK);
        EXPECT_EQ(decoded.size, 0);
        EXPECT_EQ(decoded.target, "#");
    }
    ExpectReports({});
}

TEST_F(ValueBinary, PlainTextReadsAsItsOwnBytes) {
    for (const char *text : {"abc", "2abc", "12\xCF\xD0", "_ab", "x\xD0", " \xD0", "-\xD0", "2 \xD0"}) {
        const Decoded decoded = Decode(text, 8);
        const std::string bytes = text;
        EXPECT_EQ(decoded.result, Zr::ENV_OK) << text;
        EXPECT_EQ(decoded.size, static_cast<zr_long>(bytes.size())) << text;
        EXPECT_EQ(decoded.target, bytes + '\0' + std::string(7 - bytes.size(), '#')) << text;
    }
    const Decoded empty = Decode("", 2);
    EXPECT_EQ(empty.result, Zr::ENV_OK);
    EXPECT_EQ(empty.size, 0);
    EXPECT_EQ(empty.target, std::string("\0#", 2));
    ExpectReports({});
}

TEST_F(ValueBinary, PlainTextOfTheCapacityFitsWithoutTerminator) {
    const Decoded fits = Decode("abc", 3);
    EXPECT_EQ(fits.result, Zr::ENV_OK);
    EXPECT_EQ(fits.size, 3);
    EXPECT_EQ(fits.target, "abc");
    ExpectReports({});
    const Decoded longer = Decode("abcd", 3);
    EXPECT_EQ(longer.result, Zr::ENV_TOO_SMALL);
    EXPECT_EQ(longer.size, 3);
    EXPECT_EQ(longer.target, "abc");
    ExpectReports({Message(Tag, SmallBuffer)});
}

TEST_F(ValueBinary, OtherVersionsAreRefused) {
    for (const char *text : {"\xD0",
                             "0\xD0"
                             "abc",
                             "3\xD0"
                             "abc",
                             "-2\xD0"
                             "abc",
                             "12\xD0", "4294967298\xD0", "\xD0\xD0"}) {
        const Decoded decoded = Decode(text, 8);
        EXPECT_EQ(decoded.result, Zr::ENV_ERROR) << text;
        EXPECT_EQ(decoded.size, 8) << text;
        EXPECT_EQ(decoded.target, "########") << text;
        ExpectReports({Message(Tag, IncorrectVersion)});
    }
    EXPECT_EQ(Decode("3\xD0", 0).result, Zr::ENV_ERROR);
    ExpectReports({Message(Tag, IncorrectVersion)});
}

TEST_F(ValueBinary, VersionIsReadAsANumber) {
    for (const char *head : {"2\xD0", " 2\xD0", "\t\n\v\f\r+2\xD0", "0002\xD0", "1\xD0"}) {
        const Decoded decoded = Decode(std::string(head) + "a_mb", 8);
        EXPECT_EQ(decoded.result, Zr::ENV_OK) << head;
        EXPECT_EQ(decoded.size, 3) << head;
        EXPECT_EQ(decoded.target.substr(0, 3), "a,b") << head;
    }
    ExpectReports({});
}

TEST_F(ValueBinary, ControlZIsAPairSinceVersion2) {
    EXPECT_EQ(Decode(Version2 + "_A", 2).target, "\x1A#");
    ExpectReports({});
    const Decoded old = Decode(Version1 + "_A", 2);
    EXPECT_EQ(old.result, Zr::ENV_OK);
    EXPECT_EQ(old.size, 1);
    EXPECT_EQ(old.target, "##");
    ExpectReports({Message(Tag, UnknownSymbol)});
}

TEST_F(ValueBinary, AllOtherPairsAreReadInBothVersions) {
    const std::string bytes("\0\n\r ,;=[\\]_{}\xFF", 14);
    for (const std::string &head : {Version1, Version2})
        EXPECT_EQ(Decode(head + "_0_n_r_p_m_s_e_O_b_C___o_c_F", 15).target, bytes + "#");
    ExpectReports({});
}

TEST_F(ValueBinary, UnknownPairLeavesItsByteAsItWas) {
    const Decoded decoded = Decode(Version2 + "a_xb_\xD0_c", 8);
    EXPECT_EQ(decoded.result, Zr::ENV_OK);
    EXPECT_EQ(decoded.size, 5);
    EXPECT_EQ(decoded.target, "a#b#}###");
    ExpectReports({Message(Tag, UnknownSymbol), Message(Tag, UnknownSymbol)});
    EXPECT_EQ(Decode(Version2 + "_x", 1).result, Zr::ENV_TOO_SMALL);
    ExpectReports({Message(Tag, UnknownSymbol), Message(Tag, SmallBuffer)});
}

TEST_F(ValueBinary, EveryByteBehindTheMarkIsKnownOrUnknown) {
    const std::string letters = "0nrApmseObC_ocF";
    for (int byte = 1; byte < 256; ++byte) {
        const auto letter = static_cast<char>(byte);
        const Decoded decoded = Decode(Version2 + "_" + letter, 2);
        EXPECT_EQ(decoded.size, 1) << byte;
        EXPECT_EQ(m_reports.Take().empty(), letters.find(letter) != std::string::npos) << byte;
    }
}

TEST_F(ValueBinary, MarkAtTheEndIsUnknownAndConsumesOneByte) {
    const Decoded decoded = Decode(Version2 + "ab_", 8);
    EXPECT_EQ(decoded.result, Zr::ENV_OK);
    EXPECT_EQ(decoded.size, 3);
    EXPECT_EQ(decoded.target, "ab######");
    ExpectReports({Message(Tag, UnknownSymbol)});
    EXPECT_EQ(Decode(Version2 + "_", 8).size, 1);
    EXPECT_EQ(Decode(Version2 + "___", 8).size, 2);
    ExpectReports({Message(Tag, UnknownSymbol), Message(Tag, UnknownSymbol)});
}

TEST_F(ValueBinary, TenMegabytesSurvive) {
    std::string bytes;
    for (int i = 0; i < 10000000; ++i)
        bytes += static_cast<char>(i * 7 + i / 256);
    const Decoded decoded = Decode(Encoded(bytes), 10000001);
    EXPECT_EQ(decoded.result, Zr::ENV_OK);
    EXPECT_EQ(decoded.size, 10000000);
    EXPECT_TRUE(decoded.target == bytes + "#");
}

TEST_F(ValueBinary, NullArgumentsAreRefused) {
    char target[4] = "###";
    zr_long size = 4;
    EXPECT_EQ(zr::env::DecodeBinary(nullptr, target, &size), Zr::ENV_ERROR);
    EXPECT_EQ(zr::env::DecodeBinary("abc", nullptr, &size), Zr::ENV_ERROR);
    EXPECT_EQ(zr::env::DecodeBinary("abc", target, nullptr), Zr::ENV_ERROR);
    EXPECT_EQ(size, 4);
    EXPECT_STREQ(target, "###");
    ExpectReports({});
}

} // namespace
