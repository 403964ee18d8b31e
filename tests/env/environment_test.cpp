// Environments: life cycle, state, sections, names, subenvironments and the default chain.
#include "env/report_capture.h"
#include "env/tree_checker.h"

#include <climits>

#include "platform/services.h"

namespace zr::test {
namespace {

using Zr::ENV_ERROR;
using Zr::ENV_IN_USE;
using Zr::ENV_NOT_FOUND;
using Zr::ENV_OK;

// A last error that no operation leaves: it shows what an operation does not touch.
const Zr::EZrEnvError untouched = Zr::ENV_EMPTY_PATH;

// An environment with the sections A (a block "b" with a leaf "c", a leaf "d") and B (empty).
class Environment : public testing::Test {
protected:
    void SetUp() override {
        m_pA = m_env->InsertSection("A");
        m_pB = m_env->InsertSection("B");
        m_pBlock = AddBlock(*m_pA, "b");
        m_pC = AddLeaf(*m_pBlock, "c", "1");
        m_pD = AddLeaf(*m_pA, "d", "2");
    }

    void TearDown() override { EXPECT_TRUE(EnvIsSound(*m_env)); }

    ReportCapture m_reports;
    EnvPtr m_env = NewEnv(7);
    CZrEnvSection *m_pA = nullptr;
    CZrEnvSection *m_pB = nullptr;
    CZrEnvBlock *m_pBlock = nullptr;
    CZrEnvDataElement *m_pC = nullptr;
    CZrEnvDataElement *m_pD = nullptr;
};

// State

TEST(EnvironmentState, New_HasTheInitialValues) {
    EnvPtr env = NewEnv(7);
    EXPECT_EQ(7, env->GetID());
    EXPECT_EQ('@', env->GetDelimiter());
    EXPECT_STREQ("@", env->GetStrDelimiter());
    EXPECT_EQ(-1, env->GetFileMTime());
    EXPECT_EQ(nullptr, env->GetFirstSection());
    EXPECT_EQ(0, env->CountElements(nullptr, nullptr, true));
    EXPECT_FALSE(env->IsSubEnv());
    EXPECT_EQ(nullptr, env->GetSubEnvRootElement());
    EXPECT_EQ(ENV_OK, env->GetLastError());
    EXPECT_EQ(nullptr, env->DetachDefaultChain());
    EXPECT_EQ(INT_MAX, NewEnv(INT_MAX)->GetID());
    EXPECT_EQ(INT_MIN, NewEnv(INT_MIN)->GetID());
}

TEST(EnvironmentState, LastError_IsStoredAndGivenBack) {
    EnvPtr env = NewEnv();
    EXPECT_EQ(ENV_IN_USE, env->SetLastError(ENV_IN_USE));
    EXPECT_EQ(ENV_IN_USE, env->GetLastError());
    env->ResetLastError();
    EXPECT_EQ(ENV_OK, env->GetLastError());
}

// What is an error and what a message: both stand in the log, under their own heads, and errors go to the debugger too.
std::string debuggerTexts;

TEST_F(Environment, Reports_OnlyErrorsReachTheDebugger) {
    debuggerTexts.clear();
    zr::platform::services.debug_output = [](const char *szText) { debuggerTexts += szText; };
    EXPECT_FALSE(m_env->InsertSection(m_pA));
    EXPECT_EQ("", debuggerTexts);
    m_env->SetDelimiter('\0');
    EXPECT_NE(std::string::npos, debuggerTexts.find("\"ZrEnv\""));
    EXPECT_NE(std::string::npos, debuggerTexts.find("Bad delimiter"));
    zr::platform::services.debug_output = zr::platform::Services().debug_output;
    EXPECT_EQ((Reports{Message("ZrEnv", "Fehler bei InsertSection"), Error("ZrEnv", "Bad delimiter")}),
              m_reports.Take());
}

TEST_F(Environment, Delimiter_ZeroIsRefused) {
    m_env->SetLastError(untouched);
    EXPECT_EQ('@', m_env->SetDelimiter('/'));
    EXPECT_EQ(Reports{}, m_reports.Take());
    EXPECT_EQ('/', m_env->SetDelimiter('\0'));
    EXPECT_EQ(Reports{Error("ZrEnv", "Bad delimiter")}, m_reports.Take());
    EXPECT_EQ('/', m_env->GetDelimiter());
    EXPECT_STREQ("/", m_env->GetStrDelimiter());
    EXPECT_EQ('/', m_env->SetDelimiter('\xA7'));
    EXPECT_STREQ("\xA7", m_env->GetStrDelimiter());
    EXPECT_EQ(untouched, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->GetElement("A", "b/c", true, false));
    EXPECT_EQ(m_pC, m_env->GetElement("A",
                                      "b\xA7"
                                      "c",
                                      true, false));
}

TEST_F(Environment, ElementType_OfEveryKind) {
    PlainElement plain("p");
    EXPECT_EQ(Zr::ENV_TYPE_UNKNOWN, CZrEnv::GetElementType(nullptr));
    EXPECT_EQ(Zr::ENV_TYPE_DATA, CZrEnv::GetElementType(m_pC));
    EXPECT_EQ(Zr::ENV_TYPE_BLOCK, CZrEnv::GetElementType(m_pBlock));
    EXPECT_EQ(Zr::ENV_TYPE_SECTION, CZrEnv::GetElementType(m_pA));
    EXPECT_EQ(Zr::ENV_TYPE_UNKNOWN, CZrEnv::GetElementType(&plain));
    EXPECT_EQ(0, static_cast<int>(Zr::ENV_TYPE_DATA));
    EXPECT_EQ(1, static_cast<int>(Zr::ENV_TYPE_BLOCK));
    EXPECT_EQ(2, static_cast<int>(Zr::ENV_TYPE_SECTION));
    EXPECT_EQ(-1, static_cast<int>(Zr::ENV_TYPE_UNKNOWN));
}

TEST(EnvironmentState, Codes_HaveTheirValues) {
    EXPECT_EQ(0, static_cast<int>(Zr::ENV_OK));
    EXPECT_EQ(-1, static_cast<int>(Zr::ENV_DATA));
    EXPECT_EQ(-2, static_cast<int>(Zr::ENV_BLOCK));
    EXPECT_EQ(-4, static_cast<int>(Zr::ENV_NOT_FOUND));
    EXPECT_EQ(-5, static_cast<int>(Zr::ENV_BAD_FORMAT));
    EXPECT_EQ(-6, static_cast<int>(Zr::ENV_EMPTY_PATH));
    EXPECT_EQ(-7, static_cast<int>(Zr::ENV_TOO_SMALL));
    EXPECT_EQ(-8, static_cast<int>(Zr::ENV_IN_USE));
    EXPECT_EQ(-10, static_cast<int>(Zr::ENV_ERROR));
}

TEST(EnvironmentState, FreeString_TakesNull) {
    CZrEnv::FreeString(nullptr);
    CZrEnv::FreeString(new char[10]);
}

// Names

TEST(EnvironmentNames, CheckSectionName_Rows) {
    EXPECT_FALSE(CZrEnv::CheckSectionName(nullptr));
    EXPECT_FALSE(CZrEnv::CheckSectionName("]"));
    EXPECT_FALSE(CZrEnv::CheckSectionName("a]b"));
    for (const char *szName : {"", "a", "a=b", "a@b", "[a", " ", "\xE4"})
        EXPECT_TRUE(CZrEnv::CheckSectionName(szName)) << szName;
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        EXPECT_TRUE(CZrEnv::CheckSectionName(name.c_str()));
        EXPECT_FALSE(CZrEnv::CheckSectionName((name + "]").c_str()));
    }
}

TEST(EnvironmentNames, CheckElementName_Rows) {
    struct Row {
        const char *szName;
        char cDelimiter;
        bool valid;
    };
    for (const Row &row : {Row{nullptr, '@', false}, Row{"", '@', false}, Row{"", '\0', false}, Row{"=", '@', false},
                           Row{"a=b", '\0', false}, Row{"a@b", '@', false}, Row{"@", '@', false}, Row{"a@b", '/', true},
                           Row{"a@b", '\0', true}, Row{"a]b", '@', true}, Row{"12", '@', true}, Row{" ", '@', true},
                           Row{"a\xA7", '\xA7', false}, Row{"a=b", '=', false}})
        EXPECT_EQ(row.valid, CZrEnv::CheckElementName(row.szName, row.cDelimiter))
            << (row.szName ? row.szName : "(null)") << " with " << row.cDelimiter;
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        EXPECT_TRUE(CZrEnv::CheckElementName(name.c_str(), '@'));
        EXPECT_FALSE(CZrEnv::CheckElementName((name + "@").c_str(), '@'));
        EXPECT_FALSE(CZrEnv::CheckElementName((name + "=").c_str(), '@'));
    }
}

TEST(EnvironmentNames, CheckElementName_UsesThePresentDelimiter) {
    EnvPtr env = NewEnv();
    EXPECT_FALSE(env->CheckElementName("a@b"));
    EXPECT_TRUE(env->CheckElementName("a/b"));
    env->SetDelimiter('/');
    EXPECT_TRUE(env->CheckElementName("a@b"));
    EXPECT_FALSE(env->CheckElementName("a/b"));
    EXPECT_FALSE(env->CheckElementName(nullptr));
    EXPECT_FALSE(env->CheckElementName(""));
}

// Sections

TEST_F(Environment, InsertSection_Appends) {
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
    m_env->SetLastError(untouched);
    CZrEnvSection *pC = new CZrEnvSection("C");
    EXPECT_TRUE(m_env->InsertSection(pC));
    EXPECT_EQ(m_env.get(), pC->GetEnv());
    EXPECT_EQ(m_pA, m_env->GetFirstSection());
    EXPECT_EQ(m_pB, m_env->GetNextSection(m_pA));
    EXPECT_EQ(pC, m_env->GetNextSection(m_pB));
    EXPECT_EQ(nullptr, m_env->GetNextSection(pC));
    EXPECT_EQ(nullptr, m_env->GetNextSection(nullptr));
    EXPECT_EQ(3, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(untouched, m_env->GetLastError()) << "nor does the walk along the list touch it";
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Environment, InsertSection_OfAnotherEnvironmentLeavesThatOne) {
    EnvPtr other = NewEnv();
    CZrEnvSection *pX = other->InsertSection("X"), *pY = other->InsertSection("Y");
    other->InsertSection("Z");
    EXPECT_TRUE(m_env->InsertSection(pX));
    EXPECT_TRUE(m_env->InsertSectionBefore(pY, m_pA));
    EXPECT_EQ(m_env.get(), pX->GetEnv());
    EXPECT_EQ("[Y][A]b{c=1} d=2[B][X]", Describe(*m_env));
    EXPECT_EQ("[Z]", Describe(*other));
    EXPECT_EQ(4, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_TRUE(EnvIsSound(*other));

    CZrEnvBlock block("block");
    CZrEnvSection *pInBlock = new CZrEnvSection("in a block");
    ASSERT_TRUE(block.InsertElement(pInBlock));
    EXPECT_TRUE(m_env->InsertSectionBefore(pInBlock, m_pB));
    EXPECT_EQ(nullptr, pInBlock->GetParent());
    EXPECT_EQ("", Describe(block));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Environment, InsertSection_BadArguments) {
    const Reports refused{Message("ZrEnv", "Fehler bei InsertSection")};
    m_env->SetLastError(untouched);
    EXPECT_FALSE(m_env->InsertSection(static_cast<CZrEnvSection *>(nullptr)));
    EXPECT_EQ(refused, m_reports.Take());
    EXPECT_FALSE(m_env->InsertSection(m_pB));
    EXPECT_EQ(refused, m_reports.Take());
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(untouched, m_env->GetLastError());
}

TEST_F(Environment, InsertSection_BadNames) {
    m_env->SetLastError(untouched);
    for (const char *szName : {"a]b", "]", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(nullptr, m_env->InsertSection(szName));
        const Reports reports = m_reports.Take();
        ASSERT_EQ(1u, reports.size());
        EXPECT_EQ(Report::Message, reports[0].kind);
        EXPECT_EQ("ZrEnv", reports[0].tag);
        EXPECT_EQ("Wrong section name: ", reports[0].texts.at(0));
        EXPECT_TRUE(reports[0].texts.size() == 1 || reports[0].texts[1].empty()) << "it has no name to tell";
    }
    CZrEnvSection *pNameless = new CZrEnvSection("a]b");
    EXPECT_FALSE(m_env->InsertSection(pNameless));
    EXPECT_EQ(nullptr, pNameless->GetEnv());
    delete pNameless;
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(untouched, m_env->GetLastError());
}

// A caller's own section takes any name; the environment still tests it.
class AnyNameSection : public CZrEnvSection {
public:
    explicit AnyNameSection(const char *szName) : CZrEnvSection("") { SetName(szName); }
    AnyNameSection(const AnyNameSection &) = default;
    AnyNameSection &operator=(const AnyNameSection &) = default;
    ~AnyNameSection() override = default;

protected:
    bool CheckName(const char *szName) override { return szName != nullptr; }
};

TEST_F(Environment, InsertSection_BadNameIsTold) {
    AnyNameSection section("a]b");
    EXPECT_FALSE(m_env->InsertSection(&section));
    EXPECT_EQ(Reports{Message("ZrEnv", "Wrong section name: ", "a]b")}, m_reports.Take());
}

TEST_F(Environment, InsertSection_NamesWithoutPathSyntax) {
    for (const char *szName : {"", "a=b", "a@b", "12", "[", " x "}) {
        CZrEnvSection *pSection = m_env->InsertSection(szName);
        ASSERT_NE(nullptr, pSection);
        EXPECT_EQ(pSection, m_env->GetSection(szName));
    }
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        EXPECT_EQ(nullptr, m_env->GetSection(name.c_str()));
        CZrEnvSection *pSection = m_env->InsertSection(name.c_str());
        EXPECT_EQ(pSection, m_env->GetSection(name.c_str()));
    }
}

TEST_F(Environment, InsertSection_EndsTheListWithIt) {
    CZrEnvBlock block("block");
    CZrEnvSection *pSection = new CZrEnvSection("S");
    ASSERT_TRUE(block.InsertElement(pSection));
    AddLeaf(block, "behind");
    ASSERT_TRUE(block.RemoveElement(pSection, false));
    ASSERT_NE(nullptr, pSection->GetSuccElem()) << "a removed element keeps its link";
    EXPECT_TRUE(m_env->InsertSection(pSection));
    EXPECT_EQ(nullptr, pSection->GetSuccElem());
    EXPECT_EQ("[A]b{c=1} d=2[B][S]", Describe(*m_env));
}

TEST_F(Environment, InsertSectionBefore_HeadMiddleAndNull) {
    EXPECT_TRUE(m_env->InsertSectionBefore(new CZrEnvSection("head"), m_pA));
    EXPECT_EQ(3, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_TRUE(m_env->InsertSectionBefore(new CZrEnvSection("middle"), m_pB));
    EXPECT_EQ(4, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_TRUE(m_env->InsertSectionBefore(new CZrEnvSection("tail"), nullptr));
    EXPECT_EQ("[head][A]b{c=1} d=2[middle][B][tail]", Describe(*m_env));
    m_env->InsertSection("end");
    EXPECT_EQ("[head][A]b{c=1} d=2[middle][B][tail][end]", Describe(*m_env));
    EXPECT_EQ(6, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Environment, InsertSectionBefore_BadArguments) {
    EnvPtr other = NewEnv();
    CZrEnvSection *pForeign = other->InsertSection("X");
    CZrEnvSection free("free"), fresh("fresh");
    m_env->SetLastError(untouched);
    EXPECT_FALSE(m_env->InsertSectionBefore(nullptr, m_pA));
    EXPECT_FALSE(m_env->InsertSectionBefore(m_pB, m_pA));
    EXPECT_FALSE(m_env->InsertSectionBefore(m_pA, m_pA));
    EXPECT_FALSE(m_env->InsertSectionBefore(&fresh, pForeign));
    EXPECT_FALSE(m_env->InsertSectionBefore(&fresh, &free));
    EXPECT_EQ(Reports{}, m_reports.Take());
    EXPECT_EQ(nullptr, fresh.GetEnv());
    EXPECT_FALSE(m_env->InsertSectionBefore(nullptr, nullptr));
    EXPECT_EQ(Reports{Message("ZrEnv", "Fehler bei InsertSection")}, m_reports.Take());
    EXPECT_EQ(untouched, m_env->GetLastError());
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
}

TEST_F(Environment, InsertSectionBefore_DoesNotTestTheName) {
    CZrEnvSection *pNameless = new CZrEnvSection("a]b");
    EXPECT_TRUE(m_env->InsertSectionBefore(pNameless, m_pB));
    EXPECT_EQ(m_pB, m_env->GetSection("B")) << "the nameless one is passed over";
    EXPECT_EQ(nullptr, m_env->GetSection("C"));
    std::vector<std::string> names;
    EXPECT_EQ(ENV_OK, m_env->GetSectionNames(names));
    EXPECT_EQ(3u, names.size());
    m_env->DeleteSection(pNameless);
}

TEST_F(Environment, InsertSectionBefore_PlaceThatIsNotInTheList) {
    CZrEnvSection view(*m_pB); // a copy names the environment but stands nowhere in it
    CZrEnvSection fresh("fresh");
    EXPECT_FALSE(m_env->InsertSectionBefore(&fresh, &view));
    EXPECT_EQ(Reports{Error("ZrEnv", "Unexpected nil")}, m_reports.Take());
    EXPECT_EQ(m_env.get(), fresh.GetEnv()) << "set before the place is looked for";
    EXPECT_EQ(2, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
}

TEST_F(Environment, GetSection_Rows) {
    m_env->SetLastError(untouched);
    EXPECT_EQ(nullptr, m_env->GetSection(nullptr));
    EXPECT_EQ(untouched, m_env->GetLastError());
    EXPECT_EQ(m_pB, m_env->GetSection("B"));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    for (const char *szName : {"b", "", "A ", "AB", "A]"}) {
        m_env->ResetLastError();
        EXPECT_EQ(nullptr, m_env->GetSection(szName));
        EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    }
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Environment, GetSection_FirstOfOneName) {
    CZrEnvSection *pSecond = m_env->InsertSection("A");
    ASSERT_NE(nullptr, pSecond);
    EXPECT_EQ(m_pA, m_env->GetSection("A"));
    EXPECT_EQ(ENV_OK, m_env->DeleteSection("A"));
    EXPECT_EQ(pSecond, m_env->GetSection("A"));
    CZrEnvSection *pFront = new CZrEnvSection("A");
    EXPECT_TRUE(m_env->InsertSectionBefore(pFront, m_pB));
    EXPECT_EQ(pFront, m_env->GetSection("A"));
}

TEST(EnvironmentSections, GetSection_AmongManyFollowsEveryChange) {
    EnvPtr env = NewEnv();
    std::vector<CZrEnvSection *> sections;
    for (int i = 0; i < 200; ++i)
        sections.push_back(env->InsertSection(("s" + std::to_string(i % 100)).c_str()));
    EXPECT_EQ(sections[42], env->GetSection("s42"));
    EXPECT_TRUE(sections[42]->SetName("other"));
    EXPECT_EQ(sections[142], env->GetSection("s42"));
    EXPECT_EQ(sections[42], env->GetSection("other"));
    EXPECT_TRUE(sections[10]->SetName("s42")) << "stands in front of the other of that name";
    EXPECT_EQ(sections[10], env->GetSection("s42"));
    CZrEnvSection *pFront = new CZrEnvSection("s142");
    EXPECT_TRUE(env->InsertSectionBefore(pFront, sections[0]));
    EXPECT_EQ(pFront, env->GetSection("s142"));
    env->DeleteSection(sections[10]);
    EXPECT_EQ(sections[142], env->GetSection("s42"));
    EXPECT_TRUE(EnvIsSound(*env));
}

TEST_F(Environment, Lists_AppendWithoutClearing) {
    std::vector<CZrEnvSection *> sections{m_pB};
    std::vector<std::string> names{"before"};
    EXPECT_EQ(ENV_OK, m_env->GetSections(sections));
    EXPECT_EQ((std::vector<CZrEnvSection *>{m_pB, m_pA, m_pB}), sections);
    EXPECT_EQ(ENV_OK, m_env->GetSectionNames(names));
    EXPECT_EQ((std::vector<std::string>{"before", "A", "B"}), names);
}

TEST(EnvironmentSections, DeleteSection_EveryPlaceOfThree) {
    const char *const left[] = {"[B][C]", "[A][C]", "[A][B]"};
    for (int place = 0; place < 3; ++place) {
        SCOPED_TRACE(place);
        EnvPtr env = NewEnv();
        CZrEnvSection *const sections[] = {env->InsertSection("A"), env->InsertSection("B"), env->InsertSection("C")};
        env->DeleteSection(sections[place]);
        EXPECT_EQ(left[place], Describe(*env));
        EXPECT_EQ(2, env->CountElements(nullptr, nullptr, true));
        env->InsertSection("D");
        EXPECT_EQ(std::string(left[place]) + "[D]", Describe(*env));
        EXPECT_TRUE(EnvIsSound(*env));
    }
}

TEST_F(Environment, DeleteSection_ByName) {
    EXPECT_EQ(ENV_NOT_FOUND, m_env->DeleteSection("C"));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(ENV_OK, m_env->DeleteSection("A"));
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(ENV_NOT_FOUND, m_env->DeleteSection("A"));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->DeleteSection(static_cast<const char *>(nullptr)));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(ENV_OK, m_env->DeleteSection("B"));
    EXPECT_EQ(nullptr, m_env->GetFirstSection());
    EXPECT_EQ(0, m_env->CountElements(nullptr, nullptr, true));
    m_env->InsertSection("again");
    EXPECT_EQ("[again]", Describe(*m_env));
}

TEST_F(Environment, DeleteSection_CountsDownWhateverItWas) {
    m_env->DeleteSection(new CZrEnvSection("stands nowhere"));
    EXPECT_EQ(1, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
    m_env->DeleteEnvironmentSections();
    EXPECT_EQ(0, m_env->CountElements(nullptr, nullptr, true));
}

TEST_F(Environment, DeleteSection_ThroughASubenvironmentOfIt) {
    const EnvPtr sub(m_env->OpenSubenv(m_pA));
    EXPECT_EQ(ENV_OK, sub->Delete(nullptr, ""));
    EXPECT_EQ("[B]", Describe(*m_env));
    EXPECT_EQ(1, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(nullptr, sub->GetSubEnvRootElement());
}

TEST_F(Environment, DeleteSection_NullElementDoesNothing) {
    m_env->DeleteSection(static_cast<CZrEnvSection *>(nullptr));
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
}

TEST_F(Environment, DeleteEnvironmentSections_LeavesAnEmptyOne) {
    Obituary deaths;
    ASSERT_TRUE(m_pB->InsertElement(NewMortalLeaf(deaths, "leaf")));
    m_env->DeleteEnvironmentSections();
    EXPECT_EQ(Obituary{"leaf"}, deaths);
    EXPECT_EQ(nullptr, m_env->GetFirstSection());
    EXPECT_EQ(0, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(nullptr, m_env->GetSection("A"));
    m_env->DeleteEnvironmentSections();
    m_env->InsertSection("again");
    EXPECT_EQ("[again]", Describe(*m_env));
}

// Subenvironments

TEST_F(Environment, Subenv_CopiesFromItsParent) {
    m_env->SetDelimiter('/');
    EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    ASSERT_NE(nullptr, sub);
    EXPECT_TRUE(sub->IsSubEnv());
    EXPECT_EQ(m_pBlock, sub->GetSubEnvRootElement());
    EXPECT_EQ(7, sub->GetID());
    EXPECT_EQ('/', sub->GetDelimiter());
    EXPECT_STREQ("/", sub->GetStrDelimiter());
    EXPECT_EQ(-10, sub->GetFileMTime());
    EXPECT_EQ(nullptr, sub->GetFirstSection());
    EXPECT_EQ(ENV_OK, sub->GetLastError());
    m_env->SetDelimiter('.');
    EXPECT_EQ('/', sub->GetDelimiter());
    EXPECT_EQ('/', sub->SetDelimiter('|'));
    EXPECT_EQ('.', m_env->GetDelimiter());
}

TEST_F(Environment, Subenv_SectionCallsAreRefused) {
    EnvPtr sub(m_env->OpenSubenv(m_pA));
    const auto expect = [&](const Report &report) {
        EXPECT_EQ(Reports{report}, m_reports.Take());
        EXPECT_EQ(ENV_ERROR, sub->GetLastError());
        sub->SetLastError(untouched);
    };
    EXPECT_EQ(nullptr, sub->GetSection("A"));
    expect(Message("ZrEnv", "try find section in subenvironment"));
    std::vector<CZrEnvSection *> sections;
    EXPECT_EQ(ENV_ERROR, sub->GetSections(sections));
    EXPECT_TRUE(sections.empty());
    expect(Message("ZrEnv", "GetSections-Aufruf bei SubEnv"));
    std::vector<std::string> names;
    EXPECT_EQ(ENV_ERROR, sub->GetSectionNames(names));
    EXPECT_TRUE(names.empty());
    expect(Message("ZrEnv", "GetSectionNames-Aufruf bei SubEnv"));
    EXPECT_EQ(ENV_ERROR, sub->DeleteSection("A"));
    expect(Message("ZrEnv", "DeleteSection-Aufruf bei SubEnv"));

    EXPECT_EQ(nullptr, sub->GetSection(nullptr));
    CZrEnvSection fresh("fresh");
    EXPECT_FALSE(sub->InsertSectionBefore(&fresh, m_pB));
    EXPECT_EQ(Reports{}, m_reports.Take());
    EXPECT_FALSE(sub->InsertSection(&fresh));
    EXPECT_EQ(Reports{Message("ZrEnv", "Fehler bei InsertSection")}, m_reports.Take());
    EXPECT_EQ(nullptr, sub->InsertSection("fresh"));
    EXPECT_EQ(Reports{Message("ZrEnv", "Fehler bei InsertSection")}, m_reports.Take());
    EXPECT_EQ(untouched, sub->GetLastError());
    sub->DeleteEnvironmentSections();
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
}

TEST_F(Environment, OpenSubenv_Elements) {
    EnvPtr other = NewEnv();
    CZrEnvBlock detached("detached");
    EXPECT_EQ(nullptr, m_env->OpenSubenv(nullptr));
    EXPECT_EQ(nullptr, m_env->OpenSubenv(other->InsertSection("S")));
    EXPECT_EQ(nullptr, m_env->OpenSubenv(&detached));
    for (CZrEnvElement *pRoot : {static_cast<CZrEnvElement *>(m_pA), static_cast<CZrEnvElement *>(m_pBlock),
                                 static_cast<CZrEnvElement *>(m_pC)}) {
        EnvPtr sub(m_env->OpenSubenv(pRoot));
        ASSERT_NE(nullptr, sub);
        EXPECT_EQ(pRoot, sub->GetSubEnvRootElement());
    }
}

TEST_F(Environment, OpenSubenv_BySectionAndPath) {
    const EnvPtr byPath(m_env->OpenSubenv("A", "b@c", true));
    const EnvPtr byTree(m_env->OpenSubenv("A", "c", false));
    const EnvPtr bySection(m_env->OpenSubenv("B", nullptr, true));
    ASSERT_TRUE(byPath && byTree && bySection);
    EXPECT_EQ(m_pC, byPath->GetSubEnvRootElement());
    EXPECT_EQ(m_pC, byTree->GetSubEnvRootElement());
    EXPECT_EQ(m_pB, bySection->GetSubEnvRootElement());
    EXPECT_EQ(ENV_OK, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->OpenSubenv("A", "c", true));
    EXPECT_EQ(ENV_NOT_FOUND, m_env->GetLastError());
    EXPECT_EQ(nullptr, m_env->OpenSubenv("C", nullptr, true));
    EXPECT_EQ(nullptr, m_env->OpenSubenv("", "", true));
    const EnvPtr byNull(m_env->OpenSubenv(nullptr, "ignored", true));
    EXPECT_EQ(m_pA, byNull->GetSubEnvRootElement()) << "the first section answers";
    EnvPtr front = NewEnv(1, m_env.get());
    EXPECT_EQ(nullptr, front->OpenSubenv("A", "b", true)) << "the default chain is not asked";
    EXPECT_EQ(nullptr, front->OpenSubenv(nullptr, "b", true));
}

TEST_F(Environment, OpenSubenv_ThroughASubenvironment) {
    EnvPtr other = NewEnv(9);
    CZrEnvSection *pForeign = other->InsertSection("S");
    CZrEnv *pOuter = m_env->OpenSubenv(m_pA);
    CZrEnv *pInner = pOuter->OpenSubenv(nullptr, "b", true);
    ASSERT_NE(nullptr, pInner);
    EXPECT_EQ(m_pBlock, pInner->GetSubEnvRootElement());
    EXPECT_EQ(m_pC, pInner->GetElement(nullptr, "c", true, false));
    CZrEnv *pElsewhere = pOuter->OpenSubenv(pForeign); // a subenvironment does not test whose element it is
    ASSERT_NE(nullptr, pElsewhere);
    EXPECT_EQ(9, pElsewhere->GetID());

    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pOuter, false)) << "nothing holds it: both stand with the top-level one";
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(m_env.get(), false));
    EXPECT_EQ(m_pC, pInner->GetElement(nullptr, "c", true, false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pInner, false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(other.get(), false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pElsewhere, false));
}

TEST_F(Environment, OpenSubenv_OnADetachedElement) {
    EnvPtr sub(m_env->OpenSubenv(m_pA));
    CZrEnvBlock detached("detached");
    if (EnvPtr stray{sub->OpenSubenv(&detached)}) { // refusing it is as good
        EXPECT_FALSE(stray->IsSubEnv());
        EXPECT_EQ(nullptr, stray->GetFirstSection());
    }
}

TEST_F(Environment, CreateSubenv_FindsOrMakes) {
    const EnvPtr present(m_env->CreateSubenv("A", "b@c"));
    ASSERT_NE(nullptr, present);
    EXPECT_EQ(m_pC, present->GetSubEnvRootElement()) << "whatever its kind";
    const EnvPtr made(m_env->CreateSubenv("A", "x@y"));
    ASSERT_NE(nullptr, made);
    EXPECT_EQ("[A]b{c=1} d=2 x{y{}}[B]", Describe(*m_env));
    EXPECT_EQ(m_env->GetElement("A", "x@y", true, false), made->GetSubEnvRootElement());
    const EnvPtr section(m_env->CreateSubenv("B", nullptr));
    EXPECT_EQ(m_pB, section->GetSubEnvRootElement());
    const EnvPtr newSection(m_env->CreateSubenv("C", nullptr));
    EXPECT_EQ(m_env->GetSection("C"), newSection->GetSubEnvRootElement());
    const EnvPtr both(m_env->CreateSubenv("D", "e"));
    EXPECT_EQ("[A]b{c=1} d=2 x{y{}}[B][C][D]e{}", Describe(*m_env));
    const EnvPtr nested(made->CreateSubenv(nullptr, "z"));
    EXPECT_EQ("z{}", Describe(*made->GetSubEnvRootElement()->ToEnvBlock()));
    EXPECT_EQ(Reports{}, m_reports.Take());
}

TEST_F(Environment, CreateSubenv_Failures) {
    m_env->SetLastError(untouched);
    EXPECT_EQ(nullptr, m_env->CreateSubenv("a]b", "x"));
    EXPECT_EQ(ENV_ERROR, m_env->GetLastError());
    EXPECT_EQ(std::vector<std::string>{"Wrong section name: "}, TextsOf(m_reports));
    EnvPtr empty = NewEnv();
    for (const char *szPath : {"x", "", static_cast<const char *>(nullptr)}) {
        empty->SetLastError(untouched);
        EXPECT_EQ(nullptr, empty->CreateSubenv(nullptr, szPath)) << "no first section, and no name for one";
        EXPECT_EQ(ENV_ERROR, empty->GetLastError());
        EXPECT_EQ(std::vector<std::string>{"Wrong section name: "}, TextsOf(m_reports));
        EXPECT_EQ("", Describe(*empty));
    }
    m_env->SetLastError(untouched);
    EXPECT_EQ(nullptr, m_env->CreateSubenv("A", "x@0"));
    EXPECT_EQ(ENV_ERROR, m_env->GetLastError());
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
}

// The last error is that of the last look-up on the way.
TEST_F(Environment, CreateSubenv_LastErrorOfSuccess) {
    const auto expect = [](CZrEnv &env, Zr::EZrEnvError expected, const char *szSection, const char *szPath) {
        env.SetLastError(untouched);
        EXPECT_NE(nullptr, EnvPtr(env.CreateSubenv(szSection, szPath)));
        EXPECT_EQ(expected, env.GetLastError()) << (szPath ? szPath : "null");
    };
    expect(*m_env, ENV_OK, "A", "b@c");
    expect(*m_env, ENV_OK, "B", nullptr);
    expect(*m_env, ENV_OK, nullptr, "ignored");
    expect(*m_env, ENV_OK, "A", "new@newer"); // of its section, in the making
    expect(*m_env, ENV_NOT_FOUND, "C", "new");
    expect(*m_env, ENV_NOT_FOUND, "D", nullptr);
    const EnvPtr sub(m_env->OpenSubenv(m_pBlock));
    expect(*sub, ENV_OK, nullptr, nullptr);
    expect(*sub, ENV_OK, nullptr, "c");
    expect(*sub, ENV_NOT_FOUND, nullptr, "new");
}

TEST_F(Environment, CreateSubenv_OverLongNames) {
    for (std::size_t length : {300u, 10000u, 1000000u}) {
        const std::string name(length, 'n');
        const EnvPtr sub(m_env->CreateSubenv(name.c_str(), (name + "@" + name).c_str()));
        ASSERT_NE(nullptr, sub);
        EXPECT_EQ(name, NameOf(sub->GetSubEnvRootElement()));
        EXPECT_EQ(sub->GetSubEnvRootElement(),
                  EnvPtr(m_env->OpenSubenv(name.c_str(), (name + "@" + name).c_str(), true))->GetSubEnvRootElement());
    }
}

// A section inside a block knows of no environment; the views below it are told all the same.
TEST(SubenvironmentRoot, DeletedBelowAnInnerSection) {
    EnvPtr env = NewEnv();
    auto *pInner = new CZrEnvSection("inner");
    ASSERT_TRUE(env->InsertSection("S")->InsertElement(pInner));
    CZrEnvBlock *pFirst = AddBlock(*pInner, "first");
    CZrEnvBlock *pSecond = AddBlock(*pInner, "second");
    CZrEnvBlock *pThird = AddBlock(*pInner, "third");
    const EnvPtr onFirst(env->OpenSubenv(pFirst));
    const EnvPtr onSecond(env->OpenSubenv(AddLeaf(*pSecond, "x")));
    const EnvPtr onThird(env->OpenSubenv(pThird));
    EXPECT_TRUE(pInner->RemoveElement(pFirst, true));
    EXPECT_EQ(nullptr, onFirst->GetSubEnvRootElement());
    EXPECT_TRUE(pInner->ReplaceElement(pSecond, NewLeaf("n")));
    EXPECT_EQ(nullptr, onSecond->GetSubEnvRootElement());
    EnvPtr other = NewEnv();
    EXPECT_TRUE(other->InsertSection(pInner));
    EXPECT_EQ(nullptr, onThird->GetSubEnvRootElement());
    EXPECT_TRUE(EnvIsSound(*env));
    EXPECT_TRUE(EnvIsSound(*other));
}

// Each way to end what a view is rooted at or below, and what the view does then.
TEST(SubenvironmentRoot, DeletedRootLeavesTheViewWithoutOne) {
    using Ending = void (*)(CZrEnv & env, CZrEnvSection & section, CZrEnvElement & root);
    const Ending endings[] = {
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &root) { EXPECT_TRUE(env.DeleteElement(&root)); },
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &) { EXPECT_EQ(ENV_OK, env.Delete("S", "o@b")); },
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &) { EXPECT_EQ(ENV_OK, env.Delete("S", "o")); },
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &) { EXPECT_EQ(ENV_OK, env.DeleteSection("S")); },
        [](CZrEnv &env, CZrEnvSection &section, CZrEnvElement &) { env.DeleteSection(&section); },
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &) { env.DeleteEnvironmentSections(); },
        [](CZrEnv &, CZrEnvSection &section, CZrEnvElement &) {
            EXPECT_TRUE(section.RemoveElement(section.GetFirstElement(), true));
        },
        [](CZrEnv &, CZrEnvSection &section, CZrEnvElement &) {
            EXPECT_TRUE(section.ReplaceElement(section.GetFirstElement(), NewLeaf("n")));
        },
        [](CZrEnv &env, CZrEnvSection &, CZrEnvElement &) { EXPECT_EQ(ENV_OK, env.SetLong("S", "o", 1)); },
        [](CZrEnv &, CZrEnvSection &, CZrEnvElement &root) { // moves away, and ends there
            CZrEnvBlock elsewhere("elsewhere");
            EXPECT_TRUE(elsewhere.InsertElement(root.GetParent()));
        },
    };
    for (const Ending &end : endings) {
        SCOPED_TRACE(&end - endings);
        ReportCapture reports;
        EnvPtr env = NewEnv();
        CZrEnvSection *pSection = env->InsertSection("S");
        CZrEnvBlock *pRoot = AddBlock(*AddBlock(*pSection, "o"), "b");
        AddLeaf(*pRoot, "x", "1");
        const EnvPtr sub(env->OpenSubenv(pRoot));
        end(*env, *pSection, *pRoot);
        EXPECT_EQ(nullptr, sub->GetSubEnvRootElement());
        EXPECT_TRUE(sub->IsSubEnv());
        EXPECT_EQ(nullptr, sub->GetElement("S", nullptr, true, false));
        EXPECT_EQ(nullptr, sub->GetElement("S", "x", true, false));
        EXPECT_EQ(ENV_NOT_FOUND, sub->GetLastError());
        EXPECT_EQ(nullptr, sub->GetPosElement("S", nullptr, 1, true, false));
        EXPECT_EQ(0, sub->CountElements("S", nullptr, true));
        EXPECT_EQ(ENV_ERROR, sub->SetLong("S", "x", 2));
        EXPECT_EQ(nullptr, sub->CreateSubenv("S", "x"));
        EXPECT_EQ(ENV_ERROR, sub->GetLastError());
        EXPECT_EQ(Reports{}, reports.Take());
        EXPECT_TRUE(EnvIsSound(*env));
    }
}

TEST_F(Environment, Subenv_RootFollowsAReplacement) {
    const EnvPtr onLeaf(m_env->OpenSubenv(m_pC));
    const EnvPtr onBlock(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(ENV_OK, m_env->SetLong("A", "b@c@deeper", 5)); // c becomes a block
    EXPECT_EQ(m_env->GetElement("A", "b@c", true, false), onLeaf->GetSubEnvRootElement());
    EXPECT_EQ(5, onLeaf->GetLong(nullptr, "deeper"));
    EXPECT_EQ(m_pBlock, onBlock->GetSubEnvRootElement());
    EXPECT_EQ(ENV_OK, onBlock->SetLong(nullptr, nullptr, 6)); // through a subenvironment: its own root alone
    EXPECT_EQ(m_env->GetElement("A", "b", true, false), onBlock->GetSubEnvRootElement());
    EXPECT_EQ(6, m_env->GetLong("A", "b"));
}

TEST_F(Environment, Subenv_ReplacementThroughASiblingIsNotFollowed) {
    const EnvPtr first(m_env->OpenSubenv(m_pBlock));
    const EnvPtr second(m_env->OpenSubenv(m_pBlock));
    EXPECT_EQ(ENV_OK, first->SetLong(nullptr, nullptr, 6));
    CZrEnvElement *pNew = m_env->GetElement("A", "b", true, false);
    EXPECT_EQ(pNew, first->GetSubEnvRootElement());
    EXPECT_NE(pNew, second->GetSubEnvRootElement());
}

// Destroying

TEST(EnvironmentEnd, Null_IsOk) {
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(nullptr, false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(nullptr, true));
}

TEST(EnvironmentEnd, HeldAsADefault_IsInUse) {
    CZrEnv *pDefault = CZrEnv::CreateEnv(2, nullptr);
    CZrEnv *pEnv = CZrEnv::CreateEnv(1, pDefault);
    pDefault->InsertSection("S");
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, true));
    EXPECT_NE(nullptr, pDefault->GetSection("S"));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pEnv, false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pDefault, false));
}

TEST(EnvironmentEnd, WithDefaults_EndsTheChain) {
    Obituary deaths;
    CZrEnv *pEnv = nullptr;
    for (const char *szName : {"last", "middle", "front"}) {
        pEnv = CZrEnv::CreateEnv(0, pEnv);
        ASSERT_TRUE(pEnv->InsertSection("S")->InsertElement(NewMortalLeaf(deaths, szName)));
    }
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pEnv, true));
    EXPECT_EQ((Obituary{"front", "middle", "last"}), deaths);
}

TEST(EnvironmentEnd, WithDefaults_StopsAtOneThatIsHeld) {
    EnvPtr shared = NewEnv(3);
    EnvPtr holder = NewEnv(4, shared.get());
    CZrEnv *pMiddle = CZrEnv::CreateEnv(2, shared.get());
    CZrEnv *pFront = CZrEnv::CreateEnv(1, pMiddle);
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pFront, true));
    EXPECT_EQ(3, shared->GetID());
    EXPECT_EQ(shared.get(), holder->DetachDefaultChain());
}

TEST_F(Environment, End_WithASubenvironmentIsInUse) {
    CZrEnv *pFirst = m_env->OpenSubenv(m_pA);
    CZrEnv *pSecond = m_env->OpenSubenv(m_pA);
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(m_env.get(), false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pFirst, false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(m_env.get(), false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSecond, true));
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env)) << "no element is touched";
}

TEST(EnvironmentEnd, Subenvironment_LeavesTheDefaultAlone) {
    EnvPtr def = NewEnv(2);
    EnvPtr env = NewEnv(1, def.get());
    CZrEnv *pSub = env->OpenSubenv(env->InsertSection("S"));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, true));
    EXPECT_EQ(2, def->GetID());
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(def.get(), false));
}

TEST(EnvironmentEnd, LastError_IsNotTouched) {
    EnvPtr def = NewEnv();
    EnvPtr env = NewEnv(1, def.get());
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(def.get(), false));
    EXPECT_EQ(ENV_OK, def->GetLastError());
}

// The default chain

TEST(DefaultChain, Attach_GoesToTheEnd) {
    EnvPtr b = NewEnv(3), a = NewEnv(2), env = NewEnv(1);
    env->AttachAsLastDefault(a.get());
    env->AttachAsLastDefault(b.get());
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(a.get(), false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(b.get(), false));
    EXPECT_EQ(a.get(), env->DetachDefaultChain());
    EXPECT_EQ(nullptr, env->DetachDefaultChain());
    EXPECT_EQ(b.get(), a->DetachDefaultChain()) << "the rest stays behind it";
    EXPECT_EQ(nullptr, b->DetachDefaultChain());
}

TEST(DefaultChain, Attach_NullIsTold) {
    ReportCapture reports;
    EnvPtr env = NewEnv();
    env->AttachAsLastDefault(nullptr);
    EXPECT_EQ(Reports{Message("ZrEnv", "Attempt to attach NIL as new_default.\nIgnored.")}, reports.Take());
    EXPECT_EQ(nullptr, env->DetachDefaultChain());
}

TEST(DefaultChain, Attach_OfOneInTheChainDoesNothing) {
    EnvPtr b = NewEnv(3), a = NewEnv(2), env = NewEnv(1);
    env->AttachAsLastDefault(a.get());
    env->AttachAsLastDefault(b.get());
    env->AttachAsLastDefault(a.get());
    env->AttachAsLastDefault(b.get());
    env->AttachAsLastDefault(env.get());
    EXPECT_EQ(nullptr, env->GetElement("S", "x", true, true)) << "a ring would never end";
    EXPECT_EQ(nullptr, b->DetachDefaultChain());
    EXPECT_EQ(b.get(), a->DetachDefaultChain());
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(b.release(), false)) << "counted once";
}

TEST(DefaultChain, Attach_OfOneThatLeadsHereDoesNothing) {
    EnvPtr env = NewEnv(1);
    EnvPtr front = NewEnv(2, env.get());
    EnvPtr farFront = NewEnv(3, front.get());
    env->AttachAsLastDefault(front.get());
    env->AttachAsLastDefault(farFront.get());
    EXPECT_EQ(nullptr, env->DetachDefaultChain());
    EXPECT_EQ(nullptr, farFront->GetElement("S", "x", true, true));
}

TEST(DefaultChain, Attach_OfOneWithAChainOfItsOwn) {
    EnvPtr last = NewEnv(3);
    EnvPtr middle = NewEnv(2, last.get());
    EnvPtr env = NewEnv(1);
    env->AttachAsLastDefault(middle.get());
    last->InsertSection("S");
    EXPECT_EQ(last->GetFirstSection(), env->GetElement("S", nullptr, true, true));
}

TEST(DefaultChain, Read_FirstThatHasTheElementWins) {
    EnvPtr last = NewEnv(3);
    EnvPtr middle = NewEnv(2, last.get());
    EnvPtr front = NewEnv(1, middle.get());
    ASSERT_EQ(ENV_OK, last->SetLong("S", "a", 3));
    ASSERT_EQ(ENV_OK, middle->SetLong("S", "a", 2));
    ASSERT_EQ(ENV_OK, last->SetLong("S", "b", 33));
    EXPECT_EQ(2, front->GetLong("S", "a"));
    EXPECT_EQ(33, front->GetLong("S", "b"));
    EXPECT_EQ(2, front->GetElement("S", "a", true, true)->GetEnv()->GetID());
    EXPECT_EQ(3, front->GetElement("S", "b", false, true)->GetEnv()->GetID());
    ASSERT_EQ(ENV_OK, front->SetLong("S", "a", 1));
    EXPECT_EQ(1, front->GetLong("S", "a"));
    EXPECT_EQ(2, middle->GetLong("S", "a")) << "writing leaves the defaults alone";
    EXPECT_EQ(nullptr, front->GetElement("S", "b", true, false));
}

TEST(DefaultChain, Read_CopiesTheLastError) {
    EnvPtr last = NewEnv(3);
    EnvPtr middle = NewEnv(2, last.get());
    EnvPtr front = NewEnv(1, middle.get());
    last->InsertSection("S");
    front->SetLastError(untouched);
    EXPECT_NE(nullptr, front->GetElement("S", nullptr, true, true));
    EXPECT_EQ(ENV_OK, front->GetLastError());
    EXPECT_EQ(nullptr, front->GetElement("S", "x", true, true));
    for (const EnvPtr *pEnv : {&front, &middle, &last})
        EXPECT_EQ(ENV_NOT_FOUND, (*pEnv)->GetLastError());
}

TEST(DefaultChain, Subenvironment_HasTheDefaultOfItsOpening) {
    EnvPtr later = NewEnv(3), def = NewEnv(2), env = NewEnv(1);
    ASSERT_EQ(ENV_OK, def->SetLong("S", "a", 2));
    ASSERT_EQ(ENV_OK, later->SetLong("S", "b", 3));
    CZrEnvSection *pSection = env->InsertSection("S");
    const EnvPtr before(env->OpenSubenv(pSection));
    env->AttachAsLastDefault(def.get());
    const EnvPtr behind(env->OpenSubenv(pSection));
    env->AttachAsLastDefault(later.get());
    EXPECT_EQ(nullptr, before->GetElement("S", "a", true, true)) << "attached after it was opened";
    EXPECT_EQ(2, behind->GetLong("S", "a"));
    EXPECT_EQ(3, behind->GetLong("S", "b")) << "attached later, but behind a default that was there";
}

// A default's count says how many hold it; what a subenvironment does to it is not in balance, in either direction.
TEST(DefaultChain, Subenvironment_AttachRaisesForEver) {
    CZrEnv *pDefault = CZrEnv::CreateEnv(2, nullptr);
    EnvPtr env = NewEnv(1);
    CZrEnv *pSub = env->OpenSubenv(env->InsertSection("S"));
    pSub->AttachAsLastDefault(pDefault);
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false)) << "closing does not lower it again";

    env->AttachAsLastDefault(pDefault); // two holds by count
    pSub = env->OpenSubenv(env->GetSection("S"));
    EXPECT_EQ(pDefault, pSub->DetachDefaultChain()); // lowers a count that it never raised
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, false));
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false));
    EXPECT_EQ(pDefault, env->DetachDefaultChain());
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pDefault, false));
}

TEST(DefaultChain, Subenvironment_DetachLowersWhatItNeverRaised) {
    CZrEnv *pDefault = CZrEnv::CreateEnv(2, nullptr);
    EnvPtr env = NewEnv(1, pDefault);
    {
        const EnvPtr sub(env->OpenSubenv(env->InsertSection("S")));
        EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false));
        EXPECT_EQ(pDefault, sub->DetachDefaultChain());
        EXPECT_EQ(nullptr, sub->DetachDefaultChain());
    }
    EXPECT_EQ(pDefault, env->DetachDefaultChain());
    EXPECT_EQ(ENV_IN_USE, CZrEnv::DestroyEnv(pDefault, false)) << "one below zero";
    CZrEnv *pSub = env->OpenSubenv(env->GetSection("S"));
    pSub->AttachAsLastDefault(pDefault); // back to zero
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pSub, false));
    EXPECT_EQ(ENV_OK, CZrEnv::DestroyEnv(pDefault, false));
}

// Copies

TEST_F(Environment, Copy_SharesSectionsAndState) {
    m_env->SetDelimiter('/');
    m_env->SetLastError(untouched);
    alignas(CZrEnv) std::byte place[sizeof(CZrEnv)];
    const CZrEnv *pCopy = ::new (place) CZrEnv(*m_env); // never ended as an environment
    EXPECT_EQ(m_pA, pCopy->GetFirstSection());
    EXPECT_EQ(7, pCopy->GetID());
    EXPECT_EQ('/', pCopy->GetDelimiter());
    EXPECT_STREQ("/", pCopy->GetStrDelimiter());
    EXPECT_EQ(untouched, pCopy->GetLastError());
    EXPECT_FALSE(pCopy->IsSubEnv());
    EXPECT_EQ(m_pC, pCopy->GetElement("A", "b/c", true, false));
}

TEST_F(Environment, Copy_AssignedSharesSectionsAndState) {
    EnvPtr other = NewEnv(9);
    other->InsertSection("X");
    alignas(CZrEnv) std::byte place[sizeof(CZrEnv)];
    CZrEnv *pCopy = ::new (place) CZrEnv(*other);
    m_env->SetLastError(untouched);
    m_env->SetDelimiter('/');
    *pCopy = *m_env;
    EXPECT_EQ(m_pA, pCopy->GetFirstSection());
    EXPECT_EQ(7, pCopy->GetID());
    EXPECT_STREQ("/", pCopy->GetStrDelimiter());
    EXPECT_EQ(untouched, pCopy->GetLastError());
    EXPECT_EQ(2, pCopy->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(m_pC, pCopy->GetElement("A", "b/c", true, false));
    EXPECT_EQ("[X]", Describe(*other));
}

TEST_F(Environment, Copy_CannotEndTheSections) {
    const EnvPtr copy(new CZrEnv(*m_env));
    copy->DeleteEnvironmentSections();
    EXPECT_EQ("[A]b{c=1} d=2[B]", Describe(*m_env));
    EXPECT_EQ(m_pA, copy->GetFirstSection());
}

TEST_F(Environment, Assigned_BecomesACopy) {
    const EnvPtr env = NewEnv(9);
    const CZrEnv &self = *env;
    *env = self;
    EXPECT_EQ(nullptr, env->GetFirstSection());
    EXPECT_EQ(9, env->GetID());
    *env = *m_env;
    EXPECT_EQ(m_pA, env->GetFirstSection());
    EXPECT_EQ(7, env->GetID());
}

TEST_F(Environment, CopyOfASectionInABlock_IsNotInserted) {
    auto *pInner = new CZrEnvSection("inner");
    ASSERT_TRUE(m_pBlock->InsertElement(pInner));
    CZrEnvSection view(*pInner);
    m_reports.Take();
    EXPECT_FALSE(m_env->InsertSection(&view));
    EXPECT_FALSE(m_env->InsertSectionBefore(&view, m_pA));
    EXPECT_EQ("[A]b{c=1 inner{}} d=2[B]", Describe(*m_env));
    ASSERT_TRUE(m_env->InsertSection(pInner));
    EXPECT_EQ("[A]b{c=1} d=2[B][inner]", Describe(*m_env));
}

// A subenvironment lowers the count of a default that it never raised: the default can end while another still names it.
TEST_F(Environment, EndOfADefaultThatIsStillNamed_IsToldToItsHolder) {
    CZrEnv *pDefault = CZrEnv::CreateEnv(1, nullptr);
    pDefault->InsertSection("Z");
    m_env->AttachAsLastDefault(pDefault);
    const EnvPtr sub(m_env->OpenSubenv(m_pA));
    ASSERT_EQ(pDefault, sub->DetachDefaultChain());
    ASSERT_EQ(ENV_OK, CZrEnv::DestroyEnv(pDefault, false));
    EXPECT_EQ(nullptr, m_env->GetElement("Z", nullptr, true, true));
    EXPECT_EQ(nullptr, m_env->DetachDefaultChain());
}

TEST_F(Environment, EndOfAnEnvironmentThatIsStillViewed_IsToldToTheView) {
    CZrEnv *pEnv = CZrEnv::CreateEnv(1, nullptr);
    const EnvPtr view(pEnv->OpenSubenv(pEnv->InsertSection("Z")));
    m_env->AttachAsLastDefault(pEnv);
    const EnvPtr sub(m_env->OpenSubenv(m_pA));
    ASSERT_EQ(pEnv, sub->DetachDefaultChain()); // the count is now that of one view
    ASSERT_EQ(pEnv, m_env->DetachDefaultChain());
    ASSERT_EQ(ENV_OK, CZrEnv::DestroyEnv(pEnv, false));
    EXPECT_EQ(nullptr, view->GetSubEnvRootElement());
    EXPECT_EQ(nullptr, view->GetElement(nullptr, nullptr, true, true));
    EXPECT_FALSE(view->IsSubEnv());
}

TEST_F(Environment, Destruction_OfAMillionSections) {
    for (int i = 0; i < 1000000; ++i)
        ASSERT_NE(nullptr, m_env->InsertSection("many"));
    EXPECT_EQ(1000002, m_env->CountElements(nullptr, nullptr, true));
    EXPECT_EQ(m_env->GetNextSection(m_pB), m_env->GetSection("many"));
    m_env->DeleteEnvironmentSections();
}

} // namespace
} // namespace zr::test
