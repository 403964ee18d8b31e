// Typed access and editing: reads through the default chain, writes that make what is missing, renaming and deleting.
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <climits>
#include <functional>

namespace zr::test {
namespace {

using Zr::ENV_BAD_FORMAT;
using Zr::ENV_DATA;
using Zr::ENV_ERROR;
using Zr::ENV_NOT_FOUND;
using Zr::ENV_OK;
using Zr::ENV_TOO_SMALL;

// A last error that no operation leaves: it shows what an operation does not touch.
const Zr::EZrEnvError untouched = Zr::ENV_EMPTY_PATH;

// S: l=12  d=1.5  t=abc  list=1,2,3  none (without value)  b { x=7 }  own (a kind of its own)
class Edit : public testing::Test {
protected:
    void SetUp() override {
        m_pSection = m_env->InsertSection("S");
        AddLeaf(*m_pSection, "l", "12");
        AddLeaf(*m_pSection, "d", "1.5");
        AddLeaf(*m_pSection, "t", "abc");
        AddLeaf(*m_pSection, "list", "1,2,3");
        AddLeaf(*m_pSection, "none");
        m_pBlock = AddBlock(*m_pSection, "b");
        AddLeaf(*m_pBlock, "x", "7");
        EXPECT_TRUE(m_pSection->InsertElement(new PlainElement("own")));
        m_env->SetLastError(untouched);
    }

    void TearDown() override { EXPECT_TRUE(EnvIsSound(*m_env)); }

    // Result and last error agree, and the next operation starts from another one.
    void Expect(Zr::EZrEnvError expected, Zr::EZrEnvError result) { Expect(expected, result, expected); }
    void Expect(Zr::EZrEnvError expected, Zr::EZrEnvError result, Zr::EZrEnvError lastError) {
        EXPECT_EQ(expected, result);
        EXPECT_EQ(lastError, m_env->GetLastError());
        m_env->SetLastError(untouched);
    }
    std::string Tree() { return Describe(*m_env); }

    ReportCapture m_reports;
    EnvPtr m_env = NewEnv(1);
    CZrEnvSection *m_pSection = nullptr;
    CZrEnvBlock *m_pBlock = nullptr;
};

const char *const wholeTree = "[S]l=12 d=1.5 t=abc list=1,2,3 none b{x=7} own";

// Reads

TEST_F(Edit, Read_OfWhatIsNoDataElement) {
    struct Row {
        const char *szSection, *szPath;
        Zr::EZrEnvError expected;
    };
    for (const Row &row :
         {Row{"S", "missing", ENV_NOT_FOUND}, Row{"S", "b@y", ENV_NOT_FOUND}, Row{"S", "l@x", ENV_NOT_FOUND},
          Row{"S", "l@2", ENV_NOT_FOUND}, Row{"T", "l", ENV_NOT_FOUND}, Row{"T", nullptr, ENV_NOT_FOUND},
          Row{"S", "x", ENV_NOT_FOUND}, Row{"S", "b", ENV_DATA}, Row{"S", nullptr, ENV_DATA}, Row{"S", "", ENV_DATA},
          Row{"S", "own", ENV_DATA}, Row{nullptr, "l", ENV_DATA}, Row{nullptr, nullptr, ENV_DATA}}) {
        SCOPED_TRACE(std::string(row.szSection ? row.szSection : "null") + ", " + (row.szPath ? row.szPath : "null"));
        const char *szSection = row.szSection, *szPath = row.szPath;
        zr_long value = 99, count = 3, length = 5;
        double number = 99.0;
        char buffer[8] = "before";
        char *texts[] = {buffer};
        m_env->SetLastError(untouched);
        Expect(row.expected, m_env->GetLong(szSection, szPath, value));
        EXPECT_EQ(99, value);
        EXPECT_EQ(0, m_env->GetLong(szSection, szPath));
        Expect(row.expected, m_env->GetLastError());
        Expect(row.expected, m_env->GetDouble(szSection, szPath, number));
        EXPECT_EQ(99.0, number);
        EXPECT_EQ(0.0, m_env->GetDouble(szSection, szPath));
        Expect(row.expected, m_env->GetLastError());
        Expect(row.expected, m_env->GetString(szSection, szPath, 8, buffer));
        EXPECT_EQ(nullptr, m_env->GetString(szSection, szPath));
        Expect(row.expected, m_env->GetLastError());
        Expect(row.expected, m_env->GetBinary(szSection, szPath, &length, buffer));
        EXPECT_EQ(5, length);
        Expect(row.expected, m_env->GetLongs(szSection, szPath, count, &value));
        EXPECT_EQ(0, count);
        count = 3;
        Expect(row.expected, m_env->GetDoubles(szSection, szPath, count, &number));
        EXPECT_EQ(0, count);
        count = 3;
        Expect(row.expected, m_env->GetStrings(szSection, szPath, count, 8, texts));
        EXPECT_EQ(0, count);
        count = 3;
        Expect(row.expected, m_env->GetArraySize(szSection, szPath, true, count, length));
        EXPECT_EQ(3, count);
        EXPECT_EQ(5, length);
        EXPECT_EQ(0, m_env->GetDataLength(szSection, szPath, true));
        EXPECT_STREQ("before", buffer);
    }
    EXPECT_EQ(Reports{}, m_reports.Take());
    EXPECT_EQ(wholeTree, Tree());
}

TEST_F(Edit, Read_OfDataElements) {
    zr_long value = 0;
    double number = 0.0;
    Expect(ENV_OK, m_env->GetLong("S", "l", value));
    EXPECT_EQ(12, value);
    EXPECT_EQ(12, m_env->GetLong("S", "l@1"));
    Expect(ENV_OK, m_env->GetLastError());
    Expect(ENV_OK, m_env->GetDouble("S", "d", number));
    EXPECT_EQ(1.5, number);
    EXPECT_EQ(12.0, m_env->GetDouble("S", "l"));
    Expect(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(7, m_env->GetLong("S", "b@x"));
    EXPECT_STREQ("abc", m_env->GetString("S", "t"));
    Expect(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(m_env->GetDataElement("S", "t", true, false)->GetString(), m_env->GetString("S", "t")) << "no copy";
    EXPECT_EQ(nullptr, m_env->GetString("S", "none"));
    Expect(ENV_OK, m_env->GetLastError());
}

TEST_F(Edit, Read_FailuresOfTheElement) {
    zr_long value = 99;
    double number = 99.0;
    Expect(ENV_BAD_FORMAT, m_env->GetLong("S", "t", value));
    EXPECT_EQ(99, value);
    EXPECT_EQ(0, m_env->GetLong("S", "t"));
    Expect(ENV_BAD_FORMAT, m_env->GetLastError());
    Expect(ENV_BAD_FORMAT, m_env->GetDouble("S", "t", number));
    EXPECT_EQ(0.0, m_env->GetDouble("S", "t"));
    Expect(ENV_BAD_FORMAT, m_env->GetLastError());
    Expect(ENV_ERROR, m_env->GetLong("S", "none", value));
    Expect(ENV_ERROR, m_env->GetDouble("S", "none", number));
    EXPECT_EQ(0, m_env->GetLong("S", "none"));
    Expect(ENV_ERROR, m_env->GetLastError());
}

TEST_F(Edit, Read_StringsAtTheLimits) {
    char buffer[8] = "before";
    for (zr_long size : {INT_MIN, -1, 0, 1, 3}) {
        Expect(ENV_TOO_SMALL, m_env->GetString("S", "t", size, buffer));
        EXPECT_STREQ("before", buffer);
    }
    Expect(ENV_OK, m_env->GetString("S", "t", 4, buffer));
    EXPECT_STREQ("abc", buffer);
    Expect(ENV_ERROR, m_env->GetString("S", "none", 8, buffer));
}

TEST_F(Edit, Read_NullBuffers) {
    zr_long count = 3;
    char buffer[4] = "";
    Expect(ENV_ERROR, m_env->GetString("S", "t", 8, nullptr));
    Expect(ENV_ERROR, m_env->GetBinary("S", "t", nullptr, buffer));
    Expect(ENV_ERROR, m_env->GetBinary("S", "t", &count, nullptr));
    Expect(ENV_ERROR, m_env->GetLongs("S", "list", count, nullptr));
    EXPECT_EQ(0, count);
    count = 3;
    Expect(ENV_ERROR, m_env->GetDoubles("S", "list", count, nullptr));
    EXPECT_EQ(0, count);
    char *texts[] = {buffer, nullptr, buffer};
    count = 3;
    Expect(ENV_ERROR, m_env->GetStrings("S", "list", count, 4, texts), ENV_OK);
}

TEST_F(Edit, Read_BytesAndTheirLimits) {
    const char bytes[] = {'a', '\0', ',', '\xFF', '\n'};
    char buffer[8] = {};
    zr_long length = sizeof buffer;
    Expect(ENV_OK, m_env->SetBinary("S", "bin", sizeof bytes, bytes));
    Expect(ENV_OK, m_env->GetBinary("S", "bin", &length, buffer));
    EXPECT_EQ(std::string(bytes, sizeof bytes), std::string(buffer, static_cast<std::size_t>(length)));
    EXPECT_EQ(Reports{}, m_reports.Take());
    length = 2;
    Expect(ENV_TOO_SMALL, m_env->GetBinary("S", "bin", &length, buffer));
    EXPECT_EQ(2, length);
    EXPECT_EQ(Reports{Message("ZrEnvDataConvert", "Small buffer")}, m_reports.Take());
    Expect(ENV_ERROR, m_env->GetBinary("S", "none", &length, buffer));
    Expect(ENV_ERROR, m_env->SetBinary("S", "bin", 2, nullptr));
}

TEST_F(Edit, Read_Lists) {
    zr_long values[3] = {}, count = 3;
    Expect(ENV_OK, m_env->GetLongs("S", "list", count, values));
    EXPECT_EQ(3, count);
    EXPECT_EQ(3, values[2]);
    count = 2;
    Expect(ENV_TOO_SMALL, m_env->GetLongs("S", "list", count, values));
    EXPECT_EQ(0, count);
    count = 3;
    Expect(ENV_BAD_FORMAT, m_env->GetLongs("S", "t", count, values));
    EXPECT_EQ(0, count);
    double numbers[3] = {};
    count = 3;
    Expect(ENV_OK, m_env->GetDoubles("S", "list", count, numbers));
    EXPECT_EQ(2.0, numbers[1]);
    Expect(ENV_ERROR, m_env->GetLongs("S", "none", count, values));
    EXPECT_EQ(0, count);
}

TEST_F(Edit, Read_StringListsKeepTheLookUpsError) {
    char first[4] = "", second[4] = "", third[4] = "";
    char *texts[] = {first, second, third};
    zr_long count = 3;
    Expect(ENV_OK, m_env->GetStrings("S", "list", count, 4, texts));
    EXPECT_EQ(3, count);
    EXPECT_STREQ("3", third);
    count = 2;
    Expect(ENV_TOO_SMALL, m_env->GetStrings("S", "list", count, 4, texts), ENV_OK);
    count = 0;
    Expect(ENV_ERROR, m_env->GetStrings("S", "list", count, 4, texts), ENV_OK);
    count = 3;
    Expect(ENV_ERROR, m_env->GetStrings("S", "list", count, 4, nullptr), ENV_OK);
}

TEST_F(Edit, Read_SizesWithTheirDirectFlag) {
    zr_long count = 0, longest = 0;
    Expect(ENV_OK, m_env->GetArraySize("S", "list", true, count, longest));
    EXPECT_EQ(3, count);
    EXPECT_EQ(1, longest);
    Expect(ENV_NOT_FOUND, m_env->GetArraySize("S", "x", true, count, longest));
    Expect(ENV_OK, m_env->GetArraySize("S", "x", false, count, longest));
    EXPECT_EQ(1, count);
    Expect(ENV_ERROR, m_env->GetArraySize("S", "none", true, count, longest));
    EXPECT_EQ(0, count);
    EXPECT_EQ(5, m_env->GetDataLength("S", "list", true));
    EXPECT_EQ(0, m_env->GetDataLength("S", "x", true));
    EXPECT_EQ(1, m_env->GetDataLength("S", "x", false));
    EXPECT_EQ(0, m_env->GetDataLength("S", "none", true));
}

TEST(EditEmpty, Read_WithANullSection) {
    EnvPtr env = NewEnv();
    zr_long value = 99, count = 3, longest = 5;
    EXPECT_EQ(ENV_NOT_FOUND, env->GetLong(nullptr, "x", value));
    EXPECT_EQ(ENV_NOT_FOUND, env->GetLastError());
    EXPECT_EQ(ENV_ERROR, env->GetArraySize(nullptr, "x", true, count, longest));
    EXPECT_EQ(3, count);
    EXPECT_EQ(5, longest);
}

TEST_F(Edit, Read_ThroughTheDefaults) {
    EnvPtr front = NewEnv(2, m_env.get());
    ASSERT_EQ(ENV_OK, front->SetLong("S", "l", 13));
    EXPECT_EQ(13, front->GetLong("S", "l"));
    EXPECT_EQ(1.5, front->GetDouble("S", "d"));
    EXPECT_EQ(1, front->GetElement("S", "d", true, true)->GetEnv()->GetID());
    EXPECT_EQ(12, m_env->GetLong("S", "l"));
    EXPECT_EQ(ENV_OK, front->SetDouble("S", "d", 2.5));
    EXPECT_EQ(2.5, front->GetDouble("S", "d"));
    EXPECT_EQ("[S]l=13 d=2.5", Describe(*front));
    EXPECT_EQ(wholeTree, Tree()) << "a write never touches a default";
    zr_long count = 3, longest = 0;
    EXPECT_EQ(ENV_OK, front->GetArraySize("S", "x", false, count, longest));
    EXPECT_EQ(5, front->GetDataLength("S", "list", true));
}

// Writes

using Writer = std::function<Zr::EZrEnvError(CZrEnv &, const char *, const char *)>;

struct WriterRow {
    const char *szName;
    Writer write;
    const char *szText;
};

std::vector<WriterRow> Writers() {
    static const zr_long longs[] = {1, -2};
    static const double doubles[] = {1.5, 2};
    static const char *texts[] = {"u", "v"};
    return {
        {"SetLong", [](CZrEnv &env, const char *s, const char *p) { return env.SetLong(s, p, -5); }, "-5"},
        {"SetDouble", [](CZrEnv &env, const char *s, const char *p) { return env.SetDouble(s, p, 0.1); }, "0.1"},
        {"SetString", [](CZrEnv &env, const char *s, const char *p) { return env.SetString(s, p, "text"); }, "text"},
        {"SetBinary", [](CZrEnv &env, const char *s, const char *p) { return env.SetBinary(s, p, 2, "a,"); },
         "2\xD0"
         "a_m"},
        {"SetLongs", [](CZrEnv &env, const char *s, const char *p) { return env.SetLongs(s, p, 2, longs); }, "1,-2"},
        {"SetDoubles", [](CZrEnv &env, const char *s, const char *p) { return env.SetDoubles(s, p, 2, doubles); },
         "1.5,2"},
        {"SetStrings", [](CZrEnv &env, const char *s, const char *p) { return env.SetStrings(s, p, 2, texts); }, "u,v"},
    };
}

// What each writer makes of one address, from a fresh tree: "*" stands for the value.
struct WriteRow {
    const char *szSection, *szPath;
    Zr::EZrEnvError expected;
    const char *szTree;
};

const WriteRow writeRows[] = {
    {"S", "l", ENV_OK, "[S]l=* b{x=7 y{}} l"},
    {"S", "l@2", ENV_OK, "[S]l=12 b{x=7 y{}} l=*"},
    {"S", "l@3", ENV_OK, "[S]l=12 b{x=7 y{}} l l=*"},
    {"S", "n", ENV_OK, "[S]l=12 b{x=7 y{}} l n=*"},
    {"S", "n@m@k", ENV_OK, "[S]l=12 b{x=7 y{}} l n{m{k=*}}"},
    {"S", "b@n", ENV_OK, "[S]l=12 b{x=7 y{} n=*} l"},
    {"S", "b@x", ENV_OK, "[S]l=12 b{x=* y{}} l"},
    {"S", "b", ENV_OK, "[S]l=12 b=* l"},                      // over a block: all below is gone
    {"S", "b@y", ENV_OK, "[S]l=12 b{x=7 y=*} l"},             //
    {"S", "b@x@k", ENV_OK, "[S]l=12 b{x{k=*} y{}} l"},        // through a data element: its value is gone
    {"S", "l@k", ENV_OK, "[S]l{k=*} b{x=7 y{}} l"},           //
    {"S", "x@3", ENV_OK, "[S]l=12 b{x=7 y{}} l x x=*"},       // one short
    {"S", "x@2@k", ENV_OK, "[S]l=12 b{x=7 y{}} l x x{k=*}"},  // fillers are data elements, also before a block
    {"S", "l@0", ENV_OK, "[S]l=* b{x=7 y{}} l"},              // what is there is found at 0
    {"S", "x@0", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},          // what is not, cannot be made there
    {"S", "x@0@k", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},        //
    {"S", "q@x@0", ENV_ERROR, "[S]l=12 b{x=7 y{}} l q{}"},    // what was made on the way stays
    {"S", nullptr, ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},        // a section is no value
    {"S", "", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},             //
    {"S", "=", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},            //
    {"S", "@", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},            //
    {"T", "n@m", ENV_OK, "[S]l=12 b{x=7 y{}} l[T]n{m=*}"},    //
    {"", "n", ENV_OK, "[S]l=12 b{x=7 y{}} l[]n=*"},           //
    {"T", nullptr, ENV_NOT_FOUND, "[S]l=12 b{x=7 y{}} l[T]"}, // the section is made all the same
    {"T", "", ENV_ERROR, "[S]l=12 b{x=7 y{}} l[T]"},          //
    {"T", "x@0", ENV_ERROR, "[S]l=12 b{x=7 y{}} l[T]"},       //
    {nullptr, "n", ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},        // the first section answers
    {nullptr, nullptr, ENV_ERROR, "[S]l=12 b{x=7 y{}} l"},    //
};

TEST(EditWrite, EveryWriter_EveryRow) {
    ReportCapture reports;
    for (const WriterRow &writer : Writers())
        for (const WriteRow &row : writeRows) {
            SCOPED_TRACE(std::string(writer.szName) + " to " + (row.szSection ? row.szSection : "null") + ", " +
                         (row.szPath ? row.szPath : "null"));
            EnvPtr env = NewEnv();
            CZrEnvSection *pSection = env->InsertSection("S");
            AddLeaf(*pSection, "l", "12");
            CZrEnvBlock *pBlock = AddBlock(*pSection, "b");
            AddLeaf(*pBlock, "x", "7");
            AddBlock(*pBlock, "y");
            AddLeaf(*pSection, "l");
            env->SetLastError(untouched);
            EXPECT_EQ(row.expected, writer.write(*env, row.szSection, row.szPath));
            EXPECT_EQ(row.expected, env->GetLastError());
            std::string expected = row.szTree;
            if (const std::size_t star = expected.find('*'); star != std::string::npos)
                expected.replace(star, 1, writer.szText);
            EXPECT_EQ(expected, Describe(*env));
            EXPECT_TRUE(EnvIsSound(*env));
        }
    EXPECT_EQ(Reports{}, reports.Take());
}

TEST(EditWrite, BadSectionName_MakesNothing) {
    ReportCapture reports;
    for (const WriterRow &writer : Writers()) {
        EnvPtr env = NewEnv();
        EXPECT_EQ(ENV_ERROR, writer.write(*env, "a]b", "x"));
        EXPECT_EQ(ENV_ERROR, env->GetLastError());
        EXPECT_EQ("", Describe(*env));
        EXPECT_EQ(std::vector<std::string>{"Wrong section name: "}, TextsOf(reports));
        EXPECT_EQ(ENV_ERROR, writer.write(*env, nullptr, "x")) << "no first section, and no name for one";
        EXPECT_EQ("", Describe(*env));
        reports.Take();
    }
}

TEST_F(Edit, Write_ListsWithoutValuesMakeNothing) {
    const zr_long longs[] = {1};
    const double doubles[] = {1};
    const char *texts[] = {"a"};
    for (zr_long count : {0, -1, INT_MIN}) {
        Expect(ENV_ERROR, m_env->SetLongs("N", "n", count, longs));
        Expect(ENV_ERROR, m_env->SetDoubles("N", "n", count, doubles));
        Expect(ENV_ERROR, m_env->SetStrings("N", "n", count, texts));
    }
    Expect(ENV_ERROR, m_env->SetLongs("N", "n", 1, nullptr));
    Expect(ENV_ERROR, m_env->SetDoubles("N", "n", 1, nullptr));
    Expect(ENV_ERROR, m_env->SetStrings("N", "n", 1, nullptr));
    Expect(ENV_ERROR, m_env->SetLongs("a]b", "n", 0, longs));
    EXPECT_EQ(wholeTree, Tree());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Edit, Write_NullStringMakesAnElementWithoutValue) {
    Expect(ENV_ERROR, m_env->SetString("S", "new", nullptr), ENV_OK);
    EXPECT_EQ(std::string(wholeTree) + " new", Tree());
    Expect(ENV_ERROR, m_env->SetString("S", "t", nullptr), ENV_OK);
    EXPECT_STREQ("abc", m_env->GetString("S", "t")) << "the old value stays";
}

TEST_F(Edit, Write_ElementOfAnotherKind) {
    Expect(ENV_ERROR, m_env->SetLong("S", "own", 1));
    EXPECT_EQ(Reports{Error("ZrEnv", "unbekanntes Element")}, m_reports.Take());
    EXPECT_EQ(wholeTree, Tree());
}

TEST_F(Edit, Write_BlockInPlaceOfAValueStandsBehindItsNamesakes) {
    CZrEnvElement *pSecond = AddLeaf(*m_pSection, "t", "second");
    Expect(ENV_OK, m_env->SetLong("S", "t@1@k", 5));
    EXPECT_EQ(pSecond, m_env->GetElement("S", "t", true, false));
    EXPECT_EQ(5, m_env->GetLong("S", "t@2@k"));
    EXPECT_EQ("[S]l=12 d=1.5 t{k=5} list=1,2,3 none b{x=7} own t=second", Tree());
}

TEST_F(Edit, Write_AndReadBack) {
    Expect(ENV_OK, m_env->SetLong("new section", "a@2@b@c", INT_MIN));
    EXPECT_EQ(INT_MIN, m_env->GetLong("new section", "a@2@b@c"));
    Expect(ENV_OK, m_env->SetDouble("S", "d", -2.25));
    EXPECT_EQ(-2.25, m_env->GetDouble("S", "d"));
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string text(length, 't');
        Expect(ENV_OK, m_env->SetString("S", "t", text.c_str()));
        EXPECT_EQ(text, m_env->GetString("S", "t"));
        EXPECT_EQ(static_cast<zr_long>(length), m_env->GetDataLength("S", "t", true));
    }
    Expect(ENV_OK, m_env->SetString("S", "t", m_env->GetString("S", "t")));
    EXPECT_EQ(1000000, m_env->GetDataLength("S", "t", true));
    Expect(ENV_OK, m_env->SetBinary("S", "bin", 0, nullptr));
    char buffer[4];
    zr_long length = 4;
    Expect(ENV_OK, m_env->GetBinary("S", "bin", &length, buffer));
    EXPECT_EQ(0, length);
}

// The new element's number when the position jumps past the namesakes
struct FillRow {
    int before;
    int position;
    const char *szAfter; // "n" for each namesake, "N" for the one that was written
};

const FillRow fillRows[] = {
    {0, 1, "N"},       {0, 2, "n N"}, {0, 3, "n N"},     {0, 4, "n n N"},           {1, 2, "n N"},
    {2, 3, "n n N"},   {1, 3, "n N"}, {3, 2, "n N n"},   {0, 5, "n n n N"},         {2, 4, "n n N"},
    {2, 5, "n n n N"}, {1, 1, "N"},   {3, 4, "n n n N"}, {3, 9, "n n n n n n n N"},
};

TEST(EditFill, Rows) {
    for (const FillRow &row : fillRows)
        for (bool asBlock : {false, true}) {
            SCOPED_TRACE(std::to_string(row.before) + " before, position " + std::to_string(row.position));
            EnvPtr env = NewEnv();
            CZrEnvSection *pSection = env->InsertSection("S");
            for (int i = 0; i < row.before; ++i)
                AddLeaf(*pSection, "n");
            std::string path = "n@" + std::to_string(row.position);
            EXPECT_EQ(ENV_OK, env->SetLong("S", (path + (asBlock ? "@k" : "")).c_str(), 5));
            std::string expected = row.szAfter;
            expected.replace(expected.find('N'), 1, asBlock ? "n{k=5}" : "n=5");
            // a value that was there turns into a block, and stands behind its namesakes by number, not in sequence
            EXPECT_EQ(expected, Describe(*pSection));
            EXPECT_TRUE(BlockIsSound(*pSection));
        }
}

TEST(EditFill, CountingUpwardGivesWhatWasAskedFor) {
    EnvPtr env = NewEnv();
    for (zr_long i = 1; i <= 200; ++i)
        EXPECT_EQ(ENV_OK, env->SetLong("S", ("n@" + std::to_string(i)).c_str(), i));
    for (zr_long i = 1; i <= 200; ++i)
        EXPECT_EQ(i, env->GetLong("S", ("n@" + std::to_string(i)).c_str()));
}

TEST(EditFill, ThirdInAnEmptyBlockIsTheSecond) {
    EnvPtr env = NewEnv();
    EXPECT_EQ(ENV_OK, env->SetLong("S", "x@3", 5));
    zr_long value = 0;
    EXPECT_EQ(ENV_NOT_FOUND, env->GetLong("S", "x@3", value));
    EXPECT_EQ(ENV_OK, env->GetLong("S", "x@2", value));
    EXPECT_EQ(5, value);
    EXPECT_EQ(ENV_ERROR, env->GetLong("S", "x@1", value)) << "without value";
}

TEST(EditFill, HundredThousandAtOnce) {
    EnvPtr env = NewEnv();
    EXPECT_EQ(ENV_OK, env->SetLong("S", "x@100000", 5));
    EXPECT_EQ(99999, env->CountPath("S", "x", true));
    EXPECT_EQ(5, env->GetLong("S", "x@99999"));
}

// Writes through subenvironments

TEST_F(Edit, SubWrite_OnALeafRoot) {
    const EnvPtr sub(m_env->OpenSubenv("S", "l", true));
    EXPECT_EQ(ENV_OK, sub->SetLong(nullptr, nullptr, 5));
    EXPECT_EQ(5, m_env->GetLong("S", "l"));
    EXPECT_EQ(ENV_OK, sub->SetLong("any", "a@b", 6)) << "the root becomes a block";
    EXPECT_EQ("[S]l{a{b=6}} d=1.5 t=abc list=1,2,3 none b{x=7} own", Tree());
    EXPECT_EQ(m_env->GetElement("S", "l", true, false), sub->GetSubEnvRootElement());
    EXPECT_EQ(6, sub->GetLong(nullptr, "a@b"));
}

TEST_F(Edit, SubWrite_OnALeafRootWithoutSteps) {
    const EnvPtr sub(m_env->OpenSubenv("S", "l", true));
    EXPECT_EQ(ENV_ERROR, sub->SetLong(nullptr, "", 5));
    EXPECT_EQ(ENV_ERROR, sub->GetLastError());
    EXPECT_EQ(wholeTree, Tree());
}

TEST_F(Edit, SubWrite_OnABlockRoot) {
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(ENV_OK, sub->SetLong(nullptr, "n@m", 5));
    EXPECT_EQ("x=7 n{m=5}", Describe(*m_pBlock));
    EXPECT_EQ(ENV_OK, sub->SetLong(nullptr, nullptr, 6));
    EXPECT_EQ("[S]l=12 d=1.5 t=abc list=1,2,3 none b=6 own", Tree());
    EXPECT_EQ(m_env->GetElement("S", "b", true, false), sub->GetSubEnvRootElement());
}

TEST_F(Edit, SubWrite_OnASectionRoot) {
    const EnvPtr sub(m_env->OpenSubenv(m_pSection));
    EXPECT_EQ(ENV_ERROR, sub->SetLong(nullptr, nullptr, 6));
    EXPECT_EQ(ENV_ERROR, sub->GetLastError());
    EXPECT_EQ(ENV_OK, sub->SetLong(nullptr, "l", 6));
    EXPECT_EQ(6, m_env->GetLong("S", "l"));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Edit, SubWrite_DetachedRootCannotBeReplaced) {
    const Report report = Error("ZrEnv", "unbekannter Fehler");
    CZrEnvElement *pLeaf = m_env->GetElement("S", "l", true, false);
    {
        const EnvPtr onBlock(m_env->OpenSubenv(m_pBlock));
        const EnvPtr onLeaf(m_env->OpenSubenv(pLeaf));
        ASSERT_TRUE(m_pSection->RemoveElement(m_pBlock, false));
        ASSERT_TRUE(m_pSection->RemoveElement(pLeaf, false));
        EXPECT_EQ(ENV_ERROR, onBlock->SetLong(nullptr, nullptr, 1));
        EXPECT_EQ((Reports{report, report}), m_reports.Take()) << "from the replacement and from the write";
        EXPECT_EQ(ENV_ERROR, onBlock->GetLastError());
        EXPECT_EQ(ENV_ERROR, onLeaf->SetLong(nullptr, "k", 1));
        EXPECT_EQ(Reports{report}, m_reports.Take());
        EXPECT_EQ(m_pBlock, onBlock->GetSubEnvRootElement());
    }
    EXPECT_EQ("x=7", Describe(*m_pBlock));
    Discard(m_pBlock);
    Discard(pLeaf);
}

// Renaming

TEST_F(Edit, Rename_Rows) {
    Expect(ENV_ERROR, m_env->Rename(nullptr, "l", "n"));
    Expect(ENV_ERROR, m_env->Rename(nullptr, nullptr, "n"));
    const Report report = Message("ZrEnv", "Rename-Aufruf mit szSection == NULL");
    EXPECT_EQ((Reports{report, report}), m_reports.Take());
    Expect(ENV_NOT_FOUND, m_env->Rename("S", "missing", "n"));
    Expect(ENV_NOT_FOUND, m_env->Rename("T", nullptr, "n"));
    Expect(ENV_NOT_FOUND, m_env->Rename("T", "l", "n"));
    Expect(ENV_ERROR, m_env->Rename("S", "l", nullptr));
    Expect(ENV_ERROR, m_env->Rename("S", "l", ""));
    Expect(ENV_ERROR, m_env->Rename("S", "l", "a=b"));
    Expect(ENV_ERROR, m_env->Rename("S", nullptr, "a]b"));
    Expect(ENV_ERROR, m_env->Rename("S", nullptr, nullptr));
    EXPECT_EQ(wholeTree, Tree());
    Expect(ENV_OK, m_env->Rename("S", "b", "a]b"));
    Expect(ENV_OK, m_env->Rename("S", "a]b@x", "y"));
    Expect(ENV_OK, m_env->Rename("S", nullptr, "a=b"));
    EXPECT_EQ("[a=b]l=12 d=1.5 t=abc list=1,2,3 none a]b{y=7} own", Tree());
    Expect(ENV_OK, m_env->Rename("a=b", "", ""));
    EXPECT_EQ(m_pSection, m_env->GetSection(""));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Edit, Rename_ToANameWithTheDelimiter) {
    CZrEnvElement *pElem = m_env->GetElement("S", "b@x", true, false);
    Expect(ENV_OK, m_env->Rename("S", "b@x", "u@v"));
    EXPECT_STREQ("u@v", pElem->GetName());
    Expect(ENV_NOT_FOUND, m_env->Rename("S", "b@u@v", "x"));
    EXPECT_EQ(pElem, m_env->GetPosElement("S", "b", 1, true, false));
}

TEST_F(Edit, Rename_NotInADefaultAndOverLong) {
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(ENV_NOT_FOUND, front->Rename("S", "l", "n"));
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        Expect(ENV_OK, m_env->Rename("S", "b@x", name.c_str()));
        EXPECT_EQ(7, m_env->GetLong("S", ("b@" + name).c_str()));
        Expect(ENV_OK, m_env->Rename("S", ("b@" + name).c_str(), "x"));
    }
    EXPECT_EQ(wholeTree, Tree());
}

TEST_F(Edit, Rename_InASubenvironment) {
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(ENV_OK, sub->Rename(nullptr, nullptr, "root"));
    EXPECT_EQ(ENV_OK, sub->Rename("any", "x", "y"));
    EXPECT_EQ("root", NameOf(m_pBlock));
    EXPECT_EQ("y=7", Describe(*m_pBlock));
    EXPECT_EQ(ENV_NOT_FOUND, sub->Rename(nullptr, "x", "z"));
    EXPECT_EQ(Reports{}, m_reports.Take());
    ASSERT_TRUE(m_pSection->RemoveElement(m_pBlock, false)); // and back, since it may stand twice in the index
    ASSERT_TRUE(m_pSection->InsertElement(m_pBlock));
}

// Deleting

TEST_F(Edit, Delete_Rows) {
    Expect(ENV_NOT_FOUND, m_env->Delete("S", "missing"));
    Expect(ENV_NOT_FOUND, m_env->Delete("S", "b@x@y"));
    Expect(ENV_NOT_FOUND, m_env->Delete("T", "l"));
    Expect(ENV_NOT_FOUND, m_env->Delete("T", nullptr));
    EXPECT_EQ(Reports{}, m_reports.Take());
    Expect(ENV_ERROR, m_env->Delete(nullptr, "l"));
    EXPECT_EQ(Reports{Message("ZrEnv", "szPath != NULL and szSection = NULL, env_delete called")}, m_reports.Take());
    EXPECT_EQ(wholeTree, Tree());
    Expect(ENV_OK, m_env->Delete("S", "l"));
    Expect(ENV_OK, m_env->Delete("S", "b@x"));
    EXPECT_EQ("[S]d=1.5 t=abc list=1,2,3 none b{} own", Tree());
    Expect(ENV_OK, m_env->Delete("S", "b"));
    Expect(ENV_NOT_FOUND, m_env->Delete("S", "b"));
    m_env->InsertSection("T");
    m_env->InsertSection("U");
    Expect(ENV_OK, m_env->Delete("T", nullptr));
    EXPECT_EQ("[S]d=1.5 t=abc list=1,2,3 none own[U]", Tree());
    Expect(ENV_OK, m_env->Delete("U", "")); // an empty path is the section too
    Expect(ENV_OK, m_env->Delete(nullptr, nullptr));
    EXPECT_EQ("", Tree());
    Expect(ENV_OK, m_env->Delete(nullptr, nullptr));
}

TEST_F(Edit, Delete_NotInADefault) {
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(ENV_NOT_FOUND, front->Delete("S", "l"));
    EXPECT_EQ(wholeTree, Tree());
}

TEST_F(Edit, Delete_InASubenvironment) {
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(ENV_ERROR, sub->Delete(nullptr, nullptr));
    EXPECT_EQ(Reports{Error("ZrEnv", "env_delete (env, NIL, NIL) called with subenv")}, m_reports.Take());
    EXPECT_EQ(ENV_ERROR, sub->GetLastError());
    EXPECT_EQ(ENV_ERROR, sub->Delete("S", nullptr));
    EXPECT_EQ(Reports{Message("ZrEnv", "DeleteSection-Aufruf bei SubEnv")}, m_reports.Take());
    EXPECT_EQ(ENV_ERROR, sub->GetLastError());
    EXPECT_EQ(ENV_NOT_FOUND, sub->Delete(nullptr, "y"));
    EXPECT_EQ(wholeTree, Tree());
    EXPECT_EQ(ENV_OK, sub->Delete(nullptr, "x"));
    EXPECT_EQ(ENV_OK, sub->GetLastError());
    EXPECT_EQ("", Describe(*m_pBlock));
}

TEST_F(Edit, Delete_IsOkWhateverBecomesOfTheElement) {
    {
        const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
        ASSERT_TRUE(m_pSection->RemoveElement(m_pBlock, false));
        EXPECT_EQ(ENV_OK, sub->Delete(nullptr, ""));
        EXPECT_EQ(ENV_OK, sub->GetLastError());
        EXPECT_EQ(Reports{Message("ZrEnv", "CZrEnv::DeleteElement - unbekanntes Objekt")}, m_reports.Take());
        EXPECT_EQ("x=7", Describe(*m_pBlock)) << "it stands nowhere, so it is left alone";
    }
    Discard(m_pBlock);
}

TEST_F(Edit, DeleteElement_OfAnotherEnvironment) {
    EnvPtr other = NewEnv();
    EXPECT_TRUE(other->DeleteElement(m_pBlock)) << "its parent is asked, not the environment";
    EXPECT_EQ(ENV_OK, other->GetLastError());
    Expect(untouched, m_env->GetLastError());
    EXPECT_TRUE(other->DeleteElement(m_pSection));
    EXPECT_EQ(ENV_OK, other->GetLastError());
    EXPECT_EQ("", Tree());
}

TEST_F(Edit, DeleteElement_Rows) {
    EXPECT_FALSE(m_env->DeleteElement(nullptr));
    Expect(untouched, m_env->GetLastError());
    EXPECT_TRUE(m_env->DeleteElement(m_pBlock));
    Expect(ENV_OK, m_env->GetLastError());
    EXPECT_EQ("[S]l=12 d=1.5 t=abc list=1,2,3 none own", Tree());
    EXPECT_EQ(Reports{}, m_reports.Take());

    CZrEnvBlock detached("detached");
    EXPECT_FALSE(m_env->DeleteElement(&detached));
    Expect(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(Reports{Message("ZrEnv", "CZrEnv::DeleteElement - unbekanntes Objekt")}, m_reports.Take());

    OpenLeaf view(*m_env->GetDataElement("S", "l", true, false)); // names the block, stands nowhere in it
    EXPECT_FALSE(m_env->DeleteElement(&view));
    Expect(ENV_ERROR, m_env->GetLastError());

    EXPECT_TRUE(m_env->DeleteElement(m_pSection));
    Expect(ENV_OK, m_env->GetLastError());
    EXPECT_EQ("", Tree());
}

TEST_F(Edit, DeleteElement_OfAMillionLevels) {
    CZrEnvBlock *pBlock = m_pBlock;
    for (int level = 0; level < 1000000; ++level)
        pBlock = AddBlock(*pBlock, "b");
    EXPECT_TRUE(m_env->DeleteElement(m_pBlock));
    Expect(ENV_OK, m_env->GetLastError());
}

TEST_F(Edit, Write_AMillionLevelsByPath) {
    std::string path;
    for (int level = 0; level < 1000000; ++level)
        path += "b@";
    path += "leaf";
    Expect(ENV_OK, m_env->SetLong("deep", path.c_str(), 5));
    EXPECT_EQ(5, m_env->GetLong("deep", path.c_str()));
    EXPECT_EQ(1, m_env->CountPath("deep", "leaf", false));
    Expect(ENV_OK, m_env->SetLong("deep", "b", 6)); // all below is gone
    EXPECT_EQ("b=6", Describe(*m_env->GetSection("deep")));
}

TEST_F(Edit, Set_BelowADetachedLeafAsRoot_Fails) {
    CZrEnvSection *pSection = m_env->InsertSection("Detached");
    CZrEnvDataElement *pLeaf = AddLeaf(*pSection, "leaf", "1");
    {
        const EnvPtr sub(m_env->OpenSubenv(pLeaf));
        ASSERT_TRUE(pSection->RemoveElement(pLeaf, false));
        m_reports.Take();
        EXPECT_EQ(ENV_ERROR, sub->SetLong(nullptr, "a@b", 1)) << "no block can take the root's place";
        EXPECT_EQ(Reports{Error("ZrEnv", "unbekannter Fehler")}, m_reports.Take());
        EXPECT_EQ(pLeaf, sub->GetSubEnvRootElement());
        EXPECT_STREQ("1", pLeaf->GetString());
    }
    Discard(pLeaf);
}

} // namespace
} // namespace zr::test
