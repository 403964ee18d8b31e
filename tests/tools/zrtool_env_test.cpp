// The verbs of `zrtool env`: what they print, their exit codes, and that a failure leaves files as they were.
#include <climits>
#include <cstdlib>
#include <string>
#include <vector>

#include "env/env_probe.h"
#include "env/refused_memory.h"
#include "env_file.h"
#include "zrtool_fixture.h"

namespace {

namespace fs = std::filesystem;

using Words = std::vector<std::string>;

class ZrtoolEnv : public ZrtoolFixture {
protected:
    static constexpr const char *Small = "[Model]\r\n  Title =Frame A\r\n  Loads ={\r\n    Factor =1.35\r\n  }\r\n"
                                         "  Loads ={\r\n    Factor =1.5\r\n  }\r\n[Empty]\r\n";

    // A failure leaves this file, and the folder, as they were.
    void ExpectUnchanged(const Words &words, int code, const std::string &path) {
        const std::string before = Bytes(path);
        const std::vector<std::string> content = FolderContent();
        const Outcome outcome = Env(words);
        EXPECT_EQ(outcome.code, code) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err, "");
        EXPECT_EQ(Bytes(path), before);
        EXPECT_EQ(FolderContent(), content);
    }
};

// The command line

TEST_F(ZrtoolEnv, NoOrUnknownWords_AreUsageOnTheErrorStream) {
    for (const Words &words :
         {Words{}, Words{"env"}, Words{"what"}, Words{"env", "what"}, Words{"tree", "x"}, Words{""}}) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find("usage: zrtool env VERB"), std::string::npos) << outcome.err;
    }
}

TEST_F(ZrtoolEnv, Help_GoesToTheOutput) {
    for (const Words &words : {Words{"--help"}, Words{"-h"}, Words{"help"}, Words{"env", "--help"}}) {
        const Outcome outcome = Run(words);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_NE(outcome.out.find("usage: zrtool env VERB"), std::string::npos);
        EXPECT_EQ(outcome.err, "");
    }
    for (const char *verb : {"tree", "get", "set", "check", "convert"}) {
        const Outcome outcome = Env({verb, "--help"});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out.find(std::string("usage: zrtool env ") + verb + " FILE"), 0u) << outcome.out;
        EXPECT_EQ(outcome.err, "");
    }
    EXPECT_EQ(Run({"--version"}).out.find("zrtool "), 0u);
}

TEST_F(ZrtoolEnv, WrongCommandLines_AreUsage) {
    const std::string file = File("a.zrenv", Small);
    const std::vector<Words> lines = {
        {"tree"},
        {"tree", file, "more"},
        {"tree", file, "--depth"},
        {"tree", file, "--depth", "x"},
        {"tree", file, "--depth", "-1"},
        {"tree", file, "--depth", "1", "--depth", "2"},
        {"tree", file, "--wide"},
        {"tree", file, "--utf8=1"},
        {"get", file, "Model"},
        {"get", file, "Model", "Title", "more"},
        {"get", file, "Model", "Title", "--defaults"},
        {"set", file, "Model", "Title"},
        {"set", file, "Model", "Title", "a", "b"},
        {"set", file, "Model", "Title", "--a"},
        {"check"},
        {"check", file, file},
        {"convert", file},
        {"convert", file, "--to", "xml"},
        {"convert", file, "--to", "json", "--from", "xml"},
        {"convert", file, "--to", "json", "--to", "json"},
        {"convert", file, "--to", "json", "-o", ""},
        {"convert", file, "--to", "json", "-o"},
    };
    for (const Words &words : lines) {
        const Outcome outcome = Env(words);
        EXPECT_EQ(outcome.code, 2) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find("\nusage: zrtool env " + words[0]), std::string::npos) << outcome.err;
    }
    EXPECT_EQ(Bytes(file), Small);
}

TEST_F(ZrtoolEnv, OutputThatFails_IsAnInputOutputFault) {
    std::ostream broken(nullptr);
    std::ostringstream err;
    EXPECT_EQ(zrtool::Run({"env", "tree", File("a.zrenv", Small)}, broken, err), 4);
    EXPECT_EQ(err.str(), "zrtool: the output cannot be written\n");
}

TEST_F(ZrtoolEnv, FilesThatCannotBeRead_AreInputOutputFaults) {
    fs::create_directory(Path("folder"));
    for (const std::string &file : {Path("missing"), Path("folder"), std::string(), Path("folder/missing/x")}) {
        for (const Words &words : {Words{"tree", file}, Words{"get", file, "a", "b"}, Words{"set", file, "a", "b", "c"},
                                   Words{"check", file}, Words{"convert", file, "--to", "json"},
                                   Words{"convert", file, "--from", "json", "--to", "wrapped"}}) {
            const Outcome outcome = Env(words);
            EXPECT_EQ(outcome.code, 4) << words[0] << " " << file;
            EXPECT_EQ(outcome.out, "");
            EXPECT_EQ(outcome.err.find("zrtool: " + file + ": "), 0u) << outcome.err;
        }
    }
    EXPECT_EQ(FolderContent(), std::vector<std::string>{"folder"});
}

TEST_F(ZrtoolEnv, UnreadableFile_IsAnInputOutputFault) {
    const std::string hidden = File("a.zrenv", Small);
    fs::permissions(hidden, fs::perms::none);
    const bool readsAll = std::ifstream(hidden).good(); // an administrator, or a host without such a permission
    const std::string file = readsAll ? "/proc/self/mem" : hidden; // opens, but its first byte can't be read
    const bool canTest = !readsAll || fs::exists(file);
    const Outcome outcome = Env({"check", file});
    fs::permissions(hidden, fs::perms::owner_all);
    if (!canTest)
        GTEST_SKIP() << "this user or this host reads files without permission";
    EXPECT_EQ(outcome.code, 4);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err.find("zrtool: " + file + ": "), 0u) << outcome.err;
}

TEST_F(ZrtoolEnv, DamagedFile_IsToldWithItsPlaceByEveryVerb) {
    const std::string file = File("cut.zrenv", "[A]\n  x =1\n  b ={\n    y =2\n");
    for (const Words &words :
         {Words{"tree", file}, Words{"get", file, "A", "x"}, Words{"set", file, "A", "x", "2"}, Words{"check", file},
          Words{"convert", file, "--to", "json"}, Words{"get", Path("sound.zrenv"), "A", "z", "--defaults", file}}) {
        File("sound.zrenv", Small);
        const Outcome outcome = Env(words);
        EXPECT_EQ(outcome.code, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.find(file + ":5:1: Cbracesymbol expected"), 0u) << outcome.err;
    }
    EXPECT_EQ(Bytes(file), "[A]\n  x =1\n  b ={\n    y =2\n");
}

// tree

TEST_F(ZrtoolEnv, Tree_ShowsSectionsBlocksAndValues) {
    const Outcome outcome = Env({"tree", File("a.zrenv", Small)});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "[Model] (3)\n"
                           "  Title = Frame A\n"
                           "  Loads (1)\n"
                           "    Factor = 1.35\n"
                           "  Loads (1)\n"
                           "    Factor = 1.5\n"
                           "[Empty] (0)\n");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ZrtoolEnv, TreeOfAnEmptyFile_IsEmpty) {
    const Outcome outcome = Env({"tree", File("a.zrenv", "")});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
}

TEST_F(ZrtoolEnv, TreeOptions_ChooseSectionAndDepth) {
    const std::string file = File("a.zrenv", std::string(Small) + "[Model]\n again =1\n");
    EXPECT_EQ(Env({"tree", file, "--depth", "0"}).out, "[Model] (3)\n[Empty] (0)\n[Model] (1)\n");
    EXPECT_EQ(Env({"tree", file, "--section", "Model", "--depth=1"}).out,
              "[Model] (3)\n  Title = Frame A\n  Loads (1)\n  Loads (1)\n[Model] (1)\n  again = 1\n");
    EXPECT_EQ(Env({"tree", "--section", "Empty", file}).out, "[Empty] (0)\n");
    const Outcome missing = Env({"tree", file, "--section", "model"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err, "zrtool: " + file + ": no section [model]\n");
}

TEST_F(ZrtoolEnv, TreeValues_AreShortenedToOneLine) {
    const std::string file =
        File("a.zrenv", "[A]\n long =" + std::string(200, 'x') + "\n exact =" + std::string(60, 'y') +
                            "\n lines =a<<\\n>>b<<\\r>>c\td\x01\n none =\n");
    EXPECT_EQ(Env({"tree", file}).out, "[A] (4)\n  long = " + std::string(57, 'x') + "...\n  exact = " +
                                           std::string(60, 'y') + "\n  lines = a\\nb\\rc\\td?\n  none = \n");
}

TEST_F(ZrtoolEnv, DeepTree_IsShownWithoutRecursion) {
    constexpr int depth = 100000;
    std::string text = "[A]\n";
    for (int i = 0; i < depth; ++i)
        text += "b ={\n";
    text += "x =1\n";
    for (int i = 0; i < depth; ++i)
        text += "}\n";
    const Outcome outcome = Env({"tree", File("a.zrenv", text)});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_NE(outcome.out.find("<100001> x = 1\n"), std::string::npos);
}

// get

TEST_F(ZrtoolEnv, Get_FindsByPathNumberAndTreeSearch) {
    const std::string file = File("a.zrenv", Small);
    EXPECT_EQ(Env({"get", file, "Model", "Title"}).out, "Frame A\n");
    EXPECT_EQ(Env({"get", file, "Model", "Loads@2@Factor"}).out, "1.5\n");
    EXPECT_EQ(Env({"get", file, "Model", "Factor", "--tree"}).out, "1.35\n");
    EXPECT_EQ(Env({"get", file, "Model", "Factor"}).code, 1);
    EXPECT_EQ(Env({"get", file, "Model", "Title", "--origin"}).out, file + ": Frame A\n");
}

TEST_F(ZrtoolEnv, GetOfWhatIsNoValue_IsNotFound) {
    const std::string file = File("a.zrenv", Small);
    for (const Words &place : {Words{"Model", "Loads@3@Factor"}, Words{"model", "Title"}, Words{"Model", "Loads"},
                               Words{"Model", ""}, Words{"Nowhere", ""}, Words{"Model", "Title@x"}}) {
        const Outcome outcome = Env({"get", file, place[0], place[1]});
        EXPECT_EQ(outcome.code, 1) << place[0] << " " << place[1];
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.find("zrtool: " + file + ": [" + place[0] + "] " + place[1]), 0u) << outcome.err;
    }
}

TEST_F(ZrtoolEnv, GetWithDefaults_AsksOneFileAfterTheOther) {
    const std::string front = File("front.zrenv", "[A]\n x =front\n");
    const std::string middle = File("middle.zrenv", "[A]\n x =middle\n y =middle\n");
    const std::string last = File("last.zrenv", "[A]\n x =last\n y =last\n z ={\n w =last\n }\n");
    const Words behind = {"--defaults", middle, "--defaults", last, "--origin"};
    const auto get = [&](const std::string &path, const Words &more) {
        Words words = {"get", front, "A", path};
        words.insert(words.end(), behind.begin(), behind.end());
        words.insert(words.end(), more.begin(), more.end());
        return Env(words);
    };
    EXPECT_EQ(get("x", {}).out, front + ": front\n");
    EXPECT_EQ(get("y", {}).out, middle + ": middle\n");
    EXPECT_EQ(get("z@w", {}).out, last + ": last\n");
    EXPECT_EQ(get("w", {}).code, 1);
    EXPECT_EQ(get("w", {"--tree"}).out, last + ": last\n");
}

TEST_F(ZrtoolEnv, Utf8_TranslatesWordsAndTexts) {
    const std::string file = File("a.zrenv", "[Tr\xE4ger]\n H\xF6he =\x80 5\n");
    EXPECT_EQ(Env({"get", file, "Tr\xC3\xA4ger", "H\xC3\xB6he", "--utf8"}).out, "\xE2\x82\xAC 5\n");
    EXPECT_EQ(Env({"get", file, "Tr\xE4ger", "H\xF6he"}).out, "\x80 5\n");
    EXPECT_EQ(Env({"tree", file, "--utf8"}).out, "[Tr\xC3\xA4ger] (1)\n  H\xC3\xB6he = \xE2\x82\xAC 5\n");
    EXPECT_EQ(Env({"set", file, "Tr\xC3\xA4ger", "H\xC3\xB6he", "\xC3\xBC", "--utf8"}).code, 0);
    EXPECT_EQ(Env({"get", file, "Tr\xE4ger", "H\xF6he"}).out, "\xFC\n");
    ExpectUnchanged({"set", file, "A", "x", "\xE2\x98\x83", "--utf8"}, 2, file);
    ExpectUnchanged({"set", file, "A", "x", "\xFC", "--utf8"}, 2, file);
}

// set

TEST_F(ZrtoolEnv, Set_ChangesOneValueAndNothingElse) {
    const std::string file = File("a.zrenv", Small);
    const Outcome outcome = Env({"set", file, "Model", "Loads@2@Factor", "-1.6"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    std::string expected = Small;
    expected.replace(expected.find("1.5\r"), 3, "-1.6");
    EXPECT_EQ(Bytes(file), expected);
}

TEST_F(ZrtoolEnv, Set_MakesSectionBlocksAndElement) {
    const std::string file = File("a.zrenv", "");
    EXPECT_EQ(Env({"set", file, "New", "a@b@c", "1"}).code, 0);
    EXPECT_EQ(Env({"set", file, "New", "a@b@2@c", ""}).code, 0);
    EXPECT_EQ(Bytes(file),
              "[New]\r\n  a ={\r\n    b ={\r\n      c =1\r\n    }\r\n    b ={\r\n      c =\r\n    }\r\n  }\r\n");
}

TEST_F(ZrtoolEnv, Set_KeepsTheFormOfTheFile) {
    const std::string text = "word " + std::string(100, 'x');
    const std::string wrapped = File("w.zrenv", "[A]\n x =1\n");
    const std::string whole = File("n.zrenv", "__ZR_ENV_READ_MODE__=NOT_WRAPPED\n[A]\n x =1\n");
    EXPECT_EQ(Env({"set", wrapped, "A", "x", text}).code, 0);
    EXPECT_EQ(Env({"set", whole, "A", "x", text}).code, 0);
    EXPECT_EQ(Bytes(whole), "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n[A]\r\n  x =" + text + "\r\n");
    EXPECT_EQ(Bytes(wrapped).find("[A]\r\n  x =word xx"), 0u);
    EXPECT_NE(Bytes(wrapped).find("\\\r\n"), std::string::npos);
    EXPECT_EQ(Env({"get", wrapped, "A", "x"}).out, text + "\n");
}

TEST_F(ZrtoolEnv, SetOfSeveralLines_ReadsBack) {
    const std::string file = File("a.zrenv", Small);
    EXPECT_EQ(Env({"set", file, "Model", "Note", "one\ntwo\rthree"}).err, "");
    EXPECT_NE(Bytes(file).find("  Note =one<<\\n>>two<<\\r>>three\r\n"), std::string::npos);
    EXPECT_EQ(Env({"get", file, "Model", "Note"}).out, "one\ntwo\rthree\n");
}

TEST_F(ZrtoolEnv, SetThatLosesSomething_Warns) {
    const std::string file = File("a.zrenv", Small);
    const auto warning = [&](const std::string &path, const std::string &value) {
        const Outcome outcome = Env({"set", file, "Model", path, value});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        return outcome.err;
    };
    EXPECT_EQ(warning("Title", " blank "), file +
                                               ": warning: does not read back as it was set: [Model] Title: the value "
                                               "' blank ' becomes 'blank'\n");
    EXPECT_EQ(warning("Loads", "1"), file + ": warning: a block with 1 elements becomes a value\n");
    EXPECT_EQ(warning("Title@x", "1"), file + ": warning: the value of Title gives way to a block\n");
    File("a.zrenv", "; comment\n[Model]\n x =1\n");
    EXPECT_EQ(warning("x", "2"), file + ": warning: comments are lost when the file is written\n");
}

TEST_F(ZrtoolEnv, SetWhereNothingCanBe_IsUsageAndChangesNothing) {
    const std::string file = File("a.zrenv", Small);
    ExpectUnchanged({"set", file, "Model", "", "1"}, 2, file);
    ExpectUnchanged({"set", file, "Model", "@", "1"}, 2, file);
    ExpectUnchanged({"set", file, "Model", "a=b", "1"}, 2, file);
    ExpectUnchanged({"set", file, "Model", "x@0", "1"}, 2, file);
    ExpectUnchanged({"set", file, "Mo]del", "x", "1"}, 2, file);
}

TEST_F(ZrtoolEnv, SetOfWhatCannotBeReadAtItsPath_IsUsageAndChangesNothing) {
    const std::string file = File("a.zrenv", Small);
    const auto refusal = [&](const std::string &path) {
        ExpectUnchanged({"set", file, "Model", path, "v"}, 2, file);
        const std::string err = Env({"set", file, "Model", path, "v"}).err;
        return err.substr(0, err.find('\n'));
    };
    const std::string front = "zrtool env set: the value could not be read at [Model] ";
    EXPECT_EQ(refusal("q@2"), front + "'q@2' afterwards: the position skips elements");
    EXPECT_EQ(refusal(";k"), front + "';k' afterwards");
    EXPECT_EQ(refusal("Title@;k"), front + "'Title@;k' afterwards"); // without a word of Title, which stays a value
    EXPECT_EQ(refusal("@"), "zrtool env set: nothing can be set at [Model] '@'");
    EXPECT_EQ(refusal(""), "zrtool env set: nothing can be set at [Model] ''");
}

TEST_F(ZrtoolEnv, SetOfWhatAFileCannotHold_IsUsageAndChangesNothing) {
    const std::string file = File("a.zrenv", Small);
    ExpectUnchanged({"set", file, "Model", "Title", "{"}, 2, file);
    ExpectUnchanged({"set", file, "Model", "Title", "{a=1}"}, 2, file);
}

TEST_F(ZrtoolEnv, SetInAWriteProtectedFile_ChangesNothing) {
    const std::string file = File("a.zrenv", Small);
    fs::permissions(file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    ExpectUnchanged({"set", file, "Model", "Title", "x"}, 4, file);
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
}

// check

TEST_F(ZrtoolEnv, CheckOfSoundFiles_SaysSo) {
    for (const std::string &text : {std::string(Small), std::string(), std::string("\n \n"), std::string("[A]")}) {
        const std::string file = File("a.zrenv", text);
        const Outcome outcome = Env({"check", file});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out, file + ": ok\n");
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(ZrtoolEnv, CheckOfFaults_NamesLineColumnAndText) {
    const std::string file = Path("a.zrenv");
    const auto fault = [&](const std::string &text) {
        File("a.zrenv", text);
        const Outcome outcome = Env({"check", file});
        EXPECT_EQ(outcome.code, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.find(file + ":"), 0u);
        return outcome.err.substr(file.size() + 1, outcome.err.find(';') - file.size() - 1);
    };
    EXPECT_EQ(fault("[A]\n  x =1\n}\n"), "3:1: Section expected\n");
    EXPECT_EQ(fault("[A]\r\n  x =1\r\n  }\r\n"), "3:3: Section expected\n");
    EXPECT_EQ(fault("[A]\n b ={\n  x =1\n[B]\n"), "4:1: Cbracesymbol expected");
    EXPECT_EQ(fault("__ZR_ENV_READ_MODE__=NOT_WRAPPED\n[A]\n=\n"), "3:1: Section expected\n");
    EXPECT_EQ(fault(std::string("[A]\n x =\0\n", 10)), "2:5: a byte of value zero\n");
    EXPECT_NE(fault("[A]\n x =1\n name without sign\n").find("Equal sign expected"), std::string::npos);
}

TEST_F(ZrtoolEnv, CheckOfWhatAWriteLoses_Warns) {
    const std::string file = Path("a.zrenv");
    const auto warning = [&](const std::string &text) {
        File("a.zrenv", text);
        const Outcome outcome = Env({"check", file});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out, file + ": ok\n");
        return outcome.err;
    };
    const std::string comment = "warning: comments are lost when the file is written\n";
    EXPECT_EQ(warning("[A]\n x =1 ; none\n\t ; one\n"), file + ":3:3: " + comment);
    EXPECT_EQ(warning("[A]\n x =1\\\n; none\n"), "");
    EXPECT_EQ(warning("__ZR_ENV_READ_MODE__=\n[A]\n x =1\n;one \\\n"), file + ":4:1: " + comment);
    EXPECT_EQ(warning("[A]\n x =1\\\\\n;one\n"), file + ":3:1: " + comment);
    EXPECT_EQ(warning("before\n[A]\n"),
              file + ":1:1: warning: text in front of the first section is lost when the file is written\n");
    EXPECT_EQ(warning("__ZR_ENV_READ_MODE__=\n[A]\n x =a\\\n"),
              file + ": warning: changes when it is written and read again: [A] x: the value 'a\\' becomes 'a\\\\'\n");
    EXPECT_NE(warning("[A]\n a\nb =1\n").find("[A] a\nb: in its place 'a<<\\n>>b' is read"), std::string::npos);
}

TEST_F(ZrtoolEnv, TextBehindTheEndMark_IsNotRead) {
    const std::string file = File("a.zrenv", "[A]\n x =1\n\x1A[B\n");
    EXPECT_EQ(Env({"tree", file}).out, "[A] (1)\n  x = 1\n");
}

TEST_F(ZrtoolEnv, TextBehindTheEndMark_IsToldWhereAWriteLosesIt) {
    const std::string text = "[A]\r\n  x =1\r\n \x1A[B]\r\n";
    const std::string file = File("a.zrenv", text);
    const std::string warning = file + ":3:2: warning: text behind byte 0x1A is lost when the file is written\n";
    EXPECT_EQ(Env({"check", file}).err, warning);
    const Outcome converted = Env({"convert", file, "--to", "wrapped"});
    EXPECT_EQ(converted.err, warning);
    EXPECT_EQ(converted.out, "[A]\r\n  x =1\r\n");
    EXPECT_EQ(Bytes(file), text);
    const Outcome set = Env({"set", file, "A", "x", "2"});
    EXPECT_EQ(set.code, 0);
    EXPECT_EQ(set.err, warning);
    EXPECT_EQ(Bytes(file), "[A]\r\n  x =2\r\n");
    File("a.zrenv", "[A]\n x =1\n\x1A\r\n\x1A"); // a mark with nothing behind it loses nothing
    EXPECT_EQ(Env({"check", file}).err, "");
}

TEST_F(ZrtoolEnv, CheckOfWhatCannotBeWritten_WarnsAndIsOk) {
    const std::string file = File("a.zrenv", "[A]\n x =" + std::string(200000, 'y') + "\n");
    const zr::test::Refusal refusal(131072, 131072, INT_MAX); // the second block that a text is written to
    const Outcome outcome = Env({"check", file});
    EXPECT_FALSE(refusal.Untouched());
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, file + ": ok\n");
    EXPECT_EQ(outcome.err.find(file + ": warning: cannot be written: "), 0u) << outcome.err;
}

TEST_F(ZrtoolEnv, CheckDeepOfSoundFiles_SaysSo) {
    const std::string empty = File("empty.zrenv", "");
    for (const std::string &file : {empty, Example("frame.zrenv")}) {
        const Outcome outcome = Env({"check", "--deep", file});
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out, file + ": ok\n");
        EXPECT_EQ(outcome.err, Env({"check", file}).err);
    }
    const std::string fault = File("a.zrenv", "[A]\n}\n");
    EXPECT_EQ(Env({"check", fault, "--deep"}).err, Env({"check", fault}).err);
}

// The look at the tree takes memory for every name, whatever its outcome.
TEST_F(ZrtoolEnv, CheckDeep_LooksAtTheTree) {
    std::string text = "[A]\n";
    for (int i = 0; i < 100; ++i)
        text += "x" + std::to_string(i) + " =1\n";
    const std::string file = File("a.zrenv", text);
    const auto allocationsOf = [](const Words &words) {
        const zr::test::MemoryBalance memory;
        EXPECT_EQ(Env(words).code, 0);
        return memory.Given();
    };
    allocationsOf({"check", file}); // leaves chunks for later
    EXPECT_GE(allocationsOf({"check", file, "--deep"}), allocationsOf({"check", file}) + 100);
}

TEST_F(ZrtoolEnv, CheckDeepOfADamagedTree_NamesThePlace) {
    std::ostringstream out;
    std::ostringstream err;
    const zrtool::Session session{out, err, true};
    zrtool::Chain chain;
    Zr::CZrEnv &env = chain.Add();
    ASSERT_EQ(env.ReadString("[A]\n b ={\n  geh\xF6rt ={\n   x =1\n  }\n }\n", Zr::eEnvReadAuto), Zr::ENV_OK);
    zrtool::CheckTree(session, "a.zrenv", env);
    const auto fault = [&] {
        try {
            zrtool::CheckTree(session, "a.zrenv", env);
        } catch (const zrtool::Failure &failure) {
            EXPECT_EQ(failure.code, zrtool::BadData);
            return std::string(failure.what());
        }
        return std::string("none");
    };
    std::uint32_t &count = Zr::CZrEnvProbe::Count(*env.GetBlock("A", "b@geh\xF6rt", true, false));
    count = 2;
    EXPECT_EQ(fault(), "a.zrenv: the tree in memory is unsound: [A] b@geh\xC3\xB6rt: counts 2 children, has 1");
    count = 1;
    Zr::CZrEnvProbe::SectionCount(env) = 2;
    EXPECT_EQ(fault(), "a.zrenv: the tree in memory is unsound: counts 2 sections, has 1");
    Zr::CZrEnvProbe::SectionCount(env) = 1;
    EXPECT_EQ(fault(), "none");
}

TEST_F(ZrtoolEnv, ExampleCutAtEveryByte_IsSoundOrToldWithItsPlace) {
    const std::string whole = Bytes(Example("frame.zrenv"));
    int sound = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const std::string file = File("cut.zrenv", whole.substr(0, length));
        const Outcome outcome = Env({"check", file});
        if (outcome.code == 0) {
            ++sound;
        } else {
            ASSERT_EQ(outcome.code, 3) << length;
            ASSERT_EQ(outcome.err.find(file + ":"), 0u) << outcome.err;
            ASSERT_NE(outcome.err.find("expected"), std::string::npos) << outcome.err;
        }
    }
    EXPECT_GT(sound, 100);
    EXPECT_LT(sound, static_cast<int>(whole.size()) - 100);
}

// convert

TEST_F(ZrtoolEnv, Convert_ReadsAndWritesEveryForm) {
    const std::string file = File("a.zrenv", Small);
    EXPECT_EQ(Env({"convert", file, "--to", "wrapped"}).out, Small);
    EXPECT_EQ(Env({"convert", file, "--to", "notwrapped"}).out,
              std::string("__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n") + Small);
    const Outcome json = Env({"convert", file, "--to", "json"});
    EXPECT_EQ(json.out.find("{\n  \"zrenv\": 1,\n"), 0u);
    EXPECT_EQ(json.err, "");
    const std::string jsonFile = File("a.json", json.out);
    EXPECT_EQ(Env({"convert", jsonFile, "--from", "json", "--to", "wrapped"}).out, Small);
    EXPECT_EQ(Env({"convert", jsonFile, "--from", "json", "--to", "json"}).out, json.out);
    EXPECT_EQ(Env({"convert", jsonFile, "--to", "json"}).code, 3); // JSON is no environment text
}

TEST_F(ZrtoolEnv, Example_ComesBackThroughEveryForm) {
    for (const char *name : {"frame.zrenv", "defaults.zrenv"}) {
        const std::string wrapped = Path("wrapped");
        ASSERT_EQ(Env({"convert", Example(name), "--to", "wrapped", "-o", wrapped}).code, 0);
        ASSERT_EQ(Env({"convert", Example(name), "--to", "json", "-o", Path("json")}).code, 0);
        ASSERT_EQ(Env({"convert", Path("json"), "--from", "json", "--to", "notwrapped", "-o", Path("whole")}).code, 0);
        ASSERT_EQ(Env({"convert", Path("whole"), "--to", "json", "-o", Path("json2")}).code, 0);
        ASSERT_EQ(Env({"convert", Path("whole"), "--to", "wrapped", "-o", Path("wrapped2")}).code, 0);
        EXPECT_EQ(Bytes(Path("json2")), Bytes(Path("json")));
        EXPECT_EQ(Bytes(Path("wrapped2")), Bytes(wrapped));
        EXPECT_EQ(Env({"tree", wrapped}).out, Env({"tree", Example(name)}).out);
        EXPECT_EQ(Env({"check", wrapped}).err, "");
    }
}

TEST_F(ZrtoolEnv, ConvertOfBadJson_IsToldWithItsPlaceAndWritesNothing) {
    const std::string file = File("a.json", "{\"zrenv\": 1,\n \"sections\": [,]}");
    const std::string out = File("out.zrenv", Small);
    ExpectUnchanged({"convert", file, "--from", "json", "--to", "wrapped", "-o", out}, 3, out);
    EXPECT_EQ(Env({"convert", file, "--from", "json", "--to", "wrapped"}).err.find(file + ":2:15: "), 0u);
}

TEST_F(ZrtoolEnv, JsonCutAtEveryByte_IsBadData) {
    const std::string json = Env({"convert", File("a.zrenv", Small), "--to", "json"}).out;
    for (std::size_t length = 0; length + 1 < json.size(); ++length) { // the last byte is a line feed
        const std::string file = File("cut.json", json.substr(0, length));
        const Outcome outcome = Env({"convert", file, "--from", "json", "--to", "wrapped"});
        ASSERT_EQ(outcome.code, 3) << length;
        ASSERT_EQ(outcome.out, "");
        ASSERT_EQ(outcome.err.find(file + ":"), 0u) << outcome.err;
    }
}

TEST_F(ZrtoolEnv, ConvertToWhatCannotBeWritten_IsAnInputOutputFault) {
    const std::string file = File("a.zrenv", Small);
    fs::create_directory(Path("folder"));
    ExpectUnchanged({"convert", file, "--to", "json", "-o", Path("folder")}, 4, file);
    ExpectUnchanged({"convert", file, "--to", "json", "-o", Path("missing/out")}, 4, file);
}

TEST_F(ZrtoolEnv, ConvertOfWhatTextCannotHold_Warns) {
    const std::string file = File("a.json", "{\"zrenv\":1,\"sections\":[{\"name\":\"A\",\"children\":["
                                            "{\"name\":\"x\",\"value\":null},{\"name\":\"y\",\"value\":\" 1\"}]}]}");
    const Outcome outcome = Env({"convert", file, "--from", "json", "--to", "wrapped"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.out, "[A]\r\n  y = 1\r\n");
    EXPECT_EQ(outcome.err, file + ": warning: does not read back as it is: [A] x: in its place 'y' is read\n");

    File("a.json", "{\"zrenv\":1,\"sections\":[{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":\"{\"}]}]}");
    const Outcome brace = Env({"convert", file, "--from", "json", "--to", "wrapped"});
    EXPECT_EQ(brace.code, 3);
    EXPECT_EQ(brace.out, "");
}

// The program itself

TEST_F(ZrtoolEnv, Program_RunsAndAnswersWithItsExitCode) {
    std::string program = ZRTOOL_PROGRAM;
    std::string file = File("a.zrenv", Small);
    std::string out;
    int runs = 0;
    const bool desktop = HostIsDesktop();
    const auto run = [&](const std::string &words) {
        // A file for each run: a process that the system starts along with the first one may hold its output open.
        out = Path("out" + std::to_string(++runs));
        // The desktop's shell takes one pair of quotes off a line that starts with one.
        const std::string line = "\"" + program + "\" " + words + " >\"" + out + "\" 2>&1";
        const int status = std::system((desktop ? "\"" + line + "\"" : line).c_str());
        return desktop ? status : status / 256;
    };
    if (desktop)
        std::replace(program.begin(), program.end(), '/', '\\');
    EXPECT_EQ(run("env get \"" + file + "\" Model Title"), 0);
    EXPECT_EQ(Bytes(out), "Frame A\n");
    EXPECT_EQ(run("env convert \"" + file + "\" --to wrapped"), 0);
    EXPECT_EQ(Bytes(out), Small);
    EXPECT_EQ(run("env get \"" + file + "\" Model Nothing"), 1);
    EXPECT_EQ(run("env"), 2);
    File("a.zrenv", "[A]\n}");
    EXPECT_EQ(run("env check \"" + file + "\""), 3);
    EXPECT_EQ(run("env check \"" + file + "x\""), 4);
}

} // namespace
