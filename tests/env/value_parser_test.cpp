// The value parser: the stated cases, and its agreement with the rule-by-rule reference.
#include "env/value_parser.h"

#include <array>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "env/reference_value_grammar.h"

namespace {

using zr::test::ReferenceValueGrammar;
using Zr::CZrEnvValueParser;
using Zr::CZrEnvValueSink;

constexpr double Infinity = std::numeric_limits<double>::infinity();

template <class Value>
struct Outcome {
    int result;
    std::vector<Value> values;
    bool overflowed;
    std::string message;
};

template <class Value>
Outcome<Value> Parse(const char *text, std::size_t room, CZrEnvValueParser::Rule rule) {
    std::vector<Value> values(room);
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(values.data(), room * sizeof(Value));
    CZrEnvValueParser parser(text, sink);
    const int result = parser.Run(rule);
    EXPECT_EQ(result == 0, parser.GetStatus() == CZrEnvValueParser::Matched);
    EXPECT_EQ(result == 0, parser.GetMessage() == nullptr);
    values.resize(sink.BytesWritten() / sizeof(Value));
    return {result, values, sink.Overflowed(), parser.GetMessage() != nullptr ? parser.GetMessage() : ""};
}

Outcome<zr_long> Long(const char *text) {
    return Parse<zr_long>(text, 1, &CZrEnvValueParser::ParseLong);
}
Outcome<double> Double(const char *text) {
    return Parse<double>(text, 1, &CZrEnvValueParser::ParseDouble);
}
Outcome<zr_long> Longs(const char *text, std::size_t room = 8) {
    return Parse<zr_long>(text, room, &CZrEnvValueParser::ParseLongs);
}
Outcome<double> Doubles(const char *text, std::size_t room = 8) {
    return Parse<double>(text, room, &CZrEnvValueParser::ParseDoubles);
}

void ExpectLong(const char *text, zr_long value) {
    const Outcome<zr_long> outcome = Long(text);
    EXPECT_EQ(outcome.result, 0) << text;
    EXPECT_EQ(outcome.values, std::vector<zr_long>{value}) << text;
}

void ExpectDouble(const char *text, double value) {
    const Outcome<double> outcome = Double(text);
    EXPECT_EQ(outcome.result, 0) << text;
    EXPECT_EQ(outcome.values, std::vector<double>{value}) << text;
}

TEST(ParseLong, AcceptsBlanksSignAndOneLineEnd) {
    ExpectLong("12", 12);
    ExpectLong("  12  ", 12);
    ExpectLong("\t 12 \t", 12);
    ExpectLong("+7", 7);
    ExpectLong("-7", -7);
    ExpectLong("12 \n34", 12);
    ExpectLong("12\rrubbish", 12);
    ExpectLong("007", 7);
}

TEST(ParseLong, SaturatesAt32Bits) {
    ExpectLong("2147483648", 2147483647);
    ExpectLong("-2147483649", -2147483647 - 1);
    ExpectLong("123456789012345678901234567890", 2147483647);
}

TEST(ParseLong, RefusesWhatIsNoIntegerAndStoresNothing) {
    for (const char *text : {"", " ", "abc", "+", "-", "+-1", "- 1", "\n12", ",1", ".5", "\xB2", "\v1", "#1"}) {
        const Outcome<zr_long> outcome = Long(text);
        EXPECT_EQ(outcome.result, -1) << text;
        EXPECT_EQ(outcome.values.size(), 0U) << text;
        EXPECT_EQ(outcome.message, "bad_digit") << text;
    }
}

TEST(ParseLong, StoresBeforeItRefusesWhatFollows) {
    for (const char *text : {"12 34", "12,34", "12.0", "12abc", "12e1", "12x10", "12\v", "12\x1A", "12\xFF"}) {
        const Outcome<zr_long> outcome = Long(text);
        EXPECT_EQ(outcome.result, -1) << text;
        EXPECT_EQ(outcome.values, std::vector<zr_long>{12}) << text;
        EXPECT_EQ(outcome.message, "EOF expected") << text;
    }
}

TEST(ParseLong, TakesNoHexadecimal) {
    const Outcome<zr_long> outcome = Long("0x10");
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.values, std::vector<zr_long>{0});
}

TEST(ParseDouble, AcceptsAllForms) {
    ExpectDouble("12", 12);
    ExpectDouble(" -1.5\t", -1.5);
    ExpectDouble("1e", 1.0);
    ExpectDouble("1.D", 1.0);
    ExpectDouble("1.5D", 1.5);
    ExpectDouble(".5D", 0.5);
    ExpectDouble("-.25e-1\r", -0.025);
    ExpectDouble(".5", 0.5);
    ExpectDouble("5.", 5.0);
    ExpectDouble("+.5e3", 500.0);
    ExpectDouble("1d2", 100.0);
    ExpectDouble("1D-2 \n x", 0.01);
    ExpectDouble("1E+2", 100.0);
    ExpectDouble("1e400", Infinity);
    ExpectDouble("-1e400", -Infinity);
    ExpectDouble("1e-400", 0.0);
}

TEST(ParseDouble, RefusesWhatIsNoNumberAndStoresNothing) {
    for (const char *text : {"", " ", ".", "e5", ".e5", "+", "-", "+.", "abc", "inf", "-inf", "nan", "--1", "\xB2"}) {
        const Outcome<double> outcome = Double(text);
        EXPECT_EQ(outcome.result, -1) << text;
        EXPECT_EQ(outcome.values.size(), 0U) << text;
        EXPECT_EQ(outcome.message, "bad_digit") << text;
    }
}

TEST(ParseDouble, StoresBeforeItRefusesWhatFollows) {
    for (const char *text : {"1e+", "1e-", "1 2", "1x", "1ee", "1.e+x", "1..", "1,5", "1 e5"}) {
        const Outcome<double> outcome = Double(text);
        EXPECT_EQ(outcome.result, -1) << text;
        EXPECT_EQ(outcome.values, std::vector<double>{1.0}) << text;
        EXPECT_EQ(outcome.message, "unexpected symbol") << text;
    }
    EXPECT_EQ(Double("0x10").values, std::vector<double>{0.0});
    EXPECT_EQ(Double("0x10").result, -1);
}

TEST(ParseLongs, AcceptsBlanksAroundItems) {
    const Outcome<zr_long> outcome = Longs(" 1, 2 ,3 \t,\t-4\nrest");
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.values, (std::vector<zr_long>{1, 2, 3, -4}));
    EXPECT_FALSE(outcome.overflowed);
}

TEST(ParseLongs, FaultKeepsWhatWasStored) {
    for (const char *text : {"1,2,", "1,2,x", "1,2 3", "1,2,,3", "1,2,\n", "1,2.5"}) {
        const Outcome<zr_long> outcome = Longs(text);
        EXPECT_EQ(outcome.result, -1) << text;
        EXPECT_EQ(outcome.values, (std::vector<zr_long>{1, 2})) << text;
        EXPECT_EQ(outcome.message, "unexpected symbol") << text;
    }
    EXPECT_EQ(Longs(",1").message, "bad_digit");
}

TEST(ParseLongs, TooManyAreCheckedAndDropped) {
    const Outcome<zr_long> dropped = Longs("1,2,3", 2);
    EXPECT_EQ(dropped.result, 0);
    EXPECT_TRUE(dropped.overflowed);
    EXPECT_EQ(dropped.values, (std::vector<zr_long>{1, 2}));
    EXPECT_EQ(Longs("1,2,x", 2).result, -1);
    EXPECT_EQ(Longs("1,2,3,x", 2).result, -1);
    EXPECT_TRUE(Longs("1", 0).overflowed);
}

TEST(ParseDoubles, ReadsAndDropsLikeLongs) {
    EXPECT_EQ(Doubles("1.5, 2e1 ,.5").values, (std::vector<double>{1.5, 20.0, 0.5}));
    EXPECT_EQ(Doubles("1.5 ,\t2 \r,x").result, 0);
    EXPECT_EQ(Doubles("1.5 ,\t2 \r,x").values, (std::vector<double>{1.5, 2.0}));
    EXPECT_EQ(Doubles("1.5,2,").result, -1);
    EXPECT_EQ(Doubles("1.5,2,").values, (std::vector<double>{1.5, 2.0}));
    EXPECT_EQ(Doubles("1,2e+,3").values, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(Doubles("1,2e+,3").result, -1);
    const Outcome<double> dropped = Doubles("1,2,3", 2);
    EXPECT_EQ(dropped.result, 0);
    EXPECT_TRUE(dropped.overflowed);
    EXPECT_EQ(dropped.values, (std::vector<double>{1.0, 2.0}));
}

TEST(ParseDoubles, AMillionNumbersAreRead) {
    std::string text;
    for (int i = 0; i < 1000000; ++i)
        text += (i > 0 ? "," : "") + std::to_string(i) + ".5";
    const Outcome<double> outcome = Doubles(text.c_str(), 1000000);
    EXPECT_EQ(outcome.result, 0);
    ASSERT_EQ(outcome.values.size(), 1000000U);
    EXPECT_EQ(outcome.values[999999], 999999.5);
}

TEST(Parser, TenMegabytesOfBlanksOrDigitsAreRead) {
    const std::string blanks(10000000, ' ');
    EXPECT_EQ(Long((blanks + "5" + blanks).c_str()).values, std::vector<zr_long>{5});
    EXPECT_EQ(Long(blanks.c_str()).result, -1);
    const std::string digits(10000000, '1');
    EXPECT_EQ(Long(digits.c_str()).values, std::vector<zr_long>{2147483647});
    EXPECT_EQ(Double(digits.c_str()).values, std::vector<double>{Infinity});
    EXPECT_EQ(Double(("." + digits).c_str()).values, std::vector<double>{1.0 / 9.0});
}

TEST(Parser, NullTextCountsAsEmpty) {
    EXPECT_EQ(Long(nullptr).result, -1);
    EXPECT_EQ(Doubles(nullptr).result, -1);
}

TEST(Parser, AMatchLeavesTheCursorBehindTheLine) {
    std::array<zr_long, 2> values{};
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(values.data(), sizeof values);
    CZrEnvValueParser parser("1\n2", sink);
    EXPECT_EQ(parser.Run(&CZrEnvValueParser::ParseLong), 0);
    EXPECT_EQ(parser.Run(&CZrEnvValueParser::ParseLong), 0);
    EXPECT_EQ(values, (std::array<zr_long, 2>{1, 2}));
    EXPECT_EQ(parser.Run(&CZrEnvValueParser::ParseLong), -1);
}

TEST(Parser, AFailureLeavesTheCursorWhereItWas) {
    std::array<double, 2> values{};
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(values.data(), sizeof values);
    CZrEnvValueParser parser(" 1.5", sink);
    EXPECT_EQ(parser.Run(&CZrEnvValueParser::ParseLong), -1); // behind the 1, whose 4 bytes are stored
    EXPECT_EQ(parser.GetStatus(), CZrEnvValueParser::NoMatch);
    EXPECT_EQ(parser.Run(&CZrEnvValueParser::ParseDouble), 0);
    EXPECT_EQ(parser.GetStatus(), CZrEnvValueParser::Matched);
    EXPECT_EQ(sink.BytesWritten(), sizeof(zr_long) + sizeof(double));
    double value = 0.0;
    std::memcpy(&value, reinterpret_cast<const char *>(values.data()) + sizeof(zr_long), sizeof value);
    EXPECT_EQ(value, 1.5);
}

TEST(Parser, TheTextIsOnlyRead) {
    static const char text[] = "1,2 ,3.5x"; // stands in memory that cannot be written
    EXPECT_EQ(Longs(text).values, (std::vector<zr_long>{1, 2, 3}));
    EXPECT_EQ(Doubles(text).values, (std::vector<double>{1.0, 2.0, 3.5}));
    EXPECT_STREQ(text, "1,2 ,3.5x");
}

// Agreement with the reference

struct RulePair {
    CZrEnvValueParser::Rule rule;
    ReferenceValueGrammar::Rule reference;
    std::size_t size;
};

constexpr RulePair RulePairs[] = {
    {&CZrEnvValueParser::ParseLong, &ReferenceValueGrammar::ParseLong, sizeof(zr_long)},
    {&CZrEnvValueParser::ParseDouble, &ReferenceValueGrammar::ParseDouble, sizeof(double)},
    {&CZrEnvValueParser::ParseLongs, &ReferenceValueGrammar::ParseLongs, sizeof(zr_long)},
    {&CZrEnvValueParser::ParseDoubles, &ReferenceValueGrammar::ParseDoubles, sizeof(double)},
};

using Memory = std::array<unsigned char, 6 * sizeof(double)>;

// Results, messages, flags and every byte of the output must be the same.
bool Agrees(const RulePair &pair, const std::string &text, std::size_t room) {
    Memory memory;
    Memory referenceMemory;
    memory.fill(0xA5);
    referenceMemory.fill(0xA5);
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(memory.data(), room * pair.size);
    CZrEnvValueSink referenceSink = CZrEnvValueSink::ForWriting(referenceMemory.data(), room * pair.size);
    CZrEnvValueParser parser(text.c_str(), sink);
    ReferenceValueGrammar reference(text, referenceSink);
    if (parser.Run(pair.rule) != reference.Run(pair.reference) || parser.GetStatus() != reference.status)
        return false;
    if ((parser.GetMessage() == nullptr) != (reference.message == nullptr))
        return false;
    if (reference.message != nullptr && std::strcmp(parser.GetMessage(), reference.message) != 0)
        return false;
    return sink.Flags() == referenceSink.Flags() && sink.BytesWritten() == referenceSink.BytesWritten() &&
           memory == referenceMemory;
}

std::string Visible(const std::string &text) {
    std::string visible;
    for (const char c : text)
        visible += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : std::string(1, c);
    return visible;
}

void ExpectAgreement(const std::string &text, std::size_t room) {
    for (std::size_t i = 0; i < std::size(RulePairs); ++i)
        ASSERT_TRUE(Agrees(RulePairs[i], text, room))
            << "rule " << i << ", room " << room << ": '" << Visible(text) << "'";
}

TEST(ParserAgainstReference, AgreesOnAllShortTexts) {
    const std::string alphabet = "1+.,eD \nx";
    std::vector<std::string> texts = {""};
    for (std::size_t first = 0, length = 0; length <= 5; ++length) {
        const std::size_t last = texts.size();
        for (; first < last; ++first) {
            ExpectAgreement(texts[first], 2);
            if (HasFatalFailure())
                return;
            for (std::size_t i = 0; length < 5 && i < alphabet.size(); ++i)
                texts.push_back(texts[first] + alphabet[i]);
        }
    }
    EXPECT_EQ(texts.size(), 66430U);
}

TEST(ParserAgainstReference, AgreesOnRandomTexts) {
    const std::string alphabet = "0123456789+-.,eEdD \t\n\rx";
    std::mt19937 random(4711);
    for (int i = 0; i < 250000 && !HasFatalFailure(); ++i) {
        std::string text;
        for (auto length = random() % 14; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        ExpectAgreement(text, random() % 5);
    }
}

TEST(ParserAgainstReference, AgreesOnRandomNumbersWithFaults) {
    const char *const pieces[] = {"1",  "23",    "456789012345678901234",
                                  "0",  "00",    ".",
                                  ".",  "e",     "E",
                                  "d",  "D",     "+",
                                  "-",  ",",     ",",
                                  ",",  " ",     "\t",
                                  "\n", "e5",    "d-3",
                                  ".5", "12.25", "7,",
                                  "x",  "\r",    "9e",
                                  "-1", "e+",    "1e309"};
    std::mt19937 random(815);
    for (int i = 0; i < 250000 && !HasFatalFailure(); ++i) {
        std::string text;
        for (auto count = random() % 8; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        ExpectAgreement(text, random() % 5);
    }
}

TEST(ParserAgainstReference, AgreesOnRandomBytes) {
    std::mt19937 random(1234);
    for (int i = 0; i < 50000 && !HasFatalFailure(); ++i) {
        std::string text = "1";
        for (auto length = random() % 4; length > 0; --length)
            text += static_cast<char>(1 + random() % 255);
        ExpectAgreement(text, 2);
    }
}

} // namespace
