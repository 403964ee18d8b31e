// Data elements: text forms, conversions, lists, copies, ownership of texts, and running out of memory.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zrclb/env.hpp>

#include "env/node_store.h"
#include "env/refused_memory.h"
#include "env/report_capture.h"

namespace {

using zr::test::Error;
using zr::test::Message;
using zr::test::Refusal;
using zr::test::ReportCapture;
using zr::test::Reports;
using namespace Zr;

constexpr const char *Tag = "ZrEnvDataElement";
constexpr const char *OutOfMemory = "Out of memory";
constexpr zr_long LongMin = -2147483647 - 1;
constexpr double Infinity = std::numeric_limits<double>::infinity();

// An element that a test can hold itself.
class Leaf : public CZrEnvDataElement {
public:
    using CZrEnvDataElement::CZrEnvDataElement;
    Leaf() : CZrEnvDataElement("leaf", static_cast<const char *>(nullptr)) {}
    explicit Leaf(const std::string &value) : CZrEnvDataElement("leaf", value.c_str()) {}
    Leaf(const Leaf &) = default;
    Leaf &operator=(const Leaf &) = default;
    ~Leaf() override = default;
};

// Calls with its next allocation of at least size bytes refused, which has to happen.
template <class Call>
EZrEnvError Refused(std::size_t size, Call call) {
    EZrEnvError result = ENV_OK;
    bool met = false;
    {
        const Refusal refusal(size);
        result = call();
        met = refusal.Met();
    }
    EXPECT_TRUE(met) << "nothing of " << size << " bytes was asked for";
    return result;
}

// Calls what must not ask for as many bytes.
template <class Call>
auto WithLessThan(std::size_t size, Call call) {
    bool untouched = false;
    const auto results = [&] {
        const Refusal refusal(size);
        const auto inner = call();
        untouched = refusal.Untouched();
        return inner;
    }();
    EXPECT_TRUE(untouched) << "more than " << size - 1 << " bytes were asked for";
    return results;
}

// The interface: what it derives from, who may end it, and which getters a constant element has.

static_assert(std::is_base_of_v<CZrEnvElement, CZrEnvDataElement>);
static_assert(!std::is_destructible_v<CZrEnvDataElement>, "only its owner ends an element");

template <class Element>
concept HasScalarGetters = requires(Element &element, zr_long &l, double &d, float &f, char *buffer) {
    element.GetLong(l);
    element.GetLong();
    element.GetDouble(d);
    element.GetDouble();
    element.GetFloat(f);
    element.GetFloat();
    element.GetString(zr_ulong{1}, buffer);
    element.GetString();
    element.GetDataLength();
    element.GetArraySize(l, l);
};
template <class Element>
concept HasGetBinary = requires(Element &element, zr_long *length, char *buffer) {
    element.GetBinary(length, buffer);
};
template <class Element>
concept HasGetLongs = requires(Element &element, zr_long &l, zr_long *values) {
    element.GetLongs(l, values);
};
template <class Element>
concept HasGetDoubles = requires(Element &element, zr_long &l, double *values) {
    element.GetDoubles(l, values);
};
template <class Element>
concept HasGetStrings = requires(Element &element, zr_long &l, char **values) {
    element.GetStrings(l, l, values);
};

static_assert(HasScalarGetters<CZrEnvDataElement> && HasScalarGetters<const CZrEnvDataElement>);
static_assert(HasGetBinary<CZrEnvDataElement> && !HasGetBinary<const CZrEnvDataElement>);
static_assert(HasGetLongs<CZrEnvDataElement> && !HasGetLongs<const CZrEnvDataElement>);
static_assert(HasGetDoubles<CZrEnvDataElement> && !HasGetDoubles<const CZrEnvDataElement>);
static_assert(HasGetStrings<CZrEnvDataElement> && !HasGetStrings<const CZrEnvDataElement>);

// Construction

TEST(DataElementConstruction, EachTypeStoresItsTextForm) {
    EXPECT_STREQ(Leaf("a", "text").GetString(), "text");
    EXPECT_STREQ(Leaf("a", zr_long{-5}).GetString(), "-5");
    EXPECT_STREQ(Leaf("a", 0.1).GetString(), "0.1");
    EXPECT_STREQ(Leaf("a", 1.5F).GetString(), "1.500000");
    EXPECT_STREQ(Leaf("a", "").GetString(), "");
    EXPECT_STREQ(Leaf("a", "text").GetName(), "a");
}

TEST(DataElementConstruction, NullTextIsNoValue) {
    EXPECT_EQ(Leaf("a", static_cast<const char *>(nullptr)).GetString(), nullptr);
}

TEST(DataElementConstruction, RefusedNameLeavesItNamelessWithValue) {
    const Leaf leaf("a=b", "text");
    EXPECT_EQ(leaf.GetName(), nullptr);
    EXPECT_STREQ(leaf.GetString(), "text");
    EXPECT_EQ(Leaf(nullptr, zr_long{1}).GetName(), nullptr);
    EXPECT_STREQ(Leaf("", zr_long{1}).GetString(), "1");
    EXPECT_EQ(Leaf("", zr_long{1}).GetName(), nullptr);
    EXPECT_STREQ(Leaf("=", 1.5).GetString(), "1.5");
    EXPECT_EQ(Leaf("=", 1.5).GetName(), nullptr);
    EXPECT_STREQ(Leaf("a=", 1.5F).GetString(), "1.500000");
    EXPECT_EQ(Leaf("a=", 1.5F).GetName(), nullptr);
}

TEST(DataElementConstruction, ConvertsToItselfOnly) {
    Leaf leaf;
    const Leaf &constLeaf = leaf;
    EXPECT_EQ(leaf.ToEnvDataElement(), &leaf);
    EXPECT_EQ(constLeaf.ToEnvDataElement(), &leaf);
    EXPECT_EQ(leaf.ToEnvBlock(), nullptr);
    EXPECT_EQ(leaf.ToEnvSection(), nullptr);
}

// Setters of one value

TEST(DataElementSetLong, StoresPlainDecimal) {
    Leaf leaf;
    EXPECT_EQ(leaf.SetLong(-5), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "-5");
    EXPECT_EQ(leaf.GetDouble(), -5.0);
    EXPECT_EQ(leaf.SetLong(LongMin), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "-2147483648");
    EXPECT_EQ(leaf.GetLong(), LongMin);
    EXPECT_EQ(leaf.SetLong(0), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "0");
}

TEST(DataElementSetDouble, StoresThirteenDigits) {
    Leaf leaf;
    const std::pair<double, const char *> cases[] = {
        {0.1, "0.1"},
        {1.0, "1"},
        {1.5, "1.5"},
        {1.0 / 3.0, "0.3333333333333"},
        {1e100, "1e+100"},
        {1e-5, "1e-05"},
        {-0.0, "-0"},
        {12345678901234.0, "1.234567890123e+13"},
        {Infinity, "inf"},
        {-Infinity, "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
        {5e-324, "4.940656458412e-324"},
    };
    for (const auto &[value, text] : cases) {
        EXPECT_EQ(leaf.SetDouble(value), ENV_OK);
        EXPECT_STREQ(leaf.GetString(), text);
    }
}

TEST(DataElementSetDouble, InfinitiesAndNanDoNotReadBack) {
    for (const double value : {Infinity, -Infinity, std::nan("")}) {
        Leaf leaf("a", value);
        double read = 7.0;
        EXPECT_EQ(leaf.GetDouble(read), ENV_BAD_FORMAT);
        EXPECT_EQ(read, 7.0);
        EXPECT_EQ(leaf.GetDouble(), 0.0);
    }
}

TEST(DataElementSetFloat, StoresSixPlaces) {
    Leaf leaf;
    EXPECT_EQ(leaf.SetFloat(1.5F), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "1.500000");
    EXPECT_EQ(leaf.SetFloat(1e-7F), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "0.000000");
    EXPECT_EQ(leaf.SetFloat(std::numeric_limits<float>::lowest()), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "-340282346638528859811704183484516925440.000000");
    EXPECT_EQ(leaf.GetFloat(), std::numeric_limits<float>::lowest());
    EXPECT_EQ(leaf.SetFloat(0.1F), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "0.100000");
}

TEST(DataElementSetFloat, InfinitiesAndNanDoNotReadBack) {
    const std::pair<float, const char *> cases[] = {
        {std::numeric_limits<float>::infinity(), "inf"},
        {-std::numeric_limits<float>::infinity(), "-inf"},
        {std::numeric_limits<float>::quiet_NaN(), "nan"},
    };
    for (const auto &[value, text] : cases) {
        Leaf leaf;
        EXPECT_EQ(leaf.SetFloat(value), ENV_OK);
        EXPECT_STREQ(leaf.GetString(), text);
        float read = 7.0F;
        EXPECT_EQ(leaf.GetFloat(read), ENV_BAD_FORMAT);
        EXPECT_EQ(read, 7.0F);
    }
}

TEST(DataElementSetString, StoresTheTextItself) {
    Leaf leaf;
    for (const char *text : {"a", "", "longer text", "a, b; c = [d] {e} \\ _", "\xE4\xF6\xFC\xFF\n\r\x1A", "x"}) {
        EXPECT_EQ(leaf.SetString(text), ENV_OK);
        EXPECT_STREQ(leaf.GetString(), text);
        EXPECT_EQ(leaf.GetDataLength(), std::strlen(text));
    }
}

TEST(DataElementSetString, NullChangesNothing) {
    Leaf leaf("value");
    EXPECT_EQ(leaf.SetString(nullptr), ENV_ERROR);
    EXPECT_STREQ(leaf.GetString(), "value");
    Leaf empty;
    EXPECT_EQ(empty.SetString(nullptr), ENV_ERROR);
    EXPECT_EQ(empty.GetString(), nullptr);
}

TEST(DataElementSetString, ReusesTheBufferForATextThatIsNotLonger) {
    Leaf leaf("12345");
    const char *buffer = leaf.GetString();
    EXPECT_EQ(leaf.SetString("abcde"), ENV_OK);
    EXPECT_EQ(leaf.GetString(), buffer);
    EXPECT_EQ(leaf.SetString("ab"), ENV_OK);
    EXPECT_EQ(leaf.GetString(), buffer);
    EXPECT_STREQ(leaf.GetString(), "ab");
}

TEST(DataElementSetString, GrowthIsMeasuredAgainstThePresentText) {
    Leaf leaf("12345");
    EXPECT_EQ(leaf.SetString("ab"), ENV_OK);
    EXPECT_EQ(WithLessThan(5, [&] { return leaf.SetString("abc"); }), ENV_OK) << "the exact size";
    EXPECT_STREQ(leaf.GetString(), "abc");
    EXPECT_EQ(leaf.SetString("a"), ENV_OK);
    EXPECT_EQ(Refused(4, [&] { return leaf.SetString("abc"); }), ENV_ERROR) << "a new array, whatever the old one held";
}

TEST(DataElementSetString, OwnTextAndPartsOfItWork) {
    Leaf leaf("0123456789");
    EXPECT_EQ(leaf.SetString(leaf.GetString()), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "0123456789");
    EXPECT_EQ(leaf.SetString(leaf.GetString() + 3), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "3456789");
    EXPECT_EQ(leaf.SetString(leaf.GetString() + 7), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "");
    EXPECT_EQ(leaf.SetString(leaf.GetString()), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "");
}

TEST(DataElementSetString, ShrinksAndGrowsAtRandom) {
    std::mt19937 random(99);
    Leaf leaf;
    for (int i = 0; i < 5000; ++i) {
        const std::string text(random() % 40, static_cast<char>('a' + i % 26));
        ASSERT_EQ(leaf.SetString(text.c_str()), ENV_OK);
        ASSERT_EQ(leaf.GetString(), text);
    }
}

TEST(DataElementSetString, TenMegabytesAreStored) {
    const std::string text(10000000, 'x');
    Leaf leaf(text);
    EXPECT_EQ(leaf.GetDataLength(), 10000000U);
    zr_long count = 0;
    zr_long longest = 0;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_OK);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(longest, 10000000);
}

TEST(DataElementSetBinary, StoresEnvBinAndReadsItBack) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    Leaf leaf;
    EXPECT_EQ(leaf.SetBinary(256, bytes.data()), ENV_OK);
    EXPECT_EQ(leaf.GetDataLength(), 2U + 256 + 15);
    EXPECT_EQ(std::string(leaf.GetString(), 2), "2\xD0");
    std::string read(257, '#');
    zr_long length = 257;
    EXPECT_EQ(leaf.GetBinary(&length, read.data()), ENV_OK);
    EXPECT_EQ(length, 256);
    EXPECT_EQ(read, bytes + "#");
}

TEST(DataElementSetBinary, NoLengthAndTooMuchLengthStoreTheHeader) {
    Leaf leaf("old");
    EXPECT_EQ(leaf.SetBinary(0, nullptr), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "2\xD0");
    for (const zr_ulong length : {2147483648U, 4294967295U}) {
        leaf.SetString("old");
        EXPECT_EQ(leaf.SetBinary(length, "abc"), ENV_OK);
        EXPECT_STREQ(leaf.GetString(), "2\xD0");
    }
}

TEST(DataElementSetBinary, NullDataChangesNothing) {
    Leaf leaf("old");
    EXPECT_EQ(leaf.SetBinary(3, nullptr), ENV_ERROR);
    EXPECT_STREQ(leaf.GetString(), "old");
}

TEST(DataElementSetBinary, OwnTextWorks) {
    Leaf leaf("a,b");
    EXPECT_EQ(leaf.SetBinary(3, leaf.GetString()), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "2\xD0"
                                   "a_mb");
}

// Setters of lists

TEST(DataElementSetLongs, JoinsWithCommas) {
    Leaf leaf;
    const zr_long values[] = {1, -2, LongMin, 2147483647, 0};
    EXPECT_EQ(leaf.SetLongs(5, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "1,-2,-2147483648,2147483647,0");
    EXPECT_EQ(leaf.SetLongs(1, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "1");
}

TEST(DataElementSetDoubles, JoinsWithCommas) {
    Leaf leaf;
    const double values[] = {1.5, 2.0, -1.0 / 3.0};
    EXPECT_EQ(leaf.SetDoubles(2, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "1.5,2");
    zr_long count = 0;
    zr_long longest = 0;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(longest, 3);
    EXPECT_EQ(leaf.SetDoubles(3, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "1.5,2,-0.3333333333333");
}

TEST(DataElementSetStrings, JoinsWithCommas) {
    Leaf leaf;
    const char *values[] = {"a", "", "b c", ""};
    EXPECT_EQ(leaf.SetStrings(4, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "a,,b c,");
    EXPECT_EQ(leaf.SetStrings(1, values + 1), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "");
    EXPECT_EQ(leaf.SetStrings(2, values + 2), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "b c,");
}

TEST(DataElementSetStrings, ACommaInsideReadsBackAsTwo) {
    Leaf leaf;
    const char *values[] = {"a,b"};
    EXPECT_EQ(leaf.SetStrings(1, values), ENV_OK);
    zr_long count = 0;
    zr_long longest = 0;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(longest, 1);
}

TEST(DataElementSetStrings, ReusesTheBufferIfTheNeededSizeFits) {
    Leaf leaf("12345678");
    const char *buffer = leaf.GetString();
    const char *values[] = {"abc", "def"}; // needs 1 + 4 + 4
    EXPECT_EQ(leaf.SetStrings(2, values), ENV_OK);
    EXPECT_EQ(leaf.GetString(), buffer);
    EXPECT_STREQ(leaf.GetString(), "abc,def");
}

TEST(DataElementSetStrings, TakesANewArrayIfTheNeededSizeDoesNotFit) {
    Leaf leaf("1234567"); // the joined text would fit, the size that is asked for does not
    const char *values[] = {"abc", "def"};
    EXPECT_EQ(Refused(9, [&] { return leaf.SetStrings(2, values); }), ENV_ERROR);
    leaf.SetString("1234567");
    EXPECT_EQ(WithLessThan(10, [&] { return leaf.SetStrings(2, values); }), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "abc,def");
}

TEST(DataElementSetStrings, OwnTextWorks) {
    Leaf leaf("0123456789");
    const char *values[] = {leaf.GetString() + 8, leaf.GetString() + 7, "x"};
    EXPECT_EQ(leaf.SetStrings(3, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "89,789,x");
}

TEST(DataElementSetLists, BadArgumentsChangeNothing) {
    ReportCapture reports;
    Leaf leaf("old");
    const zr_long longs[] = {1};
    const double doubles[] = {1.0};
    const char *strings[] = {"a", nullptr};
    for (const zr_long count : {zr_long{0}, zr_long{-1}, LongMin}) {
        EXPECT_EQ(leaf.SetLongs(count, longs), ENV_ERROR);
        EXPECT_EQ(leaf.SetDoubles(count, doubles), ENV_ERROR);
        EXPECT_EQ(leaf.SetStrings(count, strings), ENV_ERROR);
    }
    EXPECT_EQ(leaf.SetLongs(1, nullptr), ENV_ERROR);
    EXPECT_EQ(leaf.SetDoubles(1, nullptr), ENV_ERROR);
    EXPECT_EQ(leaf.SetStrings(1, nullptr), ENV_ERROR);
    EXPECT_EQ(leaf.SetStrings(2, strings), ENV_ERROR);
    EXPECT_EQ(leaf.SetString(nullptr), ENV_ERROR);
    EXPECT_EQ(leaf.SetBinary(1, nullptr), ENV_ERROR);
    EXPECT_STREQ(leaf.GetString(), "old");
    EXPECT_EQ(reports.Take(), Reports{});
}

TEST(DataElementSetLists, AMillionValuesReadBack) {
    std::vector<zr_long> longs(1000000);
    std::vector<double> doubles(longs.size());
    for (std::size_t i = 0; i < longs.size(); ++i) {
        longs[i] = static_cast<zr_long>(i) - 500000;
        doubles[i] = static_cast<double>(longs[i]) / 8.0;
    }
    Leaf leaf;
    ASSERT_EQ(leaf.SetLongs(1000000, longs.data()), ENV_OK);
    std::vector<zr_long> readLongs(longs.size());
    zr_long count = 1000000;
    EXPECT_EQ(leaf.GetLongs(count, readLongs.data()), ENV_OK);
    EXPECT_EQ(count, 1000000);
    EXPECT_TRUE(readLongs == longs);
    ASSERT_EQ(leaf.SetDoubles(1000000, doubles.data()), ENV_OK);
    std::vector<double> readDoubles(doubles.size());
    EXPECT_EQ(leaf.GetDoubles(count, readDoubles.data()), ENV_OK);
    EXPECT_EQ(count, 1000000);
    EXPECT_TRUE(readDoubles == doubles);
    zr_long longest = 0;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_OK);
    EXPECT_EQ(count, 1000000);
}

// Getters of one value

TEST(DataElementGetLong, ReadsWhatParses) {
    zr_long value = 0;
    EXPECT_EQ(Leaf("  12  ").GetLong(value), ENV_OK);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(Leaf("12 \n34").GetLong(value), ENV_OK);
    EXPECT_EQ(value, 12);
    EXPECT_EQ(Leaf("+7").GetLong(value), ENV_OK);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(Leaf("99999999999").GetLong(value), ENV_OK);
    EXPECT_EQ(value, 2147483647);
    EXPECT_EQ(Leaf("-99999999999").GetLong(), LongMin);
}

TEST(DataElementGetLong, FaultMayHaveWrittenTheOutput) {
    zr_long value = 77;
    for (const char *text : {"", "abc", "+", " ", ".5"}) {
        EXPECT_EQ(Leaf(text).GetLong(value), ENV_BAD_FORMAT) << text;
        EXPECT_EQ(value, 77) << text;
        EXPECT_EQ(Leaf(text).GetLong(), 0) << text;
    }
    for (const char *text : {"12 34", "12,34", "12.0", "12abc"}) {
        value = 77;
        EXPECT_EQ(Leaf(text).GetLong(value), ENV_BAD_FORMAT) << text;
        EXPECT_EQ(value, 12) << text;
        EXPECT_EQ(Leaf(text).GetLong(), 12) << text;
    }
}

TEST(DataElementGetDouble, ReadsWhatParses) {
    double value = 0.0;
    for (const char *text : {"1e", "1.D", "1", "1.0", "10d-1", " +1E0\t\r2"}) {
        value = 7.0;
        EXPECT_EQ(Leaf(text).GetDouble(value), ENV_OK) << text;
        EXPECT_EQ(value, 1.0) << text;
    }
    EXPECT_EQ(Leaf("+.5e3").GetDouble(), 500.0);
    EXPECT_EQ(Leaf("1e999").GetDouble(), Infinity);
}

TEST(DataElementGetDouble, FaultMayHaveWrittenTheOutput) {
    double value = 7.0;
    for (const char *text : {"", ".", "e5", "+", "inf"}) {
        EXPECT_EQ(Leaf(text).GetDouble(value), ENV_BAD_FORMAT) << text;
        EXPECT_EQ(value, 7.0) << text;
    }
    EXPECT_EQ(Leaf("1e+").GetDouble(value), ENV_BAD_FORMAT);
    EXPECT_EQ(value, 1.0);
    EXPECT_EQ(Leaf("2.5,3").GetDouble(), 2.5);
}

TEST(DataElementGetFloat, IsWrittenOnSuccessOnly) {
    float value = 7.0F;
    EXPECT_EQ(Leaf("1.5").GetFloat(value), ENV_OK);
    EXPECT_EQ(value, 1.5F);
    EXPECT_EQ(Leaf("2 3").GetFloat(value), ENV_BAD_FORMAT);
    EXPECT_EQ(value, 1.5F);
    EXPECT_EQ(Leaf("2 3").GetFloat(), 0.0F);
    EXPECT_EQ(Leaf("0.1").GetFloat(), 0.1F);
    EXPECT_TRUE(std::isinf(Leaf("1e300").GetFloat()));
    EXPECT_EQ(Leaf("1e-300").GetFloat(), 0.0F);
}

TEST(DataElementGetString, NeedsRoomForTheTerminator) {
    const Leaf leaf("abc");
    char buffer[8] = "#######";
    EXPECT_EQ(leaf.GetString(3, buffer), ENV_TOO_SMALL);
    EXPECT_EQ(leaf.GetString(0, buffer), ENV_TOO_SMALL);
    EXPECT_STREQ(buffer, "#######");
    EXPECT_EQ(leaf.GetString(4, buffer), ENV_OK);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(buffer[4], '#');
    EXPECT_EQ(leaf.GetString(0xFFFFFFFF, buffer), ENV_OK);
    EXPECT_EQ(leaf.GetString(4, nullptr), ENV_ERROR);
    const Leaf empty("");
    EXPECT_EQ(empty.GetString(0, buffer), ENV_TOO_SMALL);
    EXPECT_EQ(empty.GetString(1, buffer), ENV_OK);
    EXPECT_STREQ(buffer, "");
}

TEST(DataElementGetBinary, ReportsAsTheDecoderDoes) {
    ReportCapture reports;
    Leaf leaf("2\xD0"
              "abc");
    char buffer[8] = "#######";
    zr_long length = 3;
    EXPECT_EQ(leaf.GetBinary(&length, buffer), ENV_TOO_SMALL);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(reports.Take(), Reports{Message("ZrEnvDataConvert", "Small buffer")});
    length = 4;
    EXPECT_EQ(leaf.GetBinary(&length, buffer), ENV_OK);
    EXPECT_EQ(length, 3);
    leaf.SetString("3\xD0");
    EXPECT_EQ(leaf.GetBinary(&length, buffer), ENV_ERROR);
    EXPECT_EQ(reports.Take(), Reports{Message("ZrEnvDataConvert", "Incorrect version of ENV_BIN")});
    leaf.SetString("abc");
    EXPECT_EQ(leaf.GetBinary(&length, buffer), ENV_OK);
    EXPECT_EQ(length, 3);
    EXPECT_EQ(leaf.GetBinary(nullptr, buffer), ENV_ERROR);
    EXPECT_EQ(leaf.GetBinary(&length, nullptr), ENV_ERROR);
    EXPECT_EQ(reports.Take(), Reports{});
}

TEST(DataElementGetters, TypesOfWritingAndReadingAreFree) {
    Leaf leaf("a", zr_long{7});
    EXPECT_EQ(leaf.GetDouble(), 7.0);
    EXPECT_EQ(leaf.GetFloat(), 7.0F);
    EXPECT_EQ(leaf.SetFloat(0.25F), ENV_OK);
    EXPECT_EQ(leaf.GetDouble(), 0.25);
    zr_long value = 0;
    EXPECT_EQ(leaf.GetLong(value), ENV_BAD_FORMAT);
    EXPECT_EQ(leaf.SetDouble(0.25), ENV_OK);
    EXPECT_EQ(leaf.GetFloat(), 0.25F);
    EXPECT_EQ(leaf.SetDouble(3.0), ENV_OK); // stored without a point
    EXPECT_EQ(leaf.GetLong(value), ENV_OK);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(leaf.SetDouble(1e20), ENV_OK);
    EXPECT_EQ(leaf.GetLong(value), ENV_BAD_FORMAT) << "an exponent";

    const zr_long longs[] = {1, -2};
    std::array<double, 2> doubles{};
    zr_long count = 2;
    EXPECT_EQ(leaf.SetLongs(2, longs), ENV_OK);
    EXPECT_EQ(leaf.GetDoubles(count, doubles.data()), ENV_OK);
    EXPECT_EQ(doubles, (std::array<double, 2>{1.0, -2.0}));
    doubles = {1.0, 2.5};
    std::array<zr_long, 2> read{9, 9};
    EXPECT_EQ(leaf.SetDoubles(2, doubles.data()), ENV_OK);
    EXPECT_EQ(leaf.GetLongs(count, read.data()), ENV_BAD_FORMAT);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(read, (std::array<zr_long, 2>{1, 2})) << "the first one, and what the second begins with";
}

TEST(DataElementGetters, FaultsAreNotKeptInTheEnvironment) {
    CZrEnv *env = CZrEnv::CreateEnv(1, nullptr);
    ASSERT_EQ(env->SetString("A", "x", "no number"), ENV_OK);
    CZrEnvDataElement *x = env->GetFirstSection()->GetDataElement("x", 1);
    ASSERT_NE(x, nullptr);
    env->SetLastError(ENV_IN_USE);
    zr_long value = 0;
    char buffer[2];
    EXPECT_EQ(x->GetLong(value), ENV_BAD_FORMAT);
    EXPECT_EQ(x->GetString(2, buffer), ENV_TOO_SMALL);
    EXPECT_EQ(x->SetString(nullptr), ENV_ERROR);
    EXPECT_EQ(env->GetLastError(), ENV_IN_USE);
    CZrEnv::DestroyEnv(env, true);
}

TEST(DataElementGetters, NoValueIsAnErrorOfItsOwn) {
    ReportCapture reports;
    Leaf leaf;
    zr_long lValue = 7;
    double dValue = 7.0;
    float fValue = 7.0F;
    char buffer[4] = "###";
    char *buffers[] = {buffer};
    EXPECT_EQ(leaf.GetLong(lValue), ENV_ERROR);
    EXPECT_EQ(leaf.GetDouble(dValue), ENV_ERROR);
    EXPECT_EQ(leaf.GetFloat(fValue), ENV_ERROR);
    EXPECT_EQ(leaf.GetString(4, buffer), ENV_ERROR);
    zr_long count = 4;
    EXPECT_EQ(leaf.GetBinary(&count, buffer), ENV_ERROR);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(lValue, 7);
    EXPECT_EQ(dValue, 7.0);
    EXPECT_EQ(fValue, 7.0F);
    EXPECT_STREQ(buffer, "###");
    EXPECT_EQ(leaf.GetLong(), 0);
    EXPECT_EQ(leaf.GetDouble(), 0.0);
    EXPECT_EQ(leaf.GetFloat(), 0.0F);
    EXPECT_EQ(leaf.GetString(), nullptr);
    EXPECT_EQ(leaf.GetDataLength(), 0U);
    count = 1;
    EXPECT_EQ(leaf.GetLongs(count, &lValue), ENV_ERROR);
    EXPECT_EQ(count, 0);
    count = 1;
    EXPECT_EQ(leaf.GetDoubles(count, &dValue), ENV_ERROR);
    EXPECT_EQ(count, 0);
    count = 1;
    EXPECT_EQ(leaf.GetStrings(count, 4, buffers), ENV_ERROR);
    EXPECT_EQ(count, 0);
    zr_long longest = 7;
    count = 7;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_ERROR);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(longest, 0);
    EXPECT_EQ(reports.Take(), Reports{});
}

// Getters of lists

TEST(DataElementGetLongs, FillsUpToTheCapacity) {
    Leaf leaf("1, 2 ,3");
    std::array<zr_long, 4> values{9, 9, 9, 9};
    zr_long count = 4;
    EXPECT_EQ(leaf.GetLongs(count, values.data()), ENV_OK);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(values, (std::array<zr_long, 4>{1, 2, 3, 9}));
    values.fill(9);
    count = 2;
    EXPECT_EQ(leaf.GetLongs(count, values.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values, (std::array<zr_long, 4>{1, 2, 9, 9}));
}

TEST(DataElementGetLongs, FaultKeepsTheFirstNumbersAndNoCount) {
    Leaf leaf("1,2,");
    std::array<zr_long, 4> values{9, 9, 9, 9};
    zr_long count = 4;
    EXPECT_EQ(leaf.GetLongs(count, values.data()), ENV_BAD_FORMAT);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values, (std::array<zr_long, 4>{1, 2, 9, 9}));
    count = 1; // a fault behind the room is still a fault
    EXPECT_EQ(leaf.GetLongs(count, values.data()), ENV_BAD_FORMAT);
    EXPECT_EQ(count, 0);
}

TEST(DataElementGetLongs, OneValueIsAListAndNoneIsAFault) {
    Leaf leaf(" 5 ");
    zr_long value = 9;
    zr_long count = 1;
    EXPECT_EQ(leaf.GetLongs(count, &value), ENV_OK);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(value, 5);
    for (const char *text : {"", " ", ","}) {
        leaf.SetString(text);
        double number = 9.0;
        count = 1;
        EXPECT_EQ(leaf.GetLongs(count, &value), ENV_BAD_FORMAT) << text;
        EXPECT_EQ(count, 0) << text;
        count = 1;
        EXPECT_EQ(leaf.GetDoubles(count, &number), ENV_BAD_FORMAT) << text;
        EXPECT_EQ(count, 0) << text;
        EXPECT_EQ(number, 9.0) << text;
    }
    EXPECT_EQ(value, 5);
}

TEST(DataElementGetLongs, TwoValuesAreNoScalar) {
    Leaf leaf("5,6");
    zr_long value = 0;
    EXPECT_EQ(leaf.GetLong(value), ENV_BAD_FORMAT);
    zr_long count = 1;
    EXPECT_EQ(leaf.GetLongs(count, &value), ENV_TOO_SMALL);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(value, 5);
}

TEST(DataElementGetDoubles, ReadsAsLongsDo) {
    Leaf leaf("1.5,2e1, .5");
    std::array<double, 4> values{9, 9, 9, 9};
    zr_long count = 4;
    EXPECT_EQ(leaf.GetDoubles(count, values.data()), ENV_OK);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(values, (std::array<double, 4>{1.5, 20, 0.5, 9}));
    values.fill(9);
    count = 2;
    EXPECT_EQ(leaf.GetDoubles(count, values.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values, (std::array<double, 4>{1.5, 20, 9, 9}));
    leaf.SetString("2.5,x");
    count = 4;
    EXPECT_EQ(leaf.GetDoubles(count, values.data()), ENV_BAD_FORMAT);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(values, (std::array<double, 4>{2.5, 20, 9, 9}));
}

TEST(DataElementGetNumbers, NoRoomIsTooSmallAndNullIsAnError) {
    Leaf leaf("1");
    std::array<zr_long, 1> longs{9};
    std::array<double, 1> doubles{9};
    for (const zr_long room : {zr_long{0}, zr_long{-1}, LongMin}) {
        zr_long count = room;
        EXPECT_EQ(leaf.GetLongs(count, longs.data()), ENV_TOO_SMALL);
        EXPECT_EQ(count, 0);
        count = room;
        EXPECT_EQ(leaf.GetDoubles(count, doubles.data()), ENV_TOO_SMALL);
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(longs[0], 9);
    EXPECT_EQ(doubles[0], 9.0);
    zr_long count = 1;
    EXPECT_EQ(leaf.GetLongs(count, nullptr), ENV_ERROR);
    EXPECT_EQ(count, 0);
    count = 1;
    EXPECT_EQ(leaf.GetDoubles(count, nullptr), ENV_ERROR);
    EXPECT_EQ(count, 0);
    count = 0;
    leaf.SetString("x");
    EXPECT_EQ(leaf.GetLongs(count, longs.data()), ENV_BAD_FORMAT);
}

// Buffers for string lists, filled with # before.
struct Buffers {
    explicit Buffers(std::size_t count, std::size_t size = 8) : texts(count, std::string(size, '#')) {
        for (std::string &text : texts)
            pointers.push_back(text.data());
    }
    std::vector<std::string> texts;
    std::vector<char *> pointers;
};

TEST(DataElementGetStrings, SplitsAtEveryComma) {
    Leaf leaf("a, b ,,\"c\",");
    Buffers buffers(6);
    zr_long count = 6;
    EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_OK);
    EXPECT_EQ(count, 5);
    const char *const expected[] = {"a", " b ", "", "\"c\"", ""};
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_STREQ(buffers.pointers[i], expected[i]);
    EXPECT_EQ(buffers.texts[5], "########");
}

TEST(DataElementGetStrings, EmptyTextIsOneEmptyString) {
    Leaf leaf("");
    Buffers buffers(2);
    zr_long count = 2;
    EXPECT_EQ(leaf.GetStrings(count, 1, buffers.pointers.data()), ENV_OK);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(buffers.pointers[0], "");
}

TEST(DataElementGetStrings, MoreTextThanBuffersIsTooSmall) {
    Leaf leaf("ab,");
    Buffers buffers(1);
    zr_long count = 1;
    EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(buffers.pointers[0], "ab");
    leaf.SetString("ab,c");
    EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 1);
}

TEST(DataElementGetStrings, AStringThatIsTooLongIsLeftUnterminated) {
    Leaf leaf("ab,cdef,g");
    Buffers buffers(3);
    zr_long count = 3;
    EXPECT_EQ(leaf.GetStrings(count, 4, buffers.pointers.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 3);
    EXPECT_STREQ(buffers.pointers[0], "ab");
    EXPECT_EQ(buffers.texts[1], "cde#####");
    EXPECT_EQ(buffers.texts[2], "########");
    EXPECT_EQ(leaf.GetStrings(count, 5, buffers.pointers.data()), ENV_OK);
    EXPECT_STREQ(buffers.pointers[1], "cdef");
    EXPECT_EQ(leaf.GetStrings(count, 1, buffers.pointers.data()), ENV_TOO_SMALL);
    EXPECT_EQ(count, 3);
    EXPECT_STREQ(buffers.pointers[0], "ab") << "no room for a character, and none stored";
}

TEST(DataElementGetStrings, ArraySizeTellsTheRoomThatIsNeeded) {
    Leaf leaf("one,three,,eleven,");
    zr_long count = 0;
    zr_long longest = 0;
    EXPECT_EQ(leaf.GetArraySize(count, longest), ENV_OK);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(longest, 6);
    Buffers buffers(5);
    EXPECT_EQ(leaf.GetStrings(count, longest, buffers.pointers.data()), ENV_TOO_SMALL);
    EXPECT_EQ(leaf.GetStrings(count, longest + 1, buffers.pointers.data()), ENV_OK);
    EXPECT_EQ(count, 5);
}

TEST(DataElementGetStrings, BadArgumentsAreErrors) {
    Leaf leaf("a,b");
    Buffers buffers(2);
    for (const zr_long bad : {zr_long{0}, zr_long{-1}, LongMin}) {
        zr_long count = bad;
        EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_ERROR);
        EXPECT_EQ(count, bad);
        count = 2;
        EXPECT_EQ(leaf.GetStrings(count, bad, buffers.pointers.data()), ENV_ERROR);
        EXPECT_EQ(count, 2);
    }
    zr_long count = 2;
    EXPECT_EQ(leaf.GetStrings(count, 8, nullptr), ENV_ERROR);
    buffers.pointers[1] = nullptr;
    EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_ERROR);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(buffers.pointers[0], "a");
    leaf.SetString("b"); // the null buffer is not needed
    EXPECT_EQ(leaf.GetStrings(count, 8, buffers.pointers.data()), ENV_OK);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(buffers.pointers[0], "b");
}

TEST(DataElementGetArraySize, CountsPartsOfAnyText) {
    const struct {
        const char *text;
        zr_long count;
        zr_long longest;
    } cases[] = {{"", 1, 0}, {"abc", 1, 3}, {",", 2, 0}, {"a,bcd", 2, 3}, {"abc,d,", 3, 3}, {",,,", 4, 0}};
    for (const auto &expected : cases) {
        zr_long count = 7;
        zr_long longest = 7;
        EXPECT_EQ(Leaf(expected.text).GetArraySize(count, longest), ENV_OK);
        EXPECT_EQ(count, expected.count) << expected.text;
        EXPECT_EQ(longest, expected.longest) << expected.text;
    }
}

// Copies

TEST(DataElementCopy, ShowsTheSameTextAndOwnsNothing) {
    Leaf source("value");
    {
        const Leaf copy(source);
        EXPECT_EQ(copy.GetString(), source.GetString());
        EXPECT_EQ(copy.GetName(), source.GetName());
    }
    EXPECT_STREQ(source.GetString(), "value");
}

TEST(DataElementCopy, WritingItLeavesTheSourceAlone) {
    Leaf source("value");
    Leaf copy(source);
    EXPECT_EQ(copy.SetString("v"), ENV_OK);
    EXPECT_STREQ(copy.GetString(), "v");
    EXPECT_STREQ(source.GetString(), "value");
    EXPECT_EQ(copy.SetString("a longer value"), ENV_OK);
    EXPECT_EQ(copy.SetLong(5), ENV_OK);
    EXPECT_STREQ(copy.GetString(), "5");
    EXPECT_STREQ(source.GetString(), "value");
    const char *values[] = {"x"};
    Leaf list(source);
    EXPECT_EQ(list.SetStrings(1, values), ENV_OK);
    EXPECT_STREQ(list.GetString(), "x");
    EXPECT_STREQ(source.GetString(), "value");
}

TEST(DataElementCopy, AssignmentEndsTheOldValue) {
    Leaf source("value");
    Leaf target("another value");
    target = source;
    EXPECT_EQ(target.GetString(), source.GetString());
    target = *&target;
    EXPECT_EQ(target.GetString(), source.GetString());
    EXPECT_EQ(target.SetString("x"), ENV_OK);
    EXPECT_STREQ(source.GetString(), "value");
    Leaf empty;
    target = empty;
    EXPECT_EQ(target.GetString(), nullptr);
    EXPECT_EQ(target.SetLong(1), ENV_OK);
    EXPECT_EQ(target.ToEnvDataElement(), &target);
}

// Texts in memory that the element does not own

TEST(DataElementInChunk, TextIsOverwrittenInPlaceOrReplaced) {
    CZrEnvBlock block("block");
    {
        CZrEnvNodeStore::Batch batch;
        for (const char *name : {"a", "b", "c", "d"})
            CZrEnvNodeStore::Append(block, batch.MakeData(name, "12345"));
    }
    CZrEnvDataElement *a = block.GetDataElement("a", 1);
    CZrEnvDataElement *b = block.GetDataElement("b", 1);
    CZrEnvDataElement *c = block.GetDataElement("c", 1);
    CZrEnvDataElement *d = block.GetDataElement("d", 1);
    ASSERT_TRUE(a != nullptr && b != nullptr && c != nullptr && d != nullptr);
    const char *text = a->GetString();
    EXPECT_EQ(a->SetString("abcde"), ENV_OK);
    EXPECT_EQ(a->GetString(), text);
    EXPECT_EQ(a->SetString("abcdefg"), ENV_OK);
    EXPECT_NE(a->GetString(), text);
    EXPECT_EQ(a->SetString("abc"), ENV_OK);
    EXPECT_EQ(b->SetLong(-12345678), ENV_OK);
    EXPECT_EQ(c->SetBinary(2, "x,"), ENV_OK);
    EXPECT_EQ(d->SetDouble(1.5), ENV_OK);
    EXPECT_STREQ(a->GetString(), "abc");
    EXPECT_STREQ(b->GetString(), "-12345678");
    EXPECT_STREQ(c->GetString(), "2\xD0"
                                 "x_m");
    EXPECT_STREQ(d->GetString(), "1.5");
    EXPECT_STREQ(a->GetName(), "a");
    EXPECT_STREQ(d->GetName(), "d");
}

TEST(DataElementInChunk, OwnTextCanGrowOutOfTheChunk) {
    CZrEnvBlock block("block");
    {
        CZrEnvNodeStore::Batch batch;
        CZrEnvNodeStore::Append(block, batch.MakeData("a", "12"));
    }
    CZrEnvDataElement *a = block.GetDataElement("a", 1);
    const char *values[] = {a->GetString(), a->GetString() + 1, "end"};
    EXPECT_EQ(a->SetStrings(3, values), ENV_OK);
    EXPECT_STREQ(a->GetString(), "12,2,end");
}

// No memory

TEST(DataElementNoMemory, MostSettersKeepTheOldValue) {
    ReportCapture reports;
    Leaf leaf("1");
    const std::vector<zr_long> longs(1000, 12345);
    const std::vector<double> doubles(1000, 0.5);
    const std::string bytes(1000, 'x');
    EXPECT_EQ(Refused(6, [&] { return leaf.SetLong(12345); }), ENV_ERROR);
    EXPECT_EQ(Refused(5, [&] { return leaf.SetDouble(0.25); }), ENV_ERROR);
    EXPECT_EQ(Refused(9, [&] { return leaf.SetFloat(0.25F); }), ENV_ERROR);
    EXPECT_EQ(Refused(1003, [&] { return leaf.SetBinary(1000, bytes.data()); }), ENV_ERROR);
    for (const std::size_t size : {1U, 100U, 3000U}) {
        EXPECT_EQ(Refused(size, [&] { return leaf.SetLongs(1000, longs.data()); }), ENV_ERROR);
        EXPECT_EQ(Refused(size, [&] { return leaf.SetDoubles(1000, doubles.data()); }), ENV_ERROR);
    }
    EXPECT_STREQ(leaf.GetString(), "1");
    EXPECT_EQ(reports.Take(), Reports(10, Message(Tag, OutOfMemory)));
}

// The joined text is stored as SetString does it. Texts this short need no memory while they are joined.
TEST(DataElementNoMemory, ListsThatCannotBeStoredLoseTheOldValue) {
    ReportCapture reports;
    const zr_long longs[] = {1234, 5678};
    const double doubles[] = {12.5, 7.25};
    Leaf leaf("old");
    EXPECT_EQ(Refused(10, [&] { return leaf.SetLongs(2, longs); }), ENV_ERROR);
    EXPECT_EQ(leaf.GetString(), nullptr);
    leaf.SetString("old");
    EXPECT_EQ(Refused(10, [&] { return leaf.SetDoubles(2, doubles); }), ENV_ERROR);
    EXPECT_EQ(leaf.GetString(), nullptr);
    EXPECT_EQ(reports.Take(), Reports(2, Message(Tag, OutOfMemory)));
}

TEST(DataElementNoMemory, SetStringLosesTheOldValue) {
    ReportCapture reports;
    Leaf leaf("old");
    EXPECT_EQ(Refused(6, [&] { return leaf.SetString("12345"); }), ENV_ERROR);
    EXPECT_EQ(leaf.GetString(), nullptr);
    EXPECT_EQ(reports.Take(), Reports{Message(Tag, OutOfMemory)});
    EXPECT_EQ(leaf.SetString("new"), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "new");
}

TEST(DataElementNoMemory, SetStringsReportsAnErrorAndLosesTheOldValue) {
    ReportCapture reports;
    Leaf leaf("old");
    const char *values[] = {"12345", "678"}; // needs 1 + 6 + 4
    EXPECT_EQ(Refused(11, [&] { return leaf.SetStrings(2, values); }), ENV_ERROR);
    EXPECT_EQ(leaf.GetString(), nullptr);
    EXPECT_EQ(reports.Take(), Reports{Error(Tag, OutOfMemory)});
    EXPECT_EQ(leaf.SetStrings(2, values), ENV_OK);
    EXPECT_STREQ(leaf.GetString(), "12345,678");
}

TEST(DataElementNoMemory, ATextThatFitsNeedsNone) {
    Leaf leaf("12345678");
    const char *values[] = {"a", "b"};
    const auto results = WithLessThan(1, [&] {
        return std::array{leaf.SetString("1234567"), leaf.SetLong(-12345), leaf.SetStrings(2, values)};
    });
    EXPECT_THAT(results, testing::Each(ENV_OK));
    EXPECT_STREQ(leaf.GetString(), "a,b");
}

TEST(DataElementNoMemory, ReadingNeedsNone) {
    Leaf leaf("1.5,2.5");
    Leaf number("12");
    std::array<double, 2> doubles{};
    std::array<zr_long, 1> longs{};
    zr_long count = 2, one = 1, parts = 0, longest = 0, texts = 2, value = 0;
    double dValue = 0.0;
    float fValue = 0.0F;
    char bytes[16], first[8], second[8];
    char *buffers[] = {first, second};
    zr_long length = sizeof bytes;
    const auto results = WithLessThan(1, [&] {
        return std::array{leaf.GetDoubles(count, doubles.data()),
                          number.GetLongs(one, longs.data()),
                          number.GetLong(value),
                          number.GetDouble(dValue),
                          number.GetFloat(fValue),
                          leaf.GetString(8, first),
                          leaf.GetStrings(texts, 8, buffers),
                          leaf.GetArraySize(parts, longest),
                          leaf.GetBinary(&length, bytes)};
    });
    EXPECT_THAT(results, testing::Each(ENV_OK));
    EXPECT_EQ(doubles, (std::array<double, 2>{1.5, 2.5}));
    EXPECT_EQ(longs[0], 12);
    EXPECT_STREQ(second, "2.5");
}

} // namespace
