// The link to Word, on a system that the test makes up: its registry, version records, windows and starts.
#include <zrclb/winword.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "desktop/word_search.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"
#include "platform/registry.h"
#include "platform/server_programs.h"
#include "platform/temp_folder.h"

namespace {

using namespace zr::platform;
using Texts = std::vector<std::string>;

const std::string class_id = "{000209FF-0000-0000-C000-000000000046}";
const std::string first_key = "CLSID\\" + class_id + "\\LocalServer32";
const std::string second_key = "Wow6432Node\\CLSID\\" + class_id + "\\LocalServer32";
const std::string version_key = "CLSID\\" + class_id + "\\Version";
const std::string older_key = "CLSID\\" + class_id + "\\LocalServer";

constexpr unsigned char record_mark = 0x5A;

// As the library is loaded, before any test.
const bool loaded_at_first = zr::desktop::winword_info_loaded;

// What the made-up system holds, and what was asked of it.
struct World {
    bool class_there = true;
    std::map<std::string, std::string> registry;
    Texts searches; // class names and keys, in their order
    std::size_t record_size = 100;
    bool record_readable = true;
    bool record_sound = true;
    FileVersion version = {16, 3, 2, 1};
    std::string record_path;
    std::vector<std::pair<int, std::string>> windows;
    int dead_window = 0;
    bool starts = true;
    Texts lines; // of starts
    int show = -1;
    std::uint32_t wait = 0;
};

World world;

zr_window WindowOf(int number) {
    return reinterpret_cast<zr_window>(static_cast<zr_value>(number));
}

bool ReadRegistry(RegistryHive hive, const char *key, const char *name, char *out, std::size_t size) {
    EXPECT_EQ(hive, RegistryHive::classes_root);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(size, key == version_key ? 80U : 256U);
    world.searches.emplace_back(key);
    const auto found = world.registry.find(key);
    const bool fits = found != world.registry.end() && found->second.size() < size;
    std::strcpy(out, fits ? found->second.c_str() : "");
    return fits;
}

class WordLink : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        world = World();
        zr::desktop::found_word = {};
        zr::desktop::winword_info_loaded = false;
        ReplaceSearch();
        ReplaceRecords();
        ReplaceWindows();
        m_program = Program("winword.exe");
    }

    static void ReplaceSearch() {
        services.class_id = [](const char *program_id, char *out, std::size_t size) {
            world.searches.emplace_back(program_id);
            EXPECT_EQ(size, class_id.size() + 1);
            std::strcpy(out, world.class_there ? class_id.c_str() : "");
            return world.class_there;
        };
        services.registry_text = ReadRegistry;
    }

    static void ReplaceRecords() {
        services.version_record_size = [](const char *path) {
            world.record_path = path;
            return world.record_size;
        };
        services.read_version_record = [](const char *path, void *record, std::size_t size) {
            EXPECT_EQ(path, world.record_path);
            EXPECT_EQ(size, world.record_size);
            std::memset(record, record_mark, size + 4); // room for four bytes more
            return world.record_readable;
        };
        services.product_version = [](const void *record, FileVersion &out) {
            EXPECT_EQ(*static_cast<const unsigned char *>(record), record_mark);
            if (world.record_sound)
                out = world.version;
            return world.record_sound;
        };
    }

    static void ReplaceWindows() {
        services.top_windows = [](WindowVisitor visit, void *context) {
            for (const auto &[number, title] : world.windows)
                visit(context, WindowOf(number), title.c_str());
        };
        services.is_window_alive = [](zr_window window) {
            return window != nullptr && window != WindowOf(world.dead_window);
        };
        services.start_server = [](char *line, unsigned short show, std::uint32_t milliseconds) {
            world.lines.emplace_back(line);
            world.show = show;
            world.wait = milliseconds;
            std::memset(line, '!', std::strlen(line)); // as the system may do
            return world.starts;
        };
    }

    // Makes a file and answers its path, as a registry would hold it.
    std::string Program(const std::string &below) const {
        const std::filesystem::path path = Folder() / below;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << "program";
        return path.string();
    }
    const std::string &Winword() const { return m_program; }
    std::string Missing() const { return (Folder() / "missing.exe").string(); }

    // What is found: number, version, path.
    static Texts Info() {
        winword_info info;
        std::memset(&info, '#', sizeof info);
        const int number = winword_GetInfo(&info);
        return {std::to_string(number), info.version, info.path};
    }

    // The same, of a search that starts afresh.
    static Texts Search() {
        zr::desktop::winword_info_loaded = false;
        world.searches.clear();
        return Info();
    }

    // The record that stands in the log, without its line number; of the debugger channel only that it got the same.
    static std::string Record() {
        std::string log = TakeLog();
        const std::size_t line = log.find("line ");
        if (line != std::string::npos)
            log.erase(line + 5, log.find(':', line) - line - 5);
        return log;
    }
    static std::string Message(const std::string &text) {
        return Stamp() + "> MESSAGE in prog.exe \"winword\" line :\n  " + text + "!\n\n\n";
    }
    static std::string Error(const std::string &text) {
        return Stamp() + ">ERROR  in prog.exe \"winword\" line :\n  " + text + "!\n\n\n\n\n";
    }

private:
    std::string m_program;
};

TEST(WordInfo, HasTwoTextsOfTheirSizes) {
    EXPECT_EQ(offsetof(winword_info, version), 0U);
    EXPECT_EQ(offsetof(winword_info, path), 80U);
    EXPECT_EQ(sizeof(winword_info), 336U);
}

// ---- The search ----

TEST_F(WordLink, FirstKey_GivesPathAndVersionOfTheFile) {
    world.registry[first_key] = Winword();
    world.registry[second_key] = "never read";
    EXPECT_EQ(Info(), (Texts{"16", "", Winword()}));
    EXPECT_EQ(world.searches, (Texts{"Word.Document", first_key}));
    EXPECT_EQ(world.record_path, Winword());
    EXPECT_EQ(winword_GetVersion(), 16);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, SecondKey_IsReadAfterTheFirst) {
    world.registry[second_key] = Winword();
    EXPECT_EQ(Info(), (Texts{"16", "", Winword()}));
    EXPECT_EQ(world.searches, (Texts{"Word.Document", first_key, second_key}));
    world.registry[first_key] = Missing();
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
}

TEST_F(WordLink, OlderEntry_IsReadAtTheEnd) {
    world.registry[first_key] = Missing();
    world.registry[second_key] = Missing();
    world.registry[version_key] = " 7 .0a";
    world.registry[older_key] = Winword();
    EXPECT_EQ(Info(), (Texts{"7", " 7 .0a", Winword()}));
    EXPECT_EQ(world.searches, (Texts{"Word.Document", first_key, second_key, version_key, older_key}));
    EXPECT_EQ(world.record_path, ""); // its record isn't read
}

TEST_F(WordLink, OlderEntry_CountsItsVersionUpToTheDot) {
    world.registry[older_key] = Winword();
    const std::vector<std::pair<std::string, std::string>> rows = {{"8.0", "8"},
                                                                   {"8", "8"},
                                                                   {"11.22.33", "11"},
                                                                   {"1", "1"},
                                                                   {"0.9", "-1"},
                                                                   {"0", "-1"},
                                                                   {"-3.0", "-1"},
                                                                   {"", "-1"},
                                                                   {".8", "-1"},
                                                                   {"Word.8", "-1"},
                                                                   {"  9  .x", "9"},
                                                                   {"9x.1", "9"},
                                                                   {"99999999999", "2147483647"},
                                                                   {std::string(78, '0') + "5", "5"}};
    for (const auto &[version, number] : rows) {
        world.registry[version_key] = version;
        EXPECT_EQ(Search(), (Texts{number, version, Winword()})) << version;
    }
    world.registry[version_key] = std::string(79, '0') + "5"; // doesn't fit
    EXPECT_EQ(Search(), (Texts{"-1", "", Winword()}));
    world.registry.erase(version_key);
    EXPECT_EQ(Search(), (Texts{"-1", "", Winword()}));
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, OlderEntryWithoutAFile_IsNotFound) {
    world.registry[version_key] = "8.0";
    EXPECT_EQ(Search(), (Texts{"0", "8.0", ""}));
    world.registry[older_key] = "\"" + Missing() + "\"";
    EXPECT_EQ(Search(), (Texts{"0", "8.0", Missing()}));
}

TEST_F(WordLink, WithoutItsClass_IsNotFound) {
    world.class_there = false;
    world.registry[first_key] = Winword();
    EXPECT_EQ(Info(), (Texts{"0", "", ""}));
    EXPECT_EQ(world.searches, Texts{"Word.Document"});
    EXPECT_EQ(winword_GetVersion(), 0);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, ClassWithoutEntries_IsNotFound) {
    EXPECT_EQ(Info(), (Texts{"0", "", ""}));
    EXPECT_EQ(world.searches.size(), 5U);
}

TEST_F(WordLink, PathInQuotes_IsKeptWithoutThem) {
    const std::string path = Program("Word 16/winword.exe");
    for (const std::string &key : {older_key, second_key, first_key}) {
        world.registry[key] = "\"" + path + "\"";
        EXPECT_EQ(Search()[2], path) << key;
    }
}

TEST_F(WordLink, PathWithOuterBlanks_LosesThemUnlessItHasQuotes) {
    world.registry[first_key] = "  " + Winword() + "   ";
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
    for (const std::string blanks : {" ", "  "}) {
        for (const std::string &text :
             {blanks + "\"" + Winword() + "\"", "\"" + Winword() + "\"" + blanks, blanks + "\"a\"", "\"a\"" + blanks}) {
            world.registry = {{older_key, text}};
            const Texts found = Search();
            EXPECT_EQ(found[0], "0") << text;
            EXPECT_EQ(found[2],
                      text.front() == ' ' ? text.substr(blanks.size()) : text.substr(0, text.size() - blanks.size()));
        }
    }
}

TEST_F(WordLink, QuotesThatEncloseNothing_StayAndOthersGo) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"\"\"", "\"\""},       {"\"", "\""},    {"", ""},       {"   ", ""},
        {"\"a", "\"a"},         {"a\"", "a\""},  {"\"a\"", "a"}, {"\" a \"", " a "},
        {"\"\"a\"\"", "\"a\""}, {"\"\"\"", "\""}};
    for (const auto &[text, path] : rows) {
        world.registry[older_key] = text;
        EXPECT_EQ(Search()[2], path) << text;
    }
}

TEST_F(WordLink, SwitchesBehindThePath_LetTheSearchGoOn) {
    world.registry[first_key] = Winword() + " /Automation";
    world.registry[second_key] = "\"" + Winword() + "\" /Automation";
    EXPECT_EQ(Search(), (Texts{"0", "", ""}));
    EXPECT_EQ(world.searches.size(), 5U);
    world.registry[second_key] = Winword();
    EXPECT_EQ(Search(), (Texts{"16", "", Winword()}));
}

TEST_F(WordLink, PathOfMoreThan255Characters_CountsAsNone) {
    world.registry[older_key] = std::string(255, 'x');
    EXPECT_EQ(Search(), (Texts{"0", "", std::string(255, 'x')}));
    world.registry[older_key] = std::string(256, 'x');
    EXPECT_EQ(Search(), (Texts{"0", "", ""}));
}

// ---- The version record ----

TEST_F(WordLink, FileWithoutRecord_IsFoundWithoutVersion) {
    world.registry[first_key] = Winword();
    world.registry[second_key] = Program("other.exe");
    world.record_size = 0;
    EXPECT_EQ(Info(), (Texts{"-2", "", Winword()}));
    EXPECT_EQ(world.searches.size(), 2U);
    EXPECT_EQ(winword_GetVersion(), -2);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, RecordThatCannotBeRead_IsNoVersion) {
    world.registry[first_key] = Winword();
    world.record_readable = false;
    EXPECT_EQ(Info(), (Texts{"-2", "", Winword()}));
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, RecordWithoutRoot_IsToldByAMessage) {
    world.registry[first_key] = Winword();
    world.record_sound = false;
    EXPECT_EQ(Info(), (Texts{"-2", "", Winword()}));
    EXPECT_EQ(Record(), Message("Could not retrieve Winword version info: VerQueryValue FAILED"));
    EXPECT_TRUE(debugger.empty());
}

TEST_F(WordLink, RecordWithoutMemory_IsToldByAMessage) {
    world.registry[first_key] = Winword();
    {
        const zr::test::HeapRefusal refusal(0);
        EXPECT_EQ(Info(), (Texts{"-2", "", Winword()}));
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ(Record(), Message("Not enough memory"));
    world.record_size = 0x7FFFFFFF;
    EXPECT_EQ(Search(), (Texts{"-2", "", Winword()}));
    EXPECT_EQ(Record(), Message("Not enough memory"));
    EXPECT_TRUE(debugger.empty());
}

TEST_F(WordLink, Record_IsGivenBack) {
    world.registry[first_key] = Winword();
    const zr::test::HeapBalance balance;
    Search();
    world.record_readable = false;
    Search();
    world.record_readable = true;
    world.record_sound = false;
    Search();
    EXPECT_EQ(balance.Open(), 0);
}

TEST_F(WordLink, MissingFile_HasNoVersion) {
    EXPECT_EQ(zr::desktop::ProgramVersion(Missing().c_str()), -2);
    EXPECT_EQ(Record(), Message("Invalid function call: file must exist"));
    EXPECT_EQ(world.record_path, "");
    EXPECT_EQ(zr::desktop::ProgramVersion(Winword().c_str()), 16);
    world.version = {65535, 0, 0, 0};
    EXPECT_EQ(zr::desktop::ProgramVersion(Winword().c_str()), 65535);
    world.version = {0, 5, 0, 0};
    EXPECT_EQ(zr::desktop::ProgramVersion(Winword().c_str()), 0);
}

// ---- What is kept ----

TEST_F(WordLink, NothingIsKeptAtFirst) {
    EXPECT_FALSE(loaded_at_first);
}

TEST_F(WordLink, SearchIsDoneOnce) {
    world.registry[first_key] = Winword();
    EXPECT_EQ(winword_GetVersion(), 16);
    world.searches.clear();
    world.registry.clear();
    world.class_there = false;
    EXPECT_EQ(Info(), (Texts{"16", "", Winword()}));
    char path[256] = "before";
    EXPECT_EQ(winword_GetPath(path), 16);
    EXPECT_EQ(path, Winword());
    EXPECT_EQ(world.searches, Texts{});
}

TEST_F(WordLink, FailedSearchIsNotRepeated) {
    EXPECT_EQ(Info(), (Texts{"0", "", ""}));
    world.searches.clear();
    world.registry[first_key] = Winword();
    EXPECT_EQ(Info(), (Texts{"0", "", ""}));
    EXPECT_EQ(winword_GetVersion(), 0);
    char path[256] = "before";
    EXPECT_EQ(winword_GetPath(path), 0);
    EXPECT_STREQ(path, "before");
    EXPECT_EQ(world.searches, Texts{});
}

TEST_F(WordLink, Path_IsGivenWithNegativeNumbers) {
    world.registry[older_key] = Winword();
    char path[256] = "before";
    EXPECT_EQ(winword_GetPath(path), -1);
    EXPECT_EQ(path, Winword());
    world.registry[first_key] = Program("other.exe");
    world.record_size = 0;
    Search();
    EXPECT_EQ(winword_GetPath(path), -2);
    EXPECT_EQ(path, Program("other.exe"));
}

TEST_F(WordLink, NullArguments_GiveZero) {
    world.registry[first_key] = Winword();
    EXPECT_EQ(winword_GetInfo(nullptr), 0);
    EXPECT_EQ(Record(), Error("NULL pInfo parameter"));
    EXPECT_EQ(debugger.at(1), "NULL pInfo parameter");
    EXPECT_EQ(world.searches, Texts{});
    EXPECT_EQ(zr::desktop::SearchWord(nullptr), 0);
    EXPECT_EQ(Record(), Error("NULL pInfo parameter"));
    EXPECT_EQ(winword_GetPath(nullptr), 0);
    EXPECT_EQ(TakeLog(), "");
    EXPECT_EQ(winword_GetVersion(), 16);
}

// ---- The window ----

TEST_F(WordLink, LastWindowWithTheTitle_IsFound) {
    EXPECT_EQ(winword_FindWindow(), nullptr);
    world.windows = {{1, "Microsoft Word"}, {2, "Microsoft Word - a.doc"}, {3, ""}, {4, "x Microsoft Word"}};
    EXPECT_EQ(winword_FindWindow(), WindowOf(2));
    world.windows = {{5, "microsoft word"}, {6, "Microsoft WORD"}, {7, "Microsoft Wor"}, {8, " Microsoft Word"}};
    EXPECT_EQ(winword_FindWindow(), nullptr);
    world.windows = {{9, "Microsoft Words"}};
    EXPECT_EQ(winword_FindWindow(), WindowOf(9));
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, WindowThatHasGone_IsNone) {
    world.windows = {{1, "Microsoft Word"}, {2, "Microsoft Word"}};
    world.dead_window = 2;
    EXPECT_EQ(winword_FindWindow(), nullptr);
    world.dead_window = 1;
    EXPECT_EQ(winword_FindWindow(), WindowOf(2));
}

// ---- The start ----

TEST_F(WordLink, Run_StartsTheProgramAndWaits) {
    world.registry[first_key] = Winword();
    EXPECT_EQ(winword_Run(0, 3, nullptr), 1);
    EXPECT_EQ(world.lines, Texts{Winword()});
    EXPECT_EQ(world.show, 3);
    EXPECT_EQ(world.wait, 60000U);
    EXPECT_EQ(winword_Run(0, 65535, ""), 1);
    EXPECT_EQ(world.lines.back(), Winword());
    EXPECT_EQ(world.show, 65535);
    EXPECT_EQ(winword_Run(0, 0, "x.doc"), 1);
    EXPECT_EQ(world.lines.back(), Winword() + " x.doc");
    EXPECT_EQ(world.show, 0);
    EXPECT_EQ(TakeLog(), "");
}

TEST_F(WordLink, Run_QuotesAPathWithBlanks) {
    const std::string path = Program("Word 16/winword.exe");
    world.registry[first_key] = path;
    EXPECT_EQ(winword_Run(0, 5, "\"my text.doc\" /n"), 1);
    EXPECT_EQ(world.lines, Texts{"\"" + path + "\" \"my text.doc\" /n"});
}

TEST_F(WordLink, Run_TrimsThePathAndKeepsQuotes) {
    zr::desktop::winword_info_loaded = true;
    zr::desktop::found_word = {{"", "  a b  "}, 16};
    EXPECT_EQ(winword_Run(0, 5, "c"), 1);
    zr::desktop::found_word = {{"", "\"a b\" d"}, 16};
    EXPECT_EQ(winword_Run(0, 5, "c"), 1);
    zr::desktop::found_word = {{"", " a "}, 16};
    EXPECT_EQ(winword_Run(0, 5, " "), 1);
    EXPECT_EQ(world.lines, (Texts{"\"a b\" c", "\"a b\" d c", "a  "}));
}

TEST_F(WordLink, Run_CutsTheLineAt1023Characters) {
    zr::desktop::winword_info_loaded = true;
    zr::desktop::found_word = {{"", "p q"}, 16};
    for (const std::size_t length : {1016U, 1017U, 1018U, 5000U}) {
        EXPECT_EQ(winword_Run(0, 5, std::string(length, 'a').c_str()), 1);
        EXPECT_EQ(world.lines.back(), ("\"p q\" " + std::string(length, 'a')).substr(0, 1023)) << length;
    }
    std::string longest(255, 'p');
    longest[9] = ' ';
    std::strcpy(zr::desktop::found_word.info.path, longest.c_str());
    EXPECT_EQ(winword_Run(0, 5, std::string(1000, 'a').c_str()), 1);
    EXPECT_EQ(world.lines.back(), ("\"" + longest + "\" " + std::string(1000, 'a')).substr(0, 1023));
}

TEST_F(WordLink, Run_CountsNegativeNumbersAsFound) {
    world.registry[older_key] = Winword();
    EXPECT_EQ(winword_Run(0, 5, nullptr), 1);
    world.registry[first_key] = Winword();
    world.record_size = 0;
    EXPECT_EQ(Search()[0], "-2");
    EXPECT_EQ(winword_Run(0, 5, nullptr), 1);
    EXPECT_EQ(world.lines, (Texts{Winword(), Winword()}));
}

TEST_F(WordLink, Run_WithoutWord_IsReported) {
    for (const int force : {0, 1}) {
        EXPECT_EQ(winword_Run(force, 5, "x.doc"), 0);
        EXPECT_EQ(Record(), Error("winword_GetPath FAILED"));
    }
    EXPECT_EQ(debugger.at(1), "winword_GetPath FAILED");
    EXPECT_EQ(winword_EnsureRunning(), 0);
    EXPECT_EQ(Record(), Error("winword_GetPath FAILED"));
    EXPECT_EQ(world.lines, Texts{});
}

TEST_F(WordLink, Run_ThatDoesNotStart_IsReported) {
    world.registry[first_key] = Winword();
    world.starts = false;
    EXPECT_EQ(winword_Run(0, 5, nullptr), 0);
    EXPECT_EQ(Record(), Error("CreateProcess FAILED"));
    EXPECT_EQ(debugger.at(1), "CreateProcess FAILED");
    EXPECT_EQ(winword_EnsureRunning(), 0);
    EXPECT_EQ(Record(), Error("CreateProcess FAILED"));
}

TEST_F(WordLink, Run_WithAWindow_StartsOnlyByForce) {
    world.registry[first_key] = Winword();
    world.windows = {{1, "Microsoft Word - a.doc"}};
    EXPECT_EQ(winword_Run(0, 5, "x.doc"), 1);
    EXPECT_EQ(winword_EnsureRunning(), 1);
    EXPECT_EQ(world.lines, Texts{});
    EXPECT_EQ(world.searches, Texts{});
    EXPECT_EQ(winword_Run(1, 5, "x.doc"), 1);
    EXPECT_EQ(winword_Run(-1, 5, nullptr), 1);
    EXPECT_EQ(world.lines, (Texts{Winword() + " x.doc", Winword()}));
}

TEST_F(WordLink, EnsureRunning_StartsTheProgramShown) {
    world.registry[first_key] = Winword();
    EXPECT_EQ(winword_EnsureRunning(), 1);
    EXPECT_EQ(world.lines, Texts{Winword()});
    EXPECT_EQ(world.show, 5);
}

} // namespace
