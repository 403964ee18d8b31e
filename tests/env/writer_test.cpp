// The writer of the text format: what each construct is written as, and that the fast way writes as the plain reference
// does.
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <pthread.h>

#include "env/reference_writer.h"
#include "env/refused_memory.h"
#include "env/text_support.h"
#include "env/writer.h"

namespace text_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zr::test::Refusal;

const std::string modeLine = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n";

class Writer : public TextTest {
protected:
    ReportCapture reports;
    Zr::CZrEnvSection *section = nullptr;

    Zr::CZrEnvSection *AddSection(const char *name = "A") { return section = env->InsertSection(name); }
    // Inserts what SetName would refuse as well: the name goes past its check through a reading.
    void Read(const std::string &text) { ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadNotWrapped), Zr::ENV_OK); }
    void AddData(const char *name, const std::string &value) {
        section->InsertElement(new Zr::CZrEnvDataElement(name, value.c_str()));
    }
    // The lines written for a section A with one element x of this value.
    std::string LineOf(const std::string &value, bool wrap) {
        env->DeleteEnvironmentSections();
        AddSection();
        AddData("x", value);
        const std::string text = Written(wrap);
        const std::string head = (wrap ? "" : modeLine) + "[A]\r\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(head.size());
    }
    // The value that comes back from what LineOf gives.
    std::string CycleOf(const std::string &value, bool wrap) {
        const std::string text = (wrap ? "" : modeLine) + "[A]\r\n" + LineOf(value, wrap);
        EXPECT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
        const char *got = env->GetString("A", "x");
        return got ? got : "(null)";
    }
};

TEST_F(Writer, WorkedExampleIsWrittenByteForByte) {
    AddSection("Model");
    AddData("Title", "Frame A");
    auto *loads = new Zr::CZrEnvBlock("Loads");
    section->InsertElement(loads);
    loads->InsertElement(new Zr::CZrEnvDataElement("Factor", "1.35"));
    loads->InsertElement(new Zr::CZrEnvDataElement("Note", "line one\nline two"));
    AddSection("Empty");
    const std::string lines = "[Model]\r\n"
                              "  Title =Frame A\r\n"
                              "  Loads ={\r\n"
                              "    Factor =1.35\r\n"
                              "    Note =line one<<\\n>>line two\r\n"
                              "  }\r\n"
                              "[Empty]\r\n";
    EXPECT_EQ(Written(false), modeLine + lines);
    EXPECT_EQ(Written(true), lines);
    EXPECT_EQ(WrittenAsFile(false), modeLine + lines);
    EXPECT_EQ(WrittenAsFile(true), lines);
    EXPECT_THAT(reports.Take(), IsEmpty());
}

TEST_F(Writer, EmptyEnvironmentIsTheModeLineOrNothing) {
    EXPECT_EQ(Written(false), modeLine);
    EXPECT_EQ(Written(true), "");
    EXPECT_EQ(WrittenAsFile(false), modeLine);
    EXPECT_EQ(WrittenAsFile(true), "");
}

TEST_F(Writer, MarksStandForLineEnds) {
    EXPECT_EQ(LineOf("\n", false), "  x =<<\\n>>\r\n");
    EXPECT_EQ(LineOf("a\r\nb\n", false), "  x =a<<\\r>><<\\n>>b<<\\n>>\r\n");
    Read("[a\nb]\nx\ny={\n}\n");
    const std::string written = "[a<<\\n>>b]\r\n  x<<\\n>>y ={\r\n  }\r\n";
    EXPECT_EQ(Written(true), written);
    ASSERT_EQ(env->ReadString(written.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("a<<\\n>>b", {Block("x<<\\n>>y", {})})}) << "marks in names stay";
}

TEST_F(Writer, BackslashAtTheEndIsDoubledInBothModes) {
    EXPECT_EQ(LineOf("a\\", true), "  x =a\\\\\r\n");
    EXPECT_EQ(LineOf("a\\", false), "  x =a\\\\\r\n");
    EXPECT_EQ(LineOf("a\\\\", true), "  x =a\\\\\\\r\n");
    EXPECT_EQ(CycleOf("a\\", true), "a\\");
    EXPECT_EQ(CycleOf("a\\", false), "a\\\\") << "each cycle adds one";
    EXPECT_EQ(CycleOf("a\\\\", false), "a\\\\\\");
}

TEST_F(Writer, BlanksAtTheEndsAreWrittenAndNotReadBack) {
    EXPECT_EQ(LineOf(" \t a \t ", false), "  x = \t a \t \r\n");
    EXPECT_EQ(CycleOf(" \t a \t ", false), "a");
    env->DeleteEnvironmentSections();
    AddSection(" B ");
    AddData("\t n ", "1");
    const std::string text = Written(true);
    EXPECT_EQ(text, "[ B ]\r\n  \t n  =1\r\n");
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("B", {Data("n", "1")})});
}

TEST_F(Writer, ValueThatBeginsWithABraceReadsAsABlock) {
    EXPECT_EQ(LineOf("{a", true), "  x ={a\r\n");
    EXPECT_EQ(LineOf("{", true), "  x ={\r\n");
    AddData("y", "1");
    AddData("}z", "2");
    const std::string text = Written(true);
    EXPECT_EQ(text, "[A]\r\n  x ={\r\n  y =1\r\n  }z =2\r\n");
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), (Tree{Section("A", {Block("x", {Data("y", "1")}), Data("z", "2")})}));
}

TEST_F(Writer, BackslashAndBlanksAtTheEndFoldWhenReadWrapped) {
    AddSection();
    AddData("x", "a\\ ");
    AddData("y", "b");
    const std::string text = Written(true);
    EXPECT_EQ(text, "[A]\r\n  x =a\\ \r\n  y =b\r\n");
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), Tree{Section("A", {Data("x", "a  y =b")})});
}

TEST_F(Writer, MarkInAValueComesBackAsALineFeed) {
    EXPECT_EQ(LineOf("<<\\n>>", true), "  x =<<\\n>>\r\n");
    EXPECT_EQ(CycleOf("<<\\n>>", true), "\n");
}

TEST_F(Writer, NamesThatReadDifferentlyAreWritten) {
    AddSection();
    AddData(";a", "1");
    AddData("[b", "2");
    AddData("}c", "3");
    const std::string text = Written(true);
    EXPECT_EQ(text, "[A]\r\n  ;a =1\r\n  [b =2\r\n  }c =3\r\n");
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), (Tree{Section("A", {}), Section("b =2\n  }c =3\n", {})})) << "a comment, a section";
    EXPECT_THAT(reports.Take(), IsEmpty());
}

TEST_F(Writer, EmptySectionNameIsWritten) {
    AddSection("");
    AddData("x", "1");
    EXPECT_EQ(Written(true), "[]\r\n  x =1\r\n");
}

TEST_F(Writer, ElementsWithoutNameOrTextAreLeftOut) {
    AddSection();
    AddData("a", "1");
    section->InsertElement(new Zr::CZrEnvDataElement("noText", static_cast<const char *>(nullptr)));
    section->InsertElement(new Zr::CZrEnvDataElement("bad=name", "2"));
    auto *nameless = new Zr::CZrEnvBlock("bad=name");
    nameless->InsertElement(new Zr::CZrEnvDataElement("below", "3"));
    section->InsertElement(nameless);
    AddData("z", "");
    EXPECT_EQ(Written(true), "[A]\r\n  a =1\r\n  z =\r\n");
    EXPECT_THAT(reports.Take(), IsEmpty());
}

TEST_F(Writer, SectionInsideABlockHasNoEnd) {
    AddSection();
    auto *inner = new Zr::CZrEnvSection("Inner");
    inner->InsertElement(new Zr::CZrEnvDataElement("x", "1"));
    section->InsertElement(inner);
    AddData("y", "2");
    EXPECT_EQ(Written(true), "[A]\r\n  [Inner]\r\n    x =1\r\n  y =2\r\n");
}

class StrangeElement : public Zr::CZrEnvElement {
public:
    StrangeElement() : CZrEnvElement("strange") {}
};

TEST_F(Writer, UnknownClassIsReportedAndLeftOut) {
    AddSection();
    section->InsertElement(new StrangeElement);
    AddData("x", "1");
    EXPECT_EQ(Written(true), "[A]\r\n  x =1\r\n");
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Unknown env-Element")));
}

// ---- Folds

std::vector<std::size_t> LineLengths(const std::string &text) {
    std::vector<std::size_t> lengths;
    for (std::size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2)
        lengths.push_back(end - at);
    return lengths;
}

TEST_F(Writer, FirstLineHolds89CharactersAndLaterOnes90) {
    const std::string value(200, 'v');
    EXPECT_THAT(LineLengths(LineOf(value, true)), ElementsAre(90, 91, 26)); // 205 characters: 89, 90, 26
    EXPECT_EQ(LineOf(value, true), "  x =" + std::string(84, 'v') + "\\\r\n" + std::string(90, 'v') + "\\\r\n" +
                                       std::string(26, 'v') + "\r\n");
    EXPECT_EQ(CycleOf(value, true), value);
    EXPECT_EQ(LineOf(value, false), "  x =" + value + "\r\n");
}

TEST_F(Writer, FoldAtTheVeryEndLeavesAnEmptyLine) {
    EXPECT_EQ(LineOf(std::string(84, 'v'), true), "  x =" + std::string(84, 'v') + "\\\r\n\r\n");
    EXPECT_EQ(CycleOf(std::string(84, 'v'), true), std::string(84, 'v'));
}

TEST_F(Writer, FoldWaitsBehindBackslashes) {
    for (const std::size_t run : {1u, 2u, 5u, 50u}) {
        const std::string value = std::string(84 - 1, 'v') + std::string(run, '\\') + std::string(200, 'w');
        EXPECT_EQ(LineOf(value, true).find("w\\\r\n"), 5 + 83 + run) << run;
        EXPECT_EQ(CycleOf(value, true), value) << run;
    }
}

TEST_F(Writer, FoldThatWaitedForAWholeWidthComesNoMore) {
    const std::string value = std::string(83, 'v') + std::string(91, '\\') + std::string(400, 'w');
    EXPECT_EQ(LineOf(value, true), "  x =" + value + "\r\n");
    EXPECT_EQ(CycleOf(value, true), value);
}

TEST_F(Writer, FoldsFallInNamesMarksAndHeads) {
    const std::string name(100, 'n');
    AddSection(name.c_str());
    section->InsertElement(new Zr::CZrEnvBlock(name.c_str()));
    AddData("x", std::string(82, 'v') + "\nw");
    EXPECT_EQ(Written(true), "[" + std::string(88, 'n') + "\\\r\n" + std::string(12, 'n') + "]\r\n  " +
                                 std::string(87, 'n') + "\\\r\n" + std::string(13, 'n') +
                                 " ={\r\n  }\r\n  x =" + std::string(82, 'v') + "<<\\\r\n\\n>>w\r\n");
}

// A fold there reads as two backslashes with blanks between them, of which only the first one is looked at.
TEST_F(Writer, FoldBehindABackslashAndABlankIsNotReadBack) {
    const std::string value = std::string(82, 'v') + "\\ w";
    EXPECT_EQ(LineOf(value, true), "  x =" + std::string(82, 'v') + "\\ \\\r\nw\r\n");
    const std::string text = "[A]\r\n" + LineOf(value, true) + "  y =1\r\n";
    ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(TreeOf(*env), (Tree{Section("A", {Data("x", std::string(82, 'v') + "\\ \\"), Data("w\n  y", "1")})}));
}

TEST_F(Writer, FoldBehindABlankDoesNotHarm) {
    const std::string value = std::string(83, 'v') + " w";
    EXPECT_EQ(LineOf(value, true), "  x =" + std::string(83, 'v') + " \\\r\nw\r\n");
    EXPECT_EQ(CycleOf(value, true), value);
}

// ---- Null, no memory

TEST_F(Writer, NullEnvironmentIsNotWritten) {
    EXPECT_FALSE(Zr::CZrEnvWriter(false).WriteFile(nullptr, Path("w.env").c_str()));
    EXPECT_FALSE(std::filesystem::exists(folder / "w.env"));
    EXPECT_EQ(Zr::CZrEnvWriter(false).WriteString(nullptr), nullptr);
    EXPECT_THAT(reports.Take(), IsEmpty());
}

// The buffer has 65536 bytes at first and is then doubled. One byte of it is for the text's end.
TEST_F(Writer, TextIsCutWhereTheBufferCannotGrow) {
    AddSection();
    AddData("x", std::string(600000, 'v'));
    AddData("y", "1");
    const std::string whole = Written(false);
    for (const std::size_t capacity : {65536u, 131072u, 262144u, 524288u}) {
        char *text = nullptr;
        bool met = false;
        {
            const Refusal refusal(2 * capacity, 2 * capacity);
            text = env->WriteString(false);
            met = refusal.Met();
        }
        ASSERT_NE(text, nullptr);
        EXPECT_TRUE(met) << capacity;
        EXPECT_TRUE(text == whole.substr(0, capacity - 1)) << capacity << ", " << std::strlen(text);
        Zr::CZrEnv::FreeString(text);
        EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can not allocate buffer")));
    }
}

// With little memory the buffer is halved, plus one: 65536, 32769, 16385; then it grows by 65536 at a time.
TEST_F(Writer, BufferIsHalvedUntilThereIsMemory) {
    AddSection();
    AddData("x", std::string(300000, 'v'));
    AddData("y", "1");
    const std::string whole = Written(true);
    const std::string path = Path("w.env");
    char *text = nullptr, *cut = nullptr;
    bool metByString = false, metByFile = false, metByCut = false, written = false;
    {
        const Refusal refusal(32769, 65536, 2);
        text = env->WriteString(true);
        metByString = refusal.Met();
    }
    {
        const Refusal refusal(32769, 65536, 2);
        written = env->WriteFile(path.c_str(), true);
        metByFile = refusal.Met();
    }
    EXPECT_THAT(reports.Take(), IsEmpty());
    {
        const Refusal refusal(32769, 16385 + 65536, 3);
        cut = env->WriteString(true);
        metByCut = refusal.Met();
    }
    EXPECT_TRUE(metByString && metByFile && metByCut);
    ASSERT_TRUE(text != nullptr && cut != nullptr);
    EXPECT_TRUE(text == whole);
    EXPECT_TRUE(written);
    EXPECT_TRUE(ReadBytes(path) == whole);
    EXPECT_TRUE(cut == whole.substr(0, 16384));
    EXPECT_THAT(reports.Take(), ElementsAre(Error(Tag, "Can not allocate buffer")));
    Zr::CZrEnv::FreeString(text);
    Zr::CZrEnv::FreeString(cut);
}

// The list of the blocks that are open begins with room for one.
TEST_F(Writer, ExceptionLeavesTheTreeAndNothingOpen) {
    AddSection();
    AddData("x", "1");
    const Tree tree = TreeOf(*env);
    const std::string path = Path("w.env");
    const auto write = [&](bool asFile) {
        const Refusal refusal(sizeof(void *), sizeof(void *));
        if (asFile)
            env->WriteFile(path.c_str(), true);
        else
            Zr::CZrEnv::FreeString(env->WriteString(true));
    };
    EXPECT_THROW(write(false), std::bad_alloc);
    EXPECT_THROW(write(true), std::bad_alloc);
    EXPECT_EQ(TreeOf(*env), tree);
    EXPECT_TRUE(std::filesystem::remove(path)) << "the file was closed";
    EXPECT_EQ(Written(true), "[A]\r\n  x =1\r\n");
}

// ---- Buffers, depth, sizes

TEST_F(Writer, TextsAroundTheBufferSizesComeWhole) {
    for (const std::size_t grain : {65536u, 131072u, 262144u}) {
        for (std::size_t length = grain - 20; length < grain + 5; ++length) {
            const std::string value(length, 'v');
            ASSERT_TRUE(LineOf(value, false) == "  x =" + value + "\r\n") << length;
            ASSERT_TRUE(WrittenAsFile(false) == modeLine + "[A]\r\n  x =" + value + "\r\n") << length;
        }
    }
}

TEST_F(Writer, ValueOfTenMegabytesComesBack) {
    std::string value(10 << 20, 'v');
    for (std::size_t i = 0; i < value.size(); i += 7)
        value[i] = i % 3 == 0 ? '\n' : '\\';
    value.back() = 'v';
    EXPECT_TRUE(CycleOf(value, true) == value);
    EXPECT_TRUE(CycleOf(value, false) == value);
}

struct DeepWriting {
    Zr::CZrEnv *env;
    char *text;
};

void *WriteDeep(void *argument) {
    auto *writing = static_cast<DeepWriting *>(argument);
    writing->text = writing->env->WriteString(true);
    return nullptr;
}

TEST_F(Writer, DepthCostsNoStack) {
    const int levels = 5000;
    std::string text = "[A]\n";
    for (int i = 0; i < levels; ++i)
        text += "b={\n";
    for (int i = 0; i < levels; ++i)
        text += "}\n";
    Read(text);
    pthread_attr_t small;
    ASSERT_EQ(pthread_attr_init(&small), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&small, 128 * 1024), 0);
    pthread_t thread;
    DeepWriting writing{env, nullptr};
    ASSERT_EQ(pthread_create(&thread, &small, WriteDeep, &writing), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&small);
    const std::string written = writing.text;
    Zr::CZrEnv::FreeString(writing.text);
    // Each level has a line of its indentation, 5 characters more and CR LF, and one with 1 character and CR LF; lines
    // beyond the width have folds of 3 bytes only within their own characters, which the indentation does not count as.
    std::size_t withoutFolds = 5;
    for (std::size_t level = 1; level <= static_cast<std::size_t>(levels); ++level)
        withoutFolds += 2 * level + 5 - 1 + 2 + 2 * level + 1 + 2;
    std::string plain;
    for (std::size_t at = 0; at < written.size(); ++at) {
        if (written.compare(at, 3, "\\\r\n") == 0)
            at += 2;
        else
            plain += written[at];
    }
    EXPECT_EQ(plain.size(), withoutFolds);
}

// ---- Against the reference

class WriterReference : public Writer {
protected:
    std::mt19937 random{20131};

    std::string Text(unsigned most, bool name) {
        static const std::string signs = "ab;[]{}\\\\\\\\  \t\n\r<>_09\xFF\x1A\xE4";
        std::string text(name ? "n" : "");
        const auto length = static_cast<unsigned>(random() % most);
        const bool backslashes = random() % 8 == 0;
        for (unsigned i = 0; i < length; ++i)
            text += backslashes && random() % 20 != 0 ? '\\' : signs[random() % signs.size()];
        return text;
    }
    void Fill(Zr::CZrEnvBlock &block, unsigned depth) {
        for (auto left = static_cast<unsigned>(random() % 6); left != 0; --left) {
            const std::string name = Text(random() % 9 == 0 ? 200 : 12, true);
            if (depth != 0 && random() % 3 == 0) {
                auto *inner = new Zr::CZrEnvBlock(name.c_str());
                block.InsertElement(inner);
                Fill(*inner, depth - 1);
            } else {
                const std::string value = Text(random() % 3 == 0 ? 600 : 30, false);
                block.InsertElement(new Zr::CZrEnvDataElement(name.c_str(), value.c_str()));
            }
        }
    }
};

TEST_F(WriterReference, RandomTreesAreWrittenTheSame) {
    for (int i = 0; i < 3000; ++i) {
        env->DeleteEnvironmentSections();
        for (auto left = static_cast<unsigned>(random() % 4); left != 0; --left) {
            AddSection("S");
            Fill(*section, 4);
        }
        const Tree tree = TreeOf(*env);
        for (const bool wrap : {false, true}) {
            const std::string expected = ReferenceWriter(tree, wrap).text;
            ASSERT_EQ(Written(wrap), expected);
            if (i % 20 == 0) {
                ASSERT_EQ(WrittenAsFile(wrap), expected);
            }
        }
    }
}

// Texts whose ends are neither blanks nor backslashes come back as they were, if they hold no mark, no byte 0xFF, and no
// backslash with a blank behind it, where a fold might fall.
TEST_F(WriterReference, OrdinaryTreesComeBack) {
    for (int i = 0; i < 500; ++i) {
        env->DeleteEnvironmentSections();
        AddSection("S");
        for (int left = 0; left < 5; ++left) {
            std::string value = "v" + Text(400, false) + "v";
            for (const char *mark : {"<<\\n>>", "<<\\r>>", "\xFF", "\\ "})
                for (std::size_t at; (at = value.find(mark)) != std::string::npos;)
                    value.erase(at, 1);
            AddData("n", value);
        }
        const Tree tree = TreeOf(*env);
        for (const bool wrap : {false, true}) {
            const std::string text = Written(wrap);
            ASSERT_EQ(env->ReadString(text.c_str(), eEnvReadAuto), Zr::ENV_OK);
            ASSERT_EQ(TreeOf(*env), tree) << text;
            ASSERT_EQ(Written(wrap), text);
        }
    }
}

} // namespace
} // namespace text_test
