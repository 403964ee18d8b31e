// The reader of the text format: what each construct reads as, and that the fast way reads as the plain reference does.
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "env/reader.h"
#include "env/refused_memory.h"
#include "env/text_support.h"

namespace text_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zr::test::Refusal;

class Reader : public TextTest {
protected:
    ReportCapture reports;

    // Reads a text that has to succeed.
    Tree Read(const std::string &text, EEnvReadMode mode = eEnvReadWrapped) {
        EXPECT_EQ(env->ReadString(text.c_str(), mode), Zr::ENV_OK);
        EXPECT_THAT(reports.Take(), IsEmpty());
        return TreeOf(*env);
    }
    // The value of the only element of [A], written behind "x =".
    std::string Value(const std::string &text, EEnvReadMode mode = eEnvReadWrapped) {
        const Tree tree = Read("[A]\nx =" + text + "\n", mode);
        if (tree.size() != 1 || tree[0].children.size() != 1)
            return "(not one element)";
        return tree[0].children[0].value.value_or("(no value)");
    }
    void ExpectFault(const std::string &text, const Tree &tree, const Reports &told, zr_long line, zr_long column) {
        SCOPED_TRACE(text);
        EXPECT_EQ(env->ReadString(text.c_str(), eEnvReadWrapped), Zr::ENV_BAD_FORMAT);
        EXPECT_EQ(TreeOf(*env), tree);
        EXPECT_EQ(reports.Take(), told);
        zr_long gotLine = 0, gotColumn = 0;
        EXPECT_EQ(env->GetErrorPosition(gotLine, gotColumn), Zr::ENV_OK);
        EXPECT_EQ(gotLine, line);
        EXPECT_EQ(gotColumn, column);
    }
    // What is told of a text without a file name.
    static zr::test::Report Fault(const char *what) { return Error(Tag, what, ""); }
    static zr::test::Report GivenUp(const char *name) { return Error(Tag, "Fehler beim Lesen der Sektion:", name, ""); }
};

TEST_F(Reader, WorkedExampleGivesItsTree) {
    const Tree tree = {Section("Model", {Data("Title", "Frame A"),
                                         Block("Loads", {Data("Factor", "1.35"), Data("Note", "line one\nline two")})}),
                       Section("Empty", {})};
    EXPECT_EQ(Read("__ZR_ENV_READ_MODE__=NOT_WRAPPED\n"
                   "[Model]\n"
                   "  Title =Frame A\n"
                   "  Loads ={\n"
                   "    Factor =1.35\n"
                   "    Note =line one<<\\n>>line two\n"
                   "  }\n"
                   "[Empty]\n",
                   eEnvReadAuto),
              tree);
}

TEST_F(Reader, TextWithoutASectionIsEmpty) {
    for (const char *text : {"", "\n", "abc", "x =1\n}\n", ";[A]\n", "  ; [A]\n", "__ZR_ENV_READ_MODE__"})
        EXPECT_EQ(Read(text), Tree()) << text;
    for (const char *text : {"", "\r\n", "x =1\r\n"}) {
        EXPECT_EQ(ReadAsFile(text), Zr::ENV_OK) << text;
        EXPECT_EQ(TreeOf(*env), Tree()) << text;
    }
    EXPECT_THAT(reports.Take(), IsEmpty());
}

TEST_F(Reader, TextBeforeTheFirstSectionIsSkipped) {
    EXPECT_EQ(Read("rubbish = } ] \\ x\n ;[B]\nmore [A]\nx =1\n"), Tree{Section("A", {Data("x", "1")})});
    EXPECT_EQ(Read("a fold \\\n ;[B]\n"), Tree{Section("B", {})}) << "the semicolon does not begin a line";
}

TEST_F(Reader, BlanksAroundNamesAndValuesAreDropped) {
    for (const char *line :
         {"name=value", "name   =   value", "name =value", " \t name\t=\tvalue \t ", "\n\n\nname=value"})
        EXPECT_EQ(Read(std::string("[A]\n") + line + "\n"), Tree{Section("A", {Data("name", "value")})}) << line;
}

TEST_F(Reader, SectionNameMayHaveBlanksAndLines) {
    EXPECT_EQ(Read("[ A ]"), Tree{Section("A", {})});
    EXPECT_EQ(Read("[]"), Tree{Section("", {})});
    EXPECT_EQ(Read("[ \t ]"), Tree{Section("", {})});
    EXPECT_EQ(Read("[A\n B]"), Tree{Section("A\n B", {})});
    EXPECT_EQ(Read("[a=b;c[d}e]"), Tree{Section("a=b;c[d}e", {})});
}

TEST_F(Reader, SectionNameCutByTheEndIsASection) {
    EXPECT_EQ(Read("["), Tree{Section("", {})});
    EXPECT_EQ(Read("[abc "), Tree{Section("abc", {})});
}

TEST_F(Reader, ElementMayFollowOnTheSectionsLine) {
    EXPECT_EQ(Read("[A] x =1"), Tree{Section("A", {Data("x", "1")})});
    EXPECT_EQ(Read("[A][B]y=2"), (Tree{Section("A", {}), Section("B", {Data("y", "2")})}));
}

TEST_F(Reader, ElementMayFollowOnTheBracesLine) {
    const Tree tree = {Section("A", {Block("x", {Data("y", "1")})})};
    EXPECT_EQ(Read("[A]\nx ={ y =1\n}\n"), tree);
    EXPECT_EQ(Read("[A] x={y=1\n}"), tree);
    EXPECT_EQ(Read("[A]\nx ={ \n y=1\n } z={}\n"),
              (Tree{Section("A", {Block("x", {Data("y", "1")}), Block("z", {})})}));
}

TEST_F(Reader, EmptyValuesAreLegal) {
    EXPECT_EQ(Value(""), "");
    EXPECT_EQ(Value(" \t "), "");
    EXPECT_EQ(Read("[A]\nx ="), Tree{Section("A", {Data("x", "")})});
    EXPECT_EQ(Read("[A]\nx =1"), Tree{Section("A", {Data("x", "1")})});
}

TEST_F(Reader, ValueKeepsEverySignBehindTheFirst) {
    EXPECT_EQ(Value("a=b;c[d]e}f{g"), "a=b;c[d]e}f{g");
    EXPECT_EQ(Value("}"), "}");
    EXPECT_EQ(Value("[B]"), "[B]");
    EXPECT_EQ(Value("=1"), "=1");
    EXPECT_EQ(Value(";1"), ";1");
}

TEST_F(Reader, LineWithoutEqualSignIsTheFrontOfTheNextName) {
    EXPECT_EQ(Read("[A]\nabc\ndef =1\n"), Tree{Section("A", {Data("abc\ndef", "1")})});
    EXPECT_EQ(Read("[A]\nabc\n  =1\n"), Tree{Section("A", {Data("abc\n", "1")})});
    EXPECT_EQ(Read("[A]\na\n;comment\nb =1\n"), Tree{Section("A", {Data("a\n\nb", "1")})});
}

TEST_F(Reader, NamesakesKeepTheirOrder) {
    EXPECT_EQ(Read("[A]\nx=1\nx=2\n[A]\nx={\n}\n"),
              (Tree{Section("A", {Data("x", "1"), Data("x", "2")}), Section("A", {Block("x", {})})}));
}

TEST_F(Reader, NamesAreNotChecked) {
    EXPECT_EQ(Read("[A]\nx[y];{ }=1\n"), Tree{Section("A", {Data("x[y];{ }", "1")})});
    EXPECT_EQ(Read("[A]\na@b=1\n]=2\n{=3\n"), Tree{Section("A", {Data("a@b", "1"), Data("]", "2"), Data("{", "3")})});
}

TEST_F(Reader, CommentsVanish) {
    EXPECT_EQ(Read(";c\n[A]\n; x=1\n \t ; y=2\nz=3\n;end"), Tree{Section("A", {Data("z", "3")})});
    EXPECT_EQ(Read("[A] ;x=1\n"), Tree{Section("A", {Data(";x", "1")})});
    EXPECT_EQ(Read("[A]\nx={ ;y=1\n;}\n}\n"), Tree{Section("A", {Block("x", {Data(";y", "1")})})});
    EXPECT_EQ(Read("[A]\n;fold \\\nx=1\n"), Tree{Section("A", {Data("x", "1")})});
}

TEST_F(Reader, MarksInValuesBecomeLineEnds) {
    for (const EEnvReadMode mode : {eEnvReadWrapped, eEnvReadNotWrapped}) {
        EXPECT_EQ(Value("<<\\n>>", mode), "\n");
        EXPECT_EQ(Value("a<<\\r>><<\\n>>b", mode), "a\r\nb");
        EXPECT_EQ(Value("<<<\\n>>>", mode), "<\n>");
        EXPECT_EQ(Value("<<\\n> <\\n>> <<\\t>> <<\\N>>", mode), "<<\\n> <\\n>> <<\\t>> <<\\N>>");
        EXPECT_EQ(Value("x <<\\n>>  ", mode), "x \n");
        EXPECT_EQ(Value("<<\\<<\\n>>n>>", mode), "<<\\\nn>>");
    }
    EXPECT_EQ(Value("<<\\\n\\n>>"), "\n") << "folded in its midst";
}

TEST_F(Reader, MarksInNamesStay) {
    EXPECT_EQ(Read("[a<<\\n>>b]\nx<<\\n>>y=1\n"), Tree{Section("a<<\\n>>b", {Data("x<<\\n>>y", "1")})});
}

TEST_F(Reader, BackslashBeforeALineEndFolds) {
    EXPECT_EQ(Value("ab\\\ncd"), "abcd");
    EXPECT_EQ(Value("ab\\   \ncd"), "abcd");
    EXPECT_EQ(Value("ab\\\\\\  \n  cd"), "ab  cd");
    EXPECT_EQ(Value("ab\\\n\\\n\\\ncd"), "abcd");
    EXPECT_EQ(Value("ab\\\n;cd"), "ab;cd");
    EXPECT_EQ(Read("[A\\\nB]\nna\\\nme =1\n"), Tree{Section("AB", {Data("name", "1")})});
}

TEST_F(Reader, BackslashesBeforeALineEndLoseOne) {
    EXPECT_EQ(Value("ab\\\\"), "ab\\");
    EXPECT_EQ(Value("ab\\\\\\\\"), "ab\\\\\\");
    EXPECT_EQ(Read("[A]\nx=a\\\\\ny=2\n"), Tree{Section("A", {Data("x", "a\\"), Data("y", "2")})});
}

TEST_F(Reader, OtherBackslashesArePlain) {
    EXPECT_EQ(Value("C:\\a\\b \\ c"), "C:\\a\\b \\ c");
    EXPECT_EQ(Value("\\\\server\\x"), "\\\\server\\x");
    EXPECT_EQ(Value("a\\\t"), "a\\") << "a tab is no part of a fold";
    EXPECT_EQ(Value("a\\ \\"), "a\\ \\") << "the second one was looked at already";
    EXPECT_EQ(Read("[A]\nx=1\\"), Tree{Section("A", {Data("x", "1\\")})});
    EXPECT_EQ(Read("[A]\nx=1\\ \\ "), Tree{Section("A", {Data("x", "1\\ \\")})});
}

TEST_F(Reader, BackslashesArePlainWhereLinesAreNotWrapped) {
    EXPECT_EQ(Value("ab\\", eEnvReadNotWrapped), "ab\\");
    EXPECT_EQ(Value("ab\\\\", eEnvReadNotWrapped), "ab\\\\");
    EXPECT_EQ(Value("ab\\  ", eEnvReadNotWrapped), "ab\\");
}

TEST_F(Reader, ValueThatEndsInBackslashAndBlanksSwallowsTheNextLine) {
    EXPECT_EQ(Read("[A]\nx =a\\ \ny =b\n"), Tree{Section("A", {Data("x", "ay =b")})});
}

TEST_F(Reader, ModeLineIsSkippedInEveryMode) {
    for (const char *line : {"__ZR_ENV_READ_MODE__=NOT_WRAPPED", "__ZR_ENV_READ_MODE__", "__ZR_ENV_READ_MODE__=WRAPPED",
                             "__ZR_ENV_READ_MODE__[B]\tx"}) {
        const std::string text = std::string(line) + "\n[A]\nx=a\\\ny=1\n";
        const Tree plain = {Section("A", {Data("x", "a\\"), Data("y", "1")})};
        EXPECT_EQ(Read(text, eEnvReadAuto), plain);
        EXPECT_EQ(Read(text, eEnvReadNotWrapped), plain);
        EXPECT_EQ(Read(text, eEnvReadWrapped), Tree{Section("A", {Data("x", "ay=1")})});
    }
}

TEST_F(Reader, ModeLineCountsOnlyAsTheFirstLine) {
    EXPECT_EQ(Read("[A]\nx=a\\\ny=1\n", eEnvReadAuto), Tree{Section("A", {Data("x", "ay=1")})});
    EXPECT_EQ(Read("\n__ZR_ENV_READ_MODE__\n[A]\nx=a\\\ny\n", eEnvReadAuto), Tree{Section("A", {Data("x", "ay")})});
    EXPECT_EQ(Read(" __ZR_ENV_READ_MODE__\n[A]\nx=a\\\ny\n", eEnvReadAuto), Tree{Section("A", {Data("x", "ay")})});
    EXPECT_EQ(Read("__zr_env_read_mode__\n[A]\nx=a\\\ny\n", eEnvReadAuto), Tree{Section("A", {Data("x", "ay")})});
    EXPECT_EQ(Read("[A]\n__ZR_ENV_READ_MODE__=1\n"), Tree{Section("A", {Data("__ZR_ENV_READ_MODE__", "1")})});
}

TEST_F(Reader, LongModeLineIsSkippedAsFarAsItWasLookedAt) {
    const std::string mark = "__ZR_ENV_READ_MODE__";
    // 255 characters of a string and 254 of a file.
    EXPECT_EQ(Read(mark + std::string(235, '[') + "[A]\n", eEnvReadAuto), Tree{Section("A", {})});
    ASSERT_EQ(ReadAsFile(mark + std::string(234, '[') + "[A]\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("A", {})});
}

TEST_F(Reader, TokenThatBelongsToNoSectionIsReported) {
    ExpectFault("[A]\nx=1\n}\n[B]\n", {Section("A", {Data("x", "1")})}, {Fault("Section expected")}, 3, 1);
    ExpectFault("[A]\n  =1\n", {Section("A", {})}, {Fault("Section expected")}, 2, 3);
}

TEST_F(Reader, NameWithoutEqualSignAtTheEndIsReported) {
    ExpectFault("[A]\nx=1\n[B]\nabc\n", {Section("A", {Data("x", "1")})}, {Fault("Equal sign expected"), GivenUp("B")},
                5, 1);
    ExpectFault("[B]\nabc", {}, {Fault("Equal sign expected"), GivenUp("B")}, 2, 4);
}

TEST_F(Reader, MissingBraceIsReported) {
    ExpectFault("[A]\nx ={\ny =1\n", {}, {Fault("Cbracesymbol expected"), GivenUp("A")}, 4, 1);
    ExpectFault("[A]\nx ={\ny =1\n [B]\n", {}, {Fault("Cbracesymbol expected"), GivenUp("A")}, 4, 2);
    ExpectFault("[A]\nx ={\n=\n}", {}, {Fault("Cbracesymbol expected"), GivenUp("A")}, 3, 1);
}

TEST_F(Reader, FaultDeepInBlocksIsReportedOnceAndOnceForTheSection) {
    ExpectFault("[0]\n[A]\na={\nb={\nc={\nd=1\n}\n", {Section("0", {})}, {Fault("Cbracesymbol expected"), GivenUp("A")},
                8, 1);
    ExpectFault("[A]\na={\nb={\nc={\nname", {}, {Fault("Equal sign expected"), GivenUp("A")}, 5, 5);
}

TEST_F(Reader, PlaceCountsCommentsModeLineAndCarriageReturns) {
    ExpectFault("__ZR_ENV_READ_MODE__\n;c\n[A]\n}", {Section("A", {})}, {Fault("Section expected")}, 4, 1);
    ExpectFault("[A]\r\n}\r\n", {Section("A", {})}, {Fault("Section expected")}, 2, 1);
    ExpectFault("[A]\\\n  }", {Section("A", {})}, {Fault("Section expected")}, 2, 3);
}

TEST_F(Reader, CarriageReturnIsDroppedAndWhatFollowsTaken) {
    EXPECT_EQ(Read("[A]\r\nx =a\r\ny ={\r\n}\r\n"), Tree{Section("A", {Data("x", "a"), Block("y", {})})});
    EXPECT_EQ(Value("a\rb"), "ab");
    EXPECT_EQ(Value("a\r\rb"), "a\rb");
    EXPECT_EQ(Value("a\r\r\r"), "a\r");
    EXPECT_EQ(Value("a\\\r"), "a") << "a fold, and the end of the text behind it";
    EXPECT_EQ(Read("[A]\nx=1\r"), Tree{Section("A", {Data("x", "1")})});
    EXPECT_EQ(Read("[A]\rx=1\r\n"), Tree{Section("A", {Data("x", "1")})});
    EXPECT_EQ(Read("[A]\n\r;x\n\r\r\n=1\n"), Tree{Section("A", {Data("\r\n", "1")})});
}

// A block of a stream has 30000 bytes. Its first byte is taken as it is, also when it is a carriage return.
TEST_F(Reader, CarriageReturnAtTheStartOfABlockStays) {
    const std::string head = "[A]\nx =";
    for (const std::size_t at : {29999u, 30000u, 30001u, 60000u}) {
        const std::string filler(at - head.size(), 'v');
        ASSERT_EQ(ReadAsFile(head + filler + "\rb\ny =2\n"), Zr::ENV_OK);
        const bool first = at % 30000 == 0;
        EXPECT_TRUE(TreeOf(*env) == (Tree{Section("A", {Data("x", filler + (first ? "\rb" : "b")), Data("y", "2")})}))
            << at;
    }
}

TEST_F(Reader, Byte0xFFEndsATextThatItDoesNotBegin) {
    EXPECT_EQ(Read("[A]\n\xFFx=1\n"), Tree{Section("A", {Data("\xFFx", "1")})});
    EXPECT_EQ(Value("\xFF"
                    "a"),
              "\xFF"
              "a");
    EXPECT_EQ(Read("[A]\nx=1\xFFy=2\n"), (Tree{Section("A", {Data("x", "1"), Data("y", "2")})}));
    EXPECT_EQ(Read("[A\xFFx]=1\n"), Tree{Section("A", {Data("x]", "1")})});
    ExpectFault("[A]\na\xFF=1\n", {}, {Fault("Equal sign expected"), GivenUp("A")}, 2, 2);
}

TEST_F(Reader, ZeroByteInAFileEndsTheTextThatHoldsIt) {
    const std::string zero(1, '\0');
    ASSERT_EQ(ReadAsFile("[A" + zero + "B]\nx" + zero + "y=1" + zero + "2\n" + zero + "z=" + zero + "3\n[B]"),
              Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), (Tree{Section("A", {Data("x", "1"), Data("z", "3")}), Section("B", {})}));
    ASSERT_EQ(ReadAsFile("[A]\nx=a " + zero + " b\n" + zero + "=" + zero + "\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("A", {Data("x", "a"), Data("", "")})});
    ASSERT_EQ(ReadAsFile("[A]\nx=a\\" + zero + "b\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("A", {Data("x", "a\\")})});
}

TEST_F(Reader, Byte0x1AEndsAFileButNotAString) {
    ASSERT_EQ(ReadAsFile("[A]\nx=1\x1A\n[B]\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("A", {Data("x", "1")})});
    EXPECT_EQ(Value("1\x1A"
                    "2"),
              "1\x1A"
              "2");
    ASSERT_EQ(ReadAsFile("\x1A[A]\n"), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree());
}

TEST_F(Reader, LastErrorIsClearedByWhatParses) {
    env->SetLastError(Zr::ENV_TOO_SMALL);
    EXPECT_EQ(env->ReadString("[A]\n}", eEnvReadAuto), Zr::ENV_BAD_FORMAT);
    EXPECT_EQ(env->GetLastError(), Zr::ENV_OK);
}

TEST_F(Reader, LastErrorStaysWhereNothingIsParsed) {
    env->SetLastError(Zr::ENV_TOO_SMALL);
    EXPECT_EQ(env->ReadString(nullptr, eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(env->ReadFile(Path("missing").c_str(), eEnvReadAuto), Zr::ENV_ERROR);
    EXPECT_EQ(env->GetLastError(), Zr::ENV_TOO_SMALL);
    EXPECT_EQ(env->ReadString("", eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(env->GetLastError(), Zr::ENV_OK);
}

TEST_F(Reader, NullEnvironmentIsReported) {
    EXPECT_EQ(Zr::CZrEnvReader(eEnvReadAuto).ReadFile(nullptr, Path("a.env").c_str()), Zr::ENV_ERROR);
    EXPECT_EQ(Zr::CZrEnvReader(eEnvReadAuto).ReadString(nullptr, "[A]"), Zr::ENV_ERROR);
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "NULL-Pointer"), Error(Tag, "NULL-Pointer")));
}

// ---- No memory

// The buffer for a text has 8192 bytes at first, and then twice as many. The fold keeps the value in it.
TEST_F(Reader, TextIsCutWhereTheBufferCannotGrow) {
    const std::string text = "[A]\nx =a\\\n" + std::string(10000, 'v') + "\ny =2\n";
    const Tree cut = {Section("A", {Data("x", "a" + std::string(8190, 'v')), Data("y", "2")})};
    for (const bool asFile : {false, true}) {
        WriteBytes(Path("a.env"), text);
        const std::string path = Path("a.env");
        Zr::EZrEnvError result = Zr::ENV_ERROR;
        bool met = false;
        {
            const Refusal refusal(16384, 16384);
            result = asFile ? env->ReadFile(path.c_str(), eEnvReadAuto) : env->ReadString(text.c_str(), eEnvReadAuto);
            met = refusal.Met();
        }
        EXPECT_TRUE(met);
        EXPECT_EQ(result, Zr::ENV_OK);
        EXPECT_TRUE(TreeOf(*env) == cut);
        EXPECT_THAT(reports.Take(),
                    ElementsAre(Error(Tag, "CZrEnvReader::AccumulateString : Out of memory", asFile ? path : "")));
    }
}

// With little memory the block is halved, plus one: 30000, 15001, 7501. Where it ends shows at a carriage return.
TEST_F(Reader, BlockIsHalvedUntilThereIsMemory) {
    const std::string head = "[A]\nx =";
    const std::string filler(7501 - head.size(), 'v');
    WriteBytes(Path("a.env"), head + filler + "\rb\n");
    const std::string path = Path("a.env");
    Zr::EZrEnvError result = Zr::ENV_ERROR;
    bool met = false;
    {
        const Refusal refusal(15001, 30000, 2);
        result = env->ReadFile(path.c_str(), eEnvReadAuto);
        met = refusal.Met();
    }
    EXPECT_TRUE(met);
    EXPECT_EQ(result, Zr::ENV_OK);
    EXPECT_TRUE(TreeOf(*env) == Tree{Section("A", {Data("x", filler + "\rb")})});
    EXPECT_THAT(reports.Take(), IsEmpty());
}

// A value this long gets an array of its own.
TEST_F(Reader, ExceptionLeavesTheSectionsBeforeItAndNothingOpen) {
    const std::string text = "[A]\nx =1\n[B]\ny =" + std::string(5000, 'v') + "\n";
    const std::string path = Path("a.env");
    WriteBytes(path, text);
    for (const bool asFile : {false, true}) {
        const auto read = [&] {
            const Refusal refusal(5001, 5001);
            if (asFile)
                env->ReadFile(path.c_str(), eEnvReadAuto);
            else
                env->ReadString(text.c_str(), eEnvReadAuto);
        };
        EXPECT_THROW(read(), std::bad_alloc);
        EXPECT_EQ(TreeOf(*env), Tree{Section("A", {Data("x", "1")})});
        zr_long line = 0, column = 0;
        EXPECT_EQ(env->GetErrorPosition(line, column), Zr::ENV_OK);
    }
    EXPECT_TRUE(std::filesystem::remove(path)) << "the file was closed";
    EXPECT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env).size(), 2u);
}

// ---- Size and depth

TEST_F(Reader, MillionLevelsRead) {
    const int levels = 1000000;
    std::string text = "[A]\n";
    for (int i = 0; i < levels; ++i)
        text += "b ={\n";
    text += "x =1\n";
    for (int i = 0; i < levels; ++i)
        text += "}\n";
    for (const bool careful : {false, true}) {
        Zr::EZrEnvError result = Zr::ENV_ERROR;
        std::thread([&] { result = careful ? ReadAsFile(text) : env->ReadString(text.c_str(), eEnvReadAuto); }).join();
        ASSERT_EQ(result, Zr::ENV_OK);
        Zr::CZrEnvElement *element = env->GetFirstSection();
        int depth = 0;
        for (; element->ToEnvBlock(); ++depth)
            element = element->ToEnvBlock()->GetFirstElement();
        EXPECT_EQ(depth, levels + 1);
        EXPECT_STREQ(element->GetName(), "x");
    }
}

TEST_F(Reader, FaultBelowAMillionLevelsIsReportedOnce) {
    std::string text = "[A]\n";
    for (int i = 0; i < 1000000; ++i)
        text += "b ={\n";
    EXPECT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_BAD_FORMAT);
    EXPECT_THAT(reports.Take(), ElementsAre(Fault("Cbracesymbol expected"), GivenUp("A")));
    EXPECT_EQ(env->GetFirstSection(), nullptr);
}

TEST_F(Reader, MillionNamesakesKeepTheirOrder) {
    std::string text = "[A]\n";
    for (int i = 0; i < 1000000; ++i)
        text += "n =" + std::to_string(i) + "\n";
    ASSERT_EQ(ReadAsFile(text), Zr::ENV_OK);
    Zr::CZrEnvSection *section = env->GetFirstSection();
    EXPECT_EQ(section->GetElemCount(), 1000000u);
    long i = 0;
    for (Zr::CZrEnvElement *element = section->GetFirstElement(); element; element = section->GetNextElement(element))
        ASSERT_EQ(element->ToEnvDataElement()->GetString(), std::to_string(i++));
}

TEST_F(Reader, TextsOfTenMegabytesRead) {
    const std::string name(10 << 20, 'n'), value = std::string(10 << 20, 'v') + "\\x";
    const std::string text = ";" + value + "\n[" + name + "]\n" + name + "=" + value + "\ny=2\n";
    const Tree tree = {Section(name, {Data(name, value), Data("y", "2")})};
    for (const EEnvReadMode mode : {eEnvReadWrapped, eEnvReadNotWrapped}) {
        ASSERT_EQ(env->ReadString(text.c_str(), mode), Zr::ENV_OK);
        EXPECT_TRUE(TreeOf(*env) == tree);
        ASSERT_EQ(ReadAsFile(text, mode), Zr::ENV_OK);
        EXPECT_TRUE(TreeOf(*env) == tree);
    }
}

TEST_F(Reader, MillionMarksAndFoldsRead) {
    std::string marks, folds, backslashes(1000000, '\\');
    for (int i = 0; i < 1000000; ++i) {
        marks += "<<\\n>>";
        folds += "a\\\n";
    }
    const std::string text = "[A]\nx=" + marks + "\ny=" + folds + "\nz=" + backslashes + "\n";
    const Tree tree = {Section("A", {Data("x", std::string(1000000, '\n')), Data("y", std::string(1000000, 'a')),
                                     Data("z", backslashes.substr(1))})};
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_TRUE(TreeOf(*env) == tree);
    ASSERT_EQ(ReadAsFile(text), Zr::ENV_OK);
    EXPECT_TRUE(TreeOf(*env) == tree);
}

// ---- Against the reference

class ReaderReference : public TextTest {
protected:
    ErrorChannel errors;

    void CompareAsString(const std::string &text, EEnvReadMode mode) {
        const ReferenceReader reference(text, false, mode, "");
        const Zr::EZrEnvError result = env->ReadString(text.c_str(), mode);
        ExpectAsReference(*env, result, reference, errors.Take());
    }
    void CompareAsFile(const std::string &bytes, EEnvReadMode mode) {
        const Zr::EZrEnvError result = ReadAsFile(bytes, mode);
        ExpectAsReference(*env, result, ReferenceReader(AsTextStreamReads(bytes), true, mode, Path("a.env")),
                          errors.Take());
    }
    static std::string Visible(const std::string &text) {
        std::string visible;
        for (const char c : text.substr(0, 2000)) {
            static const char digits[] = "0123456789ABCDEF";
            const auto byte = static_cast<unsigned char>(c);
            if (byte >= 32 && byte < 127)
                visible += c;
            else
                visible += std::string("{") + digits[byte / 16] + digits[byte % 16] + "}";
        }
        return visible;
    }
    // False once something differed, so that the loops below end there.
    bool Compare(const std::string &bytes, bool asFile = true) {
        SCOPED_TRACE(Visible(bytes));
        for (const EEnvReadMode mode : {eEnvReadWrapped, eEnvReadNotWrapped, eEnvReadAuto}) {
            CompareAsString(std::string(bytes.c_str()), mode);
            if (asFile)
                CompareAsFile(bytes, mode);
        }
        return !HasFailure();
    }
};

const std::string validFile = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n"
                              "; made by hand\r\n"
                              "[Model]\r\n"
                              "  Title =Frame A\r\n"
                              "  Loads ={\r\n"
                              "    Factor =1.35 \r\n"
                              "    Note =line one<<\\n>>line \\\r\ntwo\\\\\r\n"
                              "    Path =C:\\a\\b\\\r\n"
                              "    Inner ={ x =1\r\n\t;c\r\n    }\r\n"
                              "  }\r\n"
                              "[ Empty ] y =\r\n"
                              "[Last]\r\n";

TEST_F(ReaderReference, EveryPrefixOfAFileReadsTheSame) {
    for (std::size_t length = 0; length <= validFile.size(); ++length)
        ASSERT_TRUE(Compare(validFile.substr(0, length)));
    const std::string withoutModeLine = validFile.substr(validFile.find(';'));
    for (std::size_t length = 0; length <= withoutModeLine.size(); ++length)
        ASSERT_TRUE(Compare(withoutModeLine.substr(0, length)));
}

TEST_F(ReaderReference, RandomTextsReadTheSame) {
    const std::string signs("[]{}=;\\ \t\r\n<>nr_AZ09\xFF\x1A\0", 24);
    std::mt19937 random(2007);
    for (int i = 0; i < 6000; ++i) {
        std::string text = i % 2 ? "[A]\n" : "";
        for (unsigned left = static_cast<unsigned>(random() % 60); left != 0; --left) {
            const auto kind = static_cast<unsigned>(random() % 40);
            if (kind < 6)
                text += "x=";
            else if (kind < 9)
                text += "x={";
            else if (kind < 14)
                text += '\n';
            else if (kind < 15)
                text += "<<\\n>>";
            else if (kind < 16)
                text += "<<\\r>>";
            else if (kind < 18)
                text += "\\\n";
            else
                text += signs[random() % (kind < 38 ? 21 : 24)];
        }
        ASSERT_TRUE(Compare(text, i % 10 == 0)) << i;
    }
}

TEST_F(ReaderReference, ChangedFilesReadTheSame) {
    const std::string signs("[]{}=;\\ \t\r\n<>nr_AZ09\xFF\x1A\0", 24);
    std::mt19937 random(1352);
    for (int i = 0; i < 4000; ++i) {
        std::string text = i % 3 ? validFile.substr(validFile.find('[')) : validFile;
        for (unsigned changes = 1 + static_cast<unsigned>(random() % 4); changes != 0; --changes) {
            const std::size_t at = random() % text.size();
            switch (random() % 4) {
            case 0:
                text[at] = signs[random() % signs.size()];
                break;
            case 1:
                text.insert(at, 1, signs[random() % signs.size()]);
                break;
            case 2:
                text.erase(at, 1 + random() % 3);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 20));
                break;
            }
        }
        ASSERT_TRUE(Compare(text, i % 10 == 0)) << i;
    }
}

TEST_F(ReaderReference, RandomBytesReadTheSame) {
    std::mt19937 random(4711);
    for (int i = 0; i < 300; ++i) {
        std::string text = i % 2 ? "[" : "";
        for (unsigned left = static_cast<unsigned>(random() % 3000); left != 0; --left)
            text += static_cast<char>(random() % 256);
        ASSERT_TRUE(Compare(text)) << i;
    }
}

// The filler ends one line before the piece, so that each sign of the piece comes to stand around a block's end.
TEST_F(ReaderReference, PiecesAcrossBlockEndsReadTheSame) {
    const std::string zero(1, '\0');
    const std::vector<std::string> pieces = {"x=1\r\ny=2\r\n",
                                             "x=a\r\r\nb=3\n",
                                             "x=a\rb\ny=\r\r\r\n",
                                             "x=\\\nb\n",
                                             "x=a\\\\\\\n",
                                             "x=a\\  \nb\n",
                                             ";c\r\n\r;d\nx=1\n",
                                             "x={\r\ny={z=1\n}\n}\n",
                                             "x=<<\\n>><<\\r>>\n",
                                             "x=a\xFFy=b\n",
                                             "x" + zero + "=" + zero + "\n",
                                             "[B]\r\n[C]x=1\n",
                                             "x\r\ny=1\n"};
    for (const std::string &piece : pieces) {
        for (std::size_t border = 30000; border <= 60000; border += 30000) {
            for (std::size_t before = 0; before <= piece.size() + 2; ++before) {
                std::string text = "[A]\n";
                while (text.size() + 1000 < border - before)
                    text += "f=" + std::string(text.size() % 500, 'f') + "\n";
                text += "f=";
                text += std::string(border - before - 1 - text.size(), 'g') + "\n" + piece + "last=1\n";
                CompareAsFile(text, before % 2 ? eEnvReadAuto : eEnvReadNotWrapped);
                ASSERT_FALSE(HasFailure()) << Visible(piece) << " " << before << " before " << border;
            }
        }
    }
}

} // namespace
} // namespace text_test
