// Paths and search: the grammar of a path, direct and tree search, access by position, counts, lists, composed paths.
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <climits>
#include <cstdarg>
#include <deque>
#include <random>

namespace zr::test {
namespace {

using Zr::ENV_BLOCK;
using Zr::ENV_ERROR;
using Zr::ENV_NOT_FOUND;
using Zr::ENV_OK;
using Zr::ENV_TOO_SMALL;

// A last error that no operation leaves: it shows what an operation does not touch.
const Zr::EZrEnvError untouched = Zr::ENV_EMPTY_PATH;

// Places `delimiter` where a row has '@'.
std::string With(char delimiter, std::string path) {
    std::replace(path.begin(), path.end(), '@', delimiter);
    return path;
}

// Grammar

struct GrammarRow {
    const char *szPath;
    const char *szTree; // what making the path in an empty section leaves: its steps, and fillers for positions
};

// Positions up to 2 are made exactly.
const GrammarRow grammarRows[] = {
    {"a", "a{}"},
    {"a@b@c", "a{b{c{}}}"},
    {"a@", "a{}"},
    {"a@b@", "a{b{}}"},
    {"a@1", "a{}"},
    {"a@2", "a a{}"},
    {"a@2@", "a a{}"},
    {"a@2@b", "a a{b{}}"},
    {"a@02@b", "a a{b{}}"},
    {"a@0000000000000000000002", "a a{}"},
    {"a@2@b@2", "a a{b b{}}"},
    {"a@2@2", "a a{2{}}"},     // the token at the name place is a name
    {"a@2@2@2", "a a{2 2{}}"}, // and has a position of its own
    {"a@1@2@b", "a{2{b{}}}"},
    {"12", "12{}"},
    {"12@2", "12 12{}"},
    {"12@b", "12{b{}}"},
    {"a@2x", "a{2x{}}"},
    {"a@+2", "a{+2{}}"},
    {"a@-2", "a{-2{}}"},
    {"a@ 2", "a{ 2{}}"},
    {"a@2 ", "a{2 {}}"},
    {"a@@b", "a{b{}}"},
    {"@a", "a{}"},
    {"@@a", "a{}"},
    {"a@@", "a{}"},
    {"@2@a", "a{}"}, // an empty name is dropped with its position
    {"a@@2", "a{}"}, // an empty token is no position, and as a name it is dropped with the 2
    {"a@@2@b", "a{b{}}"},
    {"a=b@c", "c{}"},
    {"a=b@2@c", "c{}"},
    {"c@=", "c{}"},
    {"c@a=b@2", "c{}"},
    {"c@2=", "c{}"},
    {"", ""},
    {"@", ""},
    {"@@@", ""},
    {"=", ""},
    {"a=b", ""},
    {"a=b@2", ""},
    {"@2", ""},
};

TEST(PathGrammar, Rows_WithSeveralDelimiters) {
    for (const char delimiter : {'@', '/', '.', '\\', ' ', '\xA7', '\n'})
        for (const GrammarRow &row : grammarRows) {
            const std::string path = With(delimiter, row.szPath);
            if (std::string_view(row.szPath).find(delimiter) != std::string_view::npos && delimiter != '@')
                continue; // the row uses it as an ordinary letter
            SCOPED_TRACE(path);
            EnvPtr env = NewEnv();
            env->SetDelimiter(delimiter);
            CZrEnvSection *pSection = env->InsertSection("S");
            const EnvPtr sub(env->CreateSubenv("S", path.c_str()));
            ASSERT_NE(nullptr, sub);
            EXPECT_EQ(row.szTree, Describe(*pSection));
            EXPECT_EQ(sub->GetSubEnvRootElement(), env->GetElement("S", path.c_str(), true, false));
        }
}

TEST(PathGrammar, DigitAndEqualSignAsDelimiter) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pSection = env->InsertSection("S");
    env->SetDelimiter('5');
    EXPECT_EQ(ENV_OK, env->SetLong("S", "a5b", 1));
    EXPECT_EQ("a{b=1}", Describe(*pSection));
    env->SetDelimiter('=');
    EXPECT_EQ(1, env->GetLong("S", "a=b"));
}

TEST(PathGrammar, Positions_Saturate) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pSection = env->InsertSection("S");
    AddLeaf(*pSection, "a");
    for (const char *szPath : {"a@2147483647", "a@2147483648", "a@4294967296", "a@4294967297", "a@18446744073709551617",
                               "a@99999999999999999999999999999999"}) {
        EXPECT_EQ(nullptr, env->GetElement("S", szPath, true, false)) << szPath;
        EXPECT_EQ(nullptr, env->GetElement("S", szPath, false, false)) << szPath;
    }
}

TEST(PathGrammar, OverLongPaths) {
    EnvPtr env = NewEnv();
    env->InsertSection("S");
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        const std::string path = name + "@x";
        EXPECT_EQ(nullptr, env->GetElement("S", path.c_str(), true, false));
        EXPECT_EQ(nullptr, env->GetElement("S", path.c_str(), false, false));
        EXPECT_EQ(ENV_OK, env->SetLong("S", path.c_str(), 5));
        EXPECT_EQ(5, env->GetLong("S", path.c_str()));
        EXPECT_EQ(1, env->CountPath("S", path.c_str(), true));
        EXPECT_EQ(nullptr, env->GetElement(name.c_str(), "x", true, false));
        EXPECT_EQ(env->GetFirstSection(), env->GetElement("S", std::string(length, '@').c_str(), true, false));
    }
}

// The told tree
//
// S: x { a=1 }  a=2  y { a=3 a { b=4 } a=5 }  e { }  12=6
class Search : public testing::Test {
protected:
    void SetUp() override {
        m_pSection = m_env->InsertSection("S");
        m_pX = AddBlock(*m_pSection, "x");
        AddLeaf(*m_pX, "a", "1");
        AddLeaf(*m_pSection, "a", "2");
        m_pY = AddBlock(*m_pSection, "y");
        AddLeaf(*m_pY, "a", "3");
        m_pInner = AddBlock(*m_pY, "a");
        AddLeaf(*m_pInner, "b", "4");
        AddLeaf(*m_pY, "a", "5");
        m_pEmpty = AddBlock(*m_pSection, "e");
        AddLeaf(*m_pSection, "12", "6");
        m_pSecond = m_env->InsertSection("T");
        m_env->SetLastError(untouched);
    }

    // What stands at a path: a value, a block's name, or "-".
    static std::string Shown(CZrEnvElement *pElem) {
        if (!pElem)
            return "-";
        return pElem->ToEnvDataElement() ? pElem->ToEnvDataElement()->GetString() : NameOf(pElem);
    }

    std::string Found(const char *szPath, bool bDirect) {
        CZrEnvElement *pElem = m_env->GetElement("S", szPath, bDirect, false);
        EXPECT_EQ(pElem ? ENV_OK : ENV_NOT_FOUND, m_env->GetLastError()) << szPath;
        EXPECT_EQ(pElem ? pElem->ToEnvDataElement() : nullptr, m_env->GetDataElement("S", szPath, bDirect, false));
        EXPECT_EQ(pElem ? ENV_OK : ENV_NOT_FOUND, m_env->GetLastError()) << szPath;
        EXPECT_EQ(pElem ? pElem->ToEnvBlock() : nullptr, m_env->GetBlock("S", szPath, bDirect, false));
        EXPECT_EQ(pElem ? ENV_OK : ENV_NOT_FOUND, m_env->GetLastError()) << szPath;
        return Shown(pElem);
    }

    ReportCapture m_reports;
    EnvPtr m_env = NewEnv(1);
    CZrEnvSection *m_pSection = nullptr, *m_pSecond = nullptr;
    CZrEnvBlock *m_pX = nullptr, *m_pY = nullptr, *m_pInner = nullptr, *m_pEmpty = nullptr;
};

struct SearchRow {
    const char *szPath, *szDirect, *szTree;
};

TEST_F(Search, GetElement_Rows) {
    for (const SearchRow &row : {
             SearchRow{"a", "2", "2"}, // nearer than the one in x
             {"a@1", "2", "2"},        //
             {"a@2", "-", "a"},        // the second within one block is the block in y
             {"a@3", "-", "5"},        //
             {"a@4", "-", "-"},        //
             {"a@0", "2", "x"},        // without comparing: the first child of all
             {"x@a", "1", "1"},        //
             {"x@a@2", "-", "-"},      // x holds one only, blocks do not pool their counts
             {"y@a", "3", "3"},        //
             {"y@a@2", "a", "a"},      //
             {"y@a@3", "5", "5"},      //
             {"y@a@2@b", "4", "4"},    //
             {"y@a@b", "-", "-"},      // through a data element
             {"b", "-", "4"},          // blocks of another name than b are all looked into
             {"12", "6", "6"},         //
             {"12@1", "6", "6"},       //
             {"e@a", "-", "-"},        //
             {"e@a@0", "-", "-"},      // an empty block has no first child
             {"q@0", "-", "x"},        //
             {"", "S", "S"},           //
             {"@", "S", "S"},          //
             {"=", "S", "S"},          //
             {"A", "-", "-"},          // case counts
             {"X@A", "-", "-"},        //
         }) {
        SCOPED_TRACE(row.szPath);
        EXPECT_EQ(row.szDirect, Found(row.szPath, true));
        EXPECT_EQ(row.szTree, Found(row.szPath, false));
    }
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, Tree_PassedOverNamesakesAreNotSearchedInside) {
    CZrEnvBlock *pFirst = AddBlock(*m_pSecond, "k");
    AddLeaf(*pFirst, "k", "inside");
    AddLeaf(*pFirst, "k", "inside too");
    EXPECT_EQ(nullptr, m_env->GetElement("T", "k@2", false, false));
    CZrEnvBlock *pOther = AddBlock(*m_pSecond, "o");
    AddLeaf(*pOther, "k", "one");
    CZrEnvElement *pTwo = AddLeaf(*pOther, "k", "two");
    EXPECT_EQ(pTwo, m_env->GetElement("T", "k@2", false, false));
}

TEST_F(Search, Tree_StepsAreEachAnywhereBelow) {
    CZrEnvBlock *pOuter = AddBlock(*m_pSecond, "o");
    CZrEnvBlock *pX = AddBlock(*AddBlock(*pOuter, "p"), "x");
    CZrEnvElement *pY = AddLeaf(*AddBlock(*pX, "q"), "y");
    EXPECT_EQ(pY, m_env->GetElement("T", "x@y", false, false));
    EXPECT_EQ(nullptr, m_env->GetElement("T", "x@y", true, false));
    EXPECT_EQ(nullptr, m_env->GetElement("T", "y@x", false, false));
}

TEST_F(Search, Tree_OnlyBelowX) {
    AddLeaf(*AddBlock(*m_pSecond, "x"), "a", "in x");
    EXPECT_EQ("in x", Shown(m_env->GetElement("T", "a", false, false)));
}

TEST_F(Search, Direct_TakesTheIndexOrder) {
    CZrEnvElement *pFirst = m_pY->GetElement("a", 1);
    ASSERT_TRUE(pFirst->SetName("a")); // behind its namesakes by number, first by sequence
    EXPECT_EQ("a", Found("y@a", true));
    EXPECT_EQ("3", Found("y@a@3", true));
    EXPECT_EQ(ENV_OK, m_env->SetLong("S", "y@a@3", 33));
    EXPECT_EQ("33", Shown(pFirst)) << "a write goes by number too";
    EXPECT_EQ(pFirst, m_env->GetPosElement("S", "y", 1, true, false));
    const EnvPtr y(m_env->OpenSubenv(m_pY));
    EXPECT_EQ(pFirst, y->GetElement(nullptr, "a", false, false)) << "a tree step takes the sequence";
}

TEST_F(Search, GetElement_NullArguments) {
    EXPECT_EQ(m_pSection, m_env->GetElement(nullptr, "x@a", true, true));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(m_pSection, m_env->GetElement(nullptr, nullptr, false, false));
    EXPECT_EQ(m_pSecond, m_env->GetElement("T", nullptr, true, false));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetElement("U", nullptr, true, false));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetElement("U", "x", true, false));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetDataElement("S", nullptr, true, false));
    EXPECT_EQ(ENV_OK, m_env->GetLastError()) << "what the look-up left";
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, GetElement_EmptyEnvironmentAnswersAtOnce) {
    EnvPtr empty = NewEnv(2, m_env.get());
    empty->SetLastError(untouched);
    EXPECT_EQ(nullptr, empty->GetElement(nullptr, "x", true, true)) << "the default is not asked";
    EXPECT_EQ(ENV_OK, empty->GetLastError());
}

TEST_F(Search, GetElement_OfASubenvironment) {
    const EnvPtr sub(m_env->OpenSubenv(m_pY));
    EXPECT_EQ(m_pY, sub->GetElement(nullptr, nullptr, true, false));
    EXPECT_EQ(m_pY, sub->GetElement("any", nullptr, true, false));
    EXPECT_EQ(m_pY, sub->GetElement("any", "", true, false));
    EXPECT_EQ(m_pInner, sub->GetElement("any", "a@2", true, false));
    EXPECT_EQ(ENV_OK, sub->GetLastError());
    EXPECT_EQ(nullptr, sub->GetElement("S", "x", true, false));
    EXPECT_EQ(ENV_NOT_FOUND, sub->GetLastError());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, GetElement_OfASubenvironmentOnALeaf) {
    const EnvPtr sub(m_env->OpenSubenv("S", "a", true));
    EXPECT_EQ("2", Shown(sub->GetElement(nullptr, nullptr, true, false)));
    for (const char *szPath : {"a", "", "@"}) {
        sub->SetLastError(untouched);
        EXPECT_EQ(nullptr, sub->GetElement(nullptr, szPath, true, false));
        EXPECT_EQ(ENV_NOT_FOUND, sub->GetLastError());
    }
    EXPECT_EQ(0, sub->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(0, sub->CountElements(nullptr, "", true));
    EXPECT_EQ(ENV_ERROR, sub->GetLastError()) << "the search does not start at a leaf";
}

TEST_F(Search, GetElement_SubenvironmentsMissGoesOnWithTheSection) {
    EnvPtr def = NewEnv(2);
    CZrEnvSection *pFirst = def->InsertSection("first");
    ASSERT_EQ(ENV_OK, def->SetLong("S", "missing", 8));
    m_env->AttachAsLastDefault(def.get());
    {
        const EnvPtr sub(m_env->OpenSubenv(m_pX));
        EXPECT_EQ("8", Shown(sub->GetElement("S", "missing", true, true)));
        EXPECT_EQ(pFirst, sub->GetElement(nullptr, "missing", true, true)) << "a null section: the first, at once";
        EXPECT_EQ(ENV_OK, sub->GetLastError());
        def->DeleteEnvironmentSections();
        EXPECT_EQ(nullptr, sub->GetElement(nullptr, "missing", true, true));
        EXPECT_EQ(ENV_OK, sub->GetLastError()) << "copied from the default, which answered at once";
    }
    EXPECT_EQ(def.get(), m_env->DetachDefaultChain());
}

// Access by position

TEST_F(Search, GetPosElement_CountsAllInSequence) {
    const char *const shown[] = {"x", "2", "y", "e", "6"};
    for (zr_long position = 1; position <= 5; ++position) {
        EXPECT_EQ(shown[position - 1], Shown(m_env->GetPosElement("S", nullptr, position, true, false)));
        EXPECT_EQ(ENV_OK, m_env->GetLastError());
        EXPECT_EQ(shown[position - 1], Shown(m_env->GetPosElement("S", "", position, true, false)));
    }
    for (zr_long position : {6, 7, INT_MAX}) {
        EXPECT_EQ(nullptr, m_env->GetPosElement("S", nullptr, position, true, false));
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    }
    EXPECT_EQ("5", Shown(m_env->GetPosElement("S", "y", 3, true, false)));
    EXPECT_EQ("4", Shown(m_env->GetPosElement("S", "a@2", 1, false, false)));
}

TEST_F(Search, GetPosElement_BelowOneIsTheTarget) {
    for (zr_long position : {0, -1, INT_MIN}) {
        EXPECT_EQ(m_pEmpty, m_env->GetPosElement("S", "e", position, true, false));
        EXPECT_EQ(m_pSection, m_env->GetPosElement("S", nullptr, position, true, false));
        EXPECT_EQ("1", Shown(m_env->GetPosElement("S", "x@a", position, true, false)));
        EXPECT_EQ(ENV_OK, m_env->GetLastError());
        EXPECT_EQ(nullptr, m_env->GetPosElement("S", "q", position, true, false));
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    }
}

TEST_F(Search, GetPosElement_Misses) {
    m_env->ResetLastError();
    const auto expectMiss = [&](CZrEnvElement *pElem) {
        EXPECT_EQ(nullptr, pElem);
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
        m_env->ResetLastError();
    };
    expectMiss(m_env->GetPosElement("S", "e", 1, true, false));
    expectMiss(m_env->GetPosElement("S", "x@a", 1, true, false));
    expectMiss(m_env->GetPosElement("S", "q", 1, true, false));
    expectMiss(m_env->GetPosElement("U", nullptr, 1, true, false));
    expectMiss(m_env->GetPosElement("U", "x", 1, true, false));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, GetPosElement_OfSections) {
    EXPECT_EQ(m_pSection, m_env->GetPosElement(nullptr, nullptr, 1, true, false));
    EXPECT_EQ(m_pSecond, m_env->GetPosElement(nullptr, "ignored", 2, true, false));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetPosElement(nullptr, nullptr, 3, true, false));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(Reports{}, m_reports.Take());
    const Report report = Error("ZrEnv", "szSection == NIL and pos == 0");
    EXPECT_EQ(nullptr, m_env->GetPosElement(nullptr, nullptr, 0, true, false));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetPosElement(nullptr, "x", -1, true, false));
    EXPECT_EQ((Reports{report, report}), m_reports.Take());
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(nullptr, front->GetPosElement(nullptr, nullptr, 0, true, true));
    EXPECT_EQ((Reports{report, report}), m_reports.Take()) << "the default is asked the same";
    EXPECT_EQ(m_pSecond, front->GetPosElement(nullptr, nullptr, 2, true, true));
}

TEST_F(Search, GetPosElement_OfASubenvironment) {
    const EnvPtr sub(m_env->OpenSubenv(m_pY));
    EXPECT_EQ("3", Shown(sub->GetPosElement(nullptr, nullptr, 1, true, false)));
    EXPECT_EQ("4", Shown(sub->GetPosElement("any", "a@2", 1, true, false)));
    EXPECT_EQ(m_pY, sub->GetPosElement(nullptr, nullptr, 0, true, false));
    EXPECT_EQ(nullptr, sub->GetPosElement(nullptr, nullptr, 4, true, false));
    EXPECT_EQ(ENV_NOT_FOUND, sub->GetLastError());
    EXPECT_EQ(nullptr, sub->GetPosElement(nullptr, "q", 1, true, false));
    const EnvPtr leaf(m_env->OpenSubenv("S", "a", true));
    EXPECT_EQ(nullptr, leaf->GetPosElement(nullptr, nullptr, 1, true, false));
    EXPECT_EQ("2", Shown(leaf->GetPosElement(nullptr, nullptr, 0, true, false)));
    EXPECT_EQ(nullptr, leaf->GetPosElement(nullptr, "x", 0, true, false));
    EXPECT_EQ(ENV_NOT_FOUND, leaf->GetLastError());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, GetPosElement_ThroughTheDefaults) {
    EnvPtr front = NewEnv(2, m_env.get());
    CZrEnvElement *pOwn = AddLeaf(*front->InsertSection("S"), "own");
    EXPECT_EQ(pOwn, front->GetPosElement("S", nullptr, 1, true, true));
    EXPECT_EQ("2", Shown(front->GetPosElement("S", nullptr, 2, true, true)));
    EXPECT_EQ(ENV_OK, front->GetLastError());
    EXPECT_EQ(nullptr, front->GetPosElement("S", nullptr, 2, true, false));
    EXPECT_EQ(nullptr, front->GetPosElement("S", nullptr, 9, true, true));
    EXPECT_EQ(ENV_NOT_FOUND, front->GetLastError());
}

TEST_F(Search, GetNextElement_WalksSiblingsAndSections) {
    EXPECT_EQ("2", Shown(m_env->GetNextElement(m_pX)));
    EXPECT_EQ(m_pSecond, m_env->GetNextElement(m_pSection));
    EXPECT_EQ(nullptr, m_env->GetNextElement(m_pSecond));
    EXPECT_EQ(nullptr, m_env->GetNextElement(nullptr));
    EXPECT_EQ(untouched, m_env->GetLastError());
}

// Counts

TEST_F(Search, CountElements_Rows) {
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(2, m_env->CountElements(nullptr, "whatever", false));
    EXPECT_EQ(untouched, m_env->GetLastError());
    EXPECT_EQ(5, m_env->CountElements("S", nullptr, true));
    EXPECT_EQ(5, m_env->CountElements("S", "", true));
    EXPECT_EQ(3, m_env->CountElements("S", "y", true));
    EXPECT_EQ(1, m_env->CountElements("S", "a@2", false));
    EXPECT_EQ(0, m_env->CountElements("S", "a@2", true));
    EXPECT_EQ(0, m_env->CountElements("S", "e", true));
    EXPECT_EQ(0, m_env->CountElements("S", "a", true)) << "a data element";
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(0, m_env->CountElements("S", "q", true));
    EXPECT_EQ(ENV_OK, m_env->GetLastError()) << "the search alone leaves no error";
    EXPECT_EQ(0, m_env->CountElements("T", nullptr, true));
    EXPECT_EQ(0, m_env->CountElements("U", nullptr, true));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(0, m_env->CountElements("U", "x", true));
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(0, front->CountElements("S", "y", true)) << "the default is not asked";
    const EnvPtr sub(m_env->OpenSubenv(m_pY));
    EXPECT_EQ(3, sub->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(3, sub->CountElements("any", "", true));
    EXPECT_EQ(1, sub->CountElements("any", "a@2", true));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Search, CountPath_Rows) {
    EXPECT_EQ(3, m_env->CountPath("S", "y@a", true));
    EXPECT_EQ(1, m_env->CountPath("S", "a", true));
    EXPECT_EQ(1, m_env->CountPath("S", "y", false));
    EXPECT_EQ(1, m_env->CountPath("S", "b", false));
    EXPECT_EQ(0, m_env->CountPath("S", "y@a@2", true)) << "counts elements called 2";
    EXPECT_EQ(0, m_env->CountPath("S", "y@a@", true));
    EXPECT_EQ(0, m_env->CountPath("S", "a@", true));
    EXPECT_EQ(0, m_env->CountPath("S", "", true)) << "a section stands in no block";
    EXPECT_EQ(0, m_env->CountPath("S", nullptr, true));
    EXPECT_EQ(0, m_env->CountPath(nullptr, nullptr, true));
    EXPECT_EQ(0, m_env->CountPath("S", "a=b", true));
    EXPECT_EQ(0, m_env->CountPath("S", "q", true));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(0, m_env->CountPath("U", "a", true));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    m_env->ResetLastError();
    EXPECT_EQ(0, m_env->CountPath(nullptr, "a", true));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    AddLeaf(*m_pY, "2");
    AddLeaf(*m_pY, "2");
    EXPECT_EQ(2, m_env->CountPath("S", "y@a@2", true)) << "literally";
    const EnvPtr sub(m_env->OpenSubenv(m_pY));
    EXPECT_EQ(3, sub->CountPath("any", "a", true));
    EXPECT_EQ(0, sub->CountPath(nullptr, "", true)) << "no element has an empty name";
    EXPECT_EQ(Reports{}, m_reports.Take());
}

// Lists

TEST_F(Search, GetElems_Rows) {
    std::vector<CZrEnvElement *> elems{m_pX};
    EXPECT_EQ(ENV_OK, m_env->GetElems("S", "y", true, elems));
    EXPECT_EQ(4u, elems.size()) << "appends";
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(ENV_OK, m_env->GetElems(nullptr, "ignored", true, elems));
    ASSERT_EQ(6u, elems.size());
    EXPECT_EQ(m_pSection, elems[4]);
    EXPECT_EQ(m_pSecond, elems[5]);
    EXPECT_EQ(ENV_OK, m_env->GetElems("T", nullptr, true, elems));
    EXPECT_EQ(6u, elems.size());
    for (const char *szPath : {"q", "a"}) {
        m_env->ResetLastError();
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetElems("S", szPath, true, elems));
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    }
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetElems("U", nullptr, true, elems));
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(ENV_OK, front->GetElems("S", "a@2", false, elems)) << "the default chain is always on";
    EXPECT_EQ(7u, elems.size());
    const EnvPtr sub(m_env->OpenSubenv(m_pY));
    EXPECT_EQ(ENV_OK, sub->GetElems(nullptr, nullptr, true, elems));
    EXPECT_EQ(10u, elems.size());
}

TEST_F(Search, GetElemNames_Rows) {
    std::vector<std::string> names{"before"};
    EXPECT_EQ(ENV_OK, m_env->GetElemNames("S", nullptr, true, names));
    EXPECT_EQ((std::vector<std::string>{"before", "x", "a", "y", "e", "12"}), names);
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    names.clear();
    EXPECT_EQ(ENV_OK, m_env->GetElemNames(nullptr, "ignored", true, names));
    EXPECT_EQ((std::vector<std::string>{"S", "T"}), names);
    names.clear();
    for (const char *szPath : {"q", "a"}) {
        m_env->ResetLastError();
        EXPECT_EQ(ENV_BLOCK, m_env->GetElemNames("S", szPath, true, names));
        EXPECT_EQ(ENV_BLOCK, m_env->GetLastError());
    }
    EXPECT_EQ(ENV_BLOCK, m_env->GetElemNames("U", nullptr, true, names));
    EXPECT_TRUE(names.empty());
    EnvPtr front = NewEnv(2, m_env.get());
    EXPECT_EQ(ENV_OK, front->GetElemNames("S", "y", true, names));
    EXPECT_EQ((std::vector<std::string>{"a", "a", "a"}), names);
    const EnvPtr sub(m_env->OpenSubenv(m_pX));
    EXPECT_EQ(ENV_OK, sub->GetElemNames(nullptr, nullptr, true, names));
    EXPECT_EQ(4u, names.size()) << "a subenvironment's root needs no section";
    EXPECT_EQ(ENV_BLOCK, sub->GetElemNames(nullptr, "a", true, names));
    EXPECT_EQ(ENV_BLOCK, sub->GetLastError());
}

// Composed paths

TEST(PathBuild, JoinsWithTheDelimiter) {
    EnvPtr env = NewEnv();
    env->SetLastError(untouched);
    const char *const end = nullptr;
    char buffer[64] = "before";
    EXPECT_EQ(ENV_OK, env->BuildPath(sizeof buffer, buffer, "a", "b", "c", end));
    EXPECT_STREQ("a@b@c", buffer);
    EXPECT_EQ(ENV_OK, env->BuildPath(sizeof buffer, buffer, "a", "2", "b", end));
    EXPECT_STREQ("a@2@b", buffer);
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('/', sizeof buffer, buffer, "a", "b", end));
    EXPECT_STREQ("a/b", buffer);
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', sizeof buffer, buffer, "", "", "", end));
    EXPECT_STREQ("@@", buffer);
    env->SetDelimiter('.');
    EXPECT_EQ(ENV_OK, env->BuildPath(sizeof buffer, buffer, "a", "b", end));
    EXPECT_STREQ("a.b", buffer);
    EXPECT_EQ(untouched, env->GetLastError());
}

TEST(PathBuild, FirstText_AtTheLimits) {
    const char *const end = nullptr;
    char buffer[8] = "before";
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 0, buffer, "a", end));
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 0, buffer, nullptr, end));
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 0, nullptr, "a", end));
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', sizeof buffer, buffer, nullptr, end));
    EXPECT_STREQ("before", buffer);
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 2, buffer, "abc", end));
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 3, buffer, "abc", end));
    EXPECT_STREQ("before", buffer) << "untouched";
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', 4, buffer, "abc", end));
    EXPECT_STREQ("abc", buffer);
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', 1, buffer, "", end));
    EXPECT_STREQ("", buffer);
    EXPECT_LT(CZrEnv::BuildPath('@', 10, nullptr, "a", end), 0);
}

TEST(PathBuild, FurtherTexts_AtTheLimits) {
    const char *const end = nullptr;
    for (zr_ulong ulSize = 2; ulSize <= 7; ++ulSize) {
        char buffer[8] = "before";
        const bool fits = ulSize >= 6;
        EXPECT_EQ(fits ? ENV_OK : ENV_TOO_SMALL, CZrEnv::BuildPath('@', ulSize, buffer, "a", "b", "c", end));
        EXPECT_STREQ(fits ? "a@b@c" : "", buffer);
    }
    char buffer[8] = "before";
    EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', 2, buffer, "a", "", end));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', 3, buffer, "a", "", end));
    EXPECT_STREQ("a@", buffer);
}

zr_long BuildVA(CZrEnv *pEnv, zr_ulong ulSize, char *szBuffer, const char *szFirst, ...) {
    va_list args;
    va_start(args, szFirst);
    const zr_long result = pEnv ? pEnv->BuildPathVA(ulSize, szBuffer, szFirst, args)
                                : CZrEnv::BuildPathVA('/', ulSize, szBuffer, szFirst, args);
    va_end(args);
    return result;
}

TEST(PathBuild, ArgumentLists) {
    EnvPtr env = NewEnv();
    const char *const end = nullptr;
    char buffer[6] = "";
    EXPECT_EQ(ENV_OK, BuildVA(env.get(), 6, buffer, "a", "b", "c", end));
    EXPECT_STREQ("a@b@c", buffer);
    EXPECT_EQ(ENV_OK, BuildVA(nullptr, 6, buffer, "a", "b", "c", end));
    EXPECT_STREQ("a/b/c", buffer);
    env->SetLastError(untouched);
    EXPECT_EQ(ENV_TOO_SMALL, BuildVA(env.get(), 5, buffer, "a", "b", "c", end));
    EXPECT_STREQ("", buffer);
    EXPECT_EQ(ENV_TOO_SMALL, env->BuildPath(1, buffer, "a", end));
    EXPECT_EQ(untouched, env->GetLastError());
}

TEST(PathBuild, OverLongTexts) {
    const char *const end = nullptr;
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string text(length, 't');
        std::vector<char> buffer(2 * length + 2, 'x');
        const zr_ulong size = static_cast<zr_ulong>(buffer.size());
        EXPECT_EQ(ENV_TOO_SMALL, CZrEnv::BuildPath('@', size - 1, buffer.data(), text.c_str(), text.c_str(), end));
        EXPECT_STREQ("", buffer.data());
        EXPECT_EQ(ENV_OK, CZrEnv::BuildPath('@', size, buffer.data(), text.c_str(), text.c_str(), end));
        EXPECT_EQ(text + "@" + text, buffer.data());
    }
}

// Search against a literal reference

// One breadth-first step, told rule by rule.
CZrEnvElement *ReferenceStep(CZrEnvBlock *pStart, const std::string &name, zr_long position) {
    std::deque<CZrEnvBlock *> queue{pStart};
    while (!queue.empty()) {
        CZrEnvBlock *pBlock = queue.front();
        queue.pop_front();
        zr_long counter = position;
        for (CZrEnvElement *pElem : Sequence(*pBlock)) {
            if (position < 1)
                return pElem;
            if (name != pElem->GetName()) {
                if (pElem->ToEnvBlock())
                    queue.push_back(pElem->ToEnvBlock());
            } else if (--counter == 0) {
                return pElem;
            }
        }
    }
    return nullptr;
}

// The namesake at a position, by the sequence: the trees here are built by appending alone.
CZrEnvElement *ReferenceDirectStep(CZrEnvBlock *pBlock, const std::string &name, zr_long position) {
    for (CZrEnvElement *pElem : Sequence(*pBlock))
        if (name == pElem->GetName() && --position < 1)
            return pElem;
    return nullptr;
}

struct Step {
    std::string name;
    zr_long position;
};

CZrEnvElement *ReferenceSearch(CZrEnvBlock *pStart, const std::vector<Step> &steps, bool bDirect) {
    CZrEnvElement *pElem = pStart;
    for (const Step &step : steps) {
        CZrEnvBlock *pBlock = pElem->ToEnvBlock();
        if (!pBlock)
            return nullptr;
        pElem = bDirect ? ReferenceDirectStep(pBlock, step.name, step.position)
                        : ReferenceStep(pBlock, step.name, step.position);
        if (!pElem)
            return nullptr;
    }
    return pElem;
}

TEST(SearchReference, RandomTreesAndPaths_Agree) {
    const char *const names[] = {"a", "b", "c", "d"};
    for (unsigned seed = 1; seed <= 40; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
        EnvPtr env = NewEnv();
        std::vector<CZrEnvBlock *> blocks{env->InsertSection("S")};
        for (std::size_t i = 0, count = below(120); i < count; ++i) {
            CZrEnvBlock *pBlock = blocks[below(blocks.size())];
            if (below(3))
                AddLeaf(*pBlock, names[below(4)]);
            else
                blocks.push_back(AddBlock(*pBlock, names[below(4)]));
        }
        for (int i = 0; i < 400; ++i) {
            std::vector<Step> steps;
            std::string path;
            for (std::size_t k = 0, count = 1 + below(3); k < count; ++k) {
                steps.push_back({names[below(4)], 1});
                path += (path.empty() ? "" : "@") + steps.back().name;
                if (below(2)) {
                    steps.back().position = static_cast<zr_long>(below(4));
                    path += "@" + std::to_string(steps.back().position);
                }
            }
            for (bool bDirect : {true, false})
                ASSERT_EQ(ReferenceSearch(blocks[0], steps, bDirect),
                          env->GetElement("S", path.c_str(), bDirect, false))
                    << "seed " << seed << (bDirect ? " direct " : " tree ") << path << " in " << Describe(*env);
        }
    }
}

// Depth and number

const int million = 1000000;

TEST(SearchDepth, AMillionLevels) {
    EnvPtr env = NewEnv();
    CZrEnvBlock *pBlock = env->InsertSection("S");
    for (int level = 0; level < million; ++level)
        pBlock = AddBlock(*pBlock, "b");
    CZrEnvDataElement *pLeaf = AddLeaf(*pBlock, "leaf", "5");
    EXPECT_EQ(pLeaf, env->GetElement("S", "leaf", false, false));
    EXPECT_EQ(1, env->CountPath("S", "leaf", false));
    std::string path;
    for (int level = 0; level < million; ++level)
        path += "b@";
    EXPECT_EQ(pBlock, env->GetElement("S", path.c_str(), true, false));
    EXPECT_EQ(5, env->GetLong("S", (path + "leaf").c_str()));
    EXPECT_EQ(nullptr, env->GetElement("S", (path + "b").c_str(), true, false));
    EXPECT_EQ(nullptr, env->GetElement("S", "missing", false, false));
    EXPECT_EQ(nullptr, env->GetElement("S", "b@2", false, false));
}

TEST(SearchNumber, AMillionNamesakes) {
    EnvPtr env = NewEnv();
    CZrEnvSection *pSection = env->InsertSection("S");
    for (int i = 0; i < million; ++i)
        ASSERT_TRUE(pSection->InsertElement(NewLeaf("n")));
    CZrEnvElement *pFirst = pSection->GetFirstElement();
    EXPECT_EQ(pFirst, env->GetElement("S", "n", true, false));
    CZrEnvElement *pLast = env->GetElement("S", "n@1000000", true, false);
    ASSERT_NE(nullptr, pLast);
    EXPECT_EQ(nullptr, pLast->GetSuccElem());
    EXPECT_EQ(pLast, env->GetElement("S", "n@1000000", false, false));
    EXPECT_EQ(pLast, env->GetPosElement("S", nullptr, million, true, false));
    EXPECT_EQ(nullptr, env->GetElement("S", "n@1000001", true, false));
    EXPECT_EQ(million, env->CountPath("S", "n", true));
    EXPECT_EQ(million, env->CountElements("S", nullptr, true));
}

TEST(SearchChain, AHundredThousandDefaults) {
    CZrEnv *pFront = CZrEnv::CreateEnv(0, nullptr);
    pFront->InsertSection("S");
    for (int i = 1; i < 100000; ++i)
        pFront = CZrEnv::CreateEnv(i, pFront);
    EXPECT_EQ(0, pFront->GetElement("S", nullptr, true, true)->GetEnv()->GetID());
    EXPECT_EQ(nullptr, pFront->GetElement("T", nullptr, true, true));
    EXPECT_EQ(nullptr, pFront->GetPosElement("T", nullptr, 1, true, true));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pFront, true));
}

} // namespace
} // namespace zr::test
