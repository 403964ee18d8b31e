// The env_ functions with every single allocation refused in turn, alone and with all behind it: what is told, what the
// result is, that nothing leaks, that both trees stay sound, and that the call does its work once there is memory again.
#include <cstring>
#include <functional>
#include <string>

#include "env/env_probe.h"
#include "env/refused_memory.h"
#include "env/report_capture.h"
#include "env/tree_checker.h"
#include "frame/refused_heap.h"
#include "function_fixture.h"

#include "env/chunks.h"
#include "platform/services.h"

namespace zr::test {
namespace {

const char *kModel = "[Model of a long name]\n"
                     "Title of a long name =Frame A\n"
                     "outer ={\nmiddle ={\ninner ={\na long name at the end =1\na long name at the end =2\n}\n}\n}\n"
                     "[Other]\nx =1\nblock ={\ny =2\n}\nvalue =3\n"
                     "[Many]\nn0 =0\nn1 =1\nn2 =2\nn3 =3\nn4 =4\nn5 =5\nn6 =6\nn7 =7\nn8 =8\nn9 =9\n";
const char *kSection = "Model of a long name";
const char *kPath = "outer@middle@inner";
const char *kLeaf = "a long name at the end"; // searched for through all blocks

// The same with more than one chunk of nodes, with names and values too long for a chunk, and with many of one block.
const std::string kLongModel = [] {
    std::string text = kModel + std::string("[") + std::string(3000, 's') + "]\n" + std::string(3000, 'n') + " =1\n" +
                       std::string(9000, 'b') + " ={\nx =" + std::string(3000, 'v') +
                       "\nlong =" + std::string(70000, 'l') + "\n}\nfolded na\\\nme =fol\\\nded\n[Very many]\n";
    for (int i = 0; i < 100; ++i)
        text += "n" + std::to_string(i) + " =" + std::string(900, static_cast<char>('a' + i % 26)) + "\n";
    return text;
}();

// A call with two environments of the model at hand, the second one being the default of none.
using Call = std::function<int(zr_env env, zr_env other)>;

// What a call may do without memory beyond what is asked of the others.
enum Freedom : unsigned {
    None = 0,
    MaySayNothing = 1,    // its failure is not reported
    MayLeaveNameless = 2, // an element that finds no memory for its new name has none then, which is no failure
    MayNotBeRepeated = 4, // what is done by the time of a failure makes the next call another one
    MayGoOnCut = 8        // a text that cannot grow is cut, which is told and no failure
};

struct Case {
    const char *function;
    const char *tag; // of the report; null where the tree below tells, or none is due
    int done;        // the result with enough memory
    int failure;     // and without
    Call call;
    unsigned freedom = None;
};

int Closed(zr_env env) {
    return env ? env_close(env, 0) + 1 : 0;
}

void Count(zr_env, const char *, const char *, void *user) {
    ++*static_cast<int *>(user);
}

void Ignore(zr_env, const char *, const char *, void *) {}

bool IsTold(const Reports &reports, const char *tag) {
    return std::find(reports.begin(), reports.end(), Error(tag, "Out of memory")) != reports.end();
}

// Whether a file holds what is written of an environment; with memory for that.
bool Holds(const std::string &path, zr_env env) {
    const Unrefused unrefused;
    std::string bytes(static_cast<std::size_t>(std::filesystem::file_size(path)), '\0');
    std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    char *written = env_write_to_string(env);
    const bool same = written && bytes == written;
    env_free_string(written);
    return same;
}

// What memory that is missing is told as, by itself or by what could not be made of it.
bool IsOfMemory(const Report &report) {
    for (const char *text :
         {"Out of memory", "CZrEnvReader::AccumulateString : Out of memory", "Can not allocate buffer",
          "Can't open to read:", "Can't open to write:", "Wrong section name: ", "unbekannter Fehler"})
        if (report.texts.at(0) == text)
            return true;
    return false;
}

// An environment to work on, with a default behind it, and one more; when they have gone, nothing is left of them.
class Pair {
public:
    Pair() { zr::env::DropSpareChunks(); }

    std::string Trees() const { return Describe(*env.operator->()) + "\n" + Describe(*other.operator->()); }

    void ExpectSoundAndUsable() const {
        EXPECT_THAT(Zr::CZrEnvProbe::Holders(*behind.operator->()), testing::ElementsAre(env.operator->()));
        EXPECT_EQ("[Behind]far=1", Describe(*behind.operator->()));
        for (const EnvHandle *each : {&env, &other, &behind}) {
            using Check = Zr::CZrEnvTreeCheck;
            EXPECT_EQ("", Check::OfEnvironment(*each->operator->(), Check::Indexes::AsTheyAre).what);
            EXPECT_EQ("", Check::OfEnvironment(*each->operator->(), Check::Indexes::Build).what);
            EXPECT_EQ(env_put(*each, "Later", "later@a@b", "y"), 0);
            EXPECT_EQ(ValueOf(*each, "Later", "later@a@b"), "y");
            EXPECT_EQ(env_delete(*each, "Later", nullptr), 0);
        }
    }

    EnvHandle behind{"[Behind]\nfar =1\n", 5};
    EnvHandle env{kModel, 3, behind};
    EnvHandle other{kModel, 4};
};

// Which allocations are refused.
enum class Way {
    OneNew,
    AllNew,
    AllNewAndTheLog, // nothing is heard then
    OneOfTheHeap
};

class EnvMemory : public testing::Test {
protected:
    // Runs the case with each of its allocations refused in turn, until there are no more.
    void RunWithEveryRefusal(const Case &rCase) {
        SCOPED_TRACE(rCase.function);
        Whole whole;
        {
            const Pair pair;
            m_reports.Take();
            ASSERT_EQ(rCase.done, rCase.call(pair.env, pair.other));
            whole = {pair.Trees(), m_reports.Take()};
        }
        bool anyTold = false;
        for (const Way way : {Way::OneNew, Way::AllNew, Way::AllNewAndTheLog, Way::OneOfTheHeap})
            for (int others = 0; RunWithOneRefusal(rCase, way, others, whole, anyTold) && !HasFailure(); ++others)
                ASSERT_LT(others, 10000);
        EXPECT_TRUE(HasFailure() || anyTold == (rCase.tag != nullptr));
    }

    ReportCapture m_reports;

private:
    // What comes of a call with enough memory.
    struct Whole {
        std::string trees;
        Reports reports;
    };

    // False when nothing was left to refuse.
    bool RunWithOneRefusal(const Case &rCase, Way way, int others, const Whole &whole, bool &rAnyTold) {
        SCOPED_TRACE("way " + std::to_string(static_cast<int>(way)) + ", behind " + std::to_string(others));
        zr::env::DropSpareChunks();
        const MemoryBalance memory;
        const HeapBalance heap;
        bool met = false;
        {
            const Pair pair;
            m_reports.Take();
            const int result = Refusing(rCase, way, others, pair, met);
            const Reports reports = m_reports.Take();
            const bool isHeard = way != Way::AllNewAndTheLog;
            if (result == rCase.failure && met) {
                if (isHeard)
                    ExpectTold(rCase, reports);
                ExpectRepeatable(rCase, pair, whole);
                rAnyTold = rAnyTold || (rCase.tag && IsTold(reports, rCase.tag));
            } else {
                EXPECT_EQ(rCase.done, result);
                const bool isCut =
                    (rCase.freedom & MayGoOnCut) && std::any_of(reports.begin(), reports.end(), IsOfMemory);
                EXPECT_TRUE(isCut || !isHeard || reports == whole.reports) << testing::PrintToString(reports);
                EXPECT_TRUE(isCut || (!isHeard && (rCase.freedom & MayGoOnCut)) || (rCase.freedom & MayLeaveNameless) ||
                            whole.trees == pair.Trees())
                    << pair.Trees();
                pair.ExpectSoundAndUsable();
            }
        }
        zr::env::DropSpareChunks();
        EXPECT_EQ(0, memory.Open()) << "something leaks";
        EXPECT_EQ(0, heap.Open()) << "something leaks";
        return met;
    }

    // Where no memory is left for the log, what is told would not be heard: of all files it alone is appended to.
    static std::FILE *OpenLog(const char *name, const char *mode) {
        if (*mode != 'a')
            return zr::platform::backend::OpenText(name, mode);
        const Unrefused unrefused;
        return zr::platform::backend::OpenText(name, mode);
    }

    static int Refusing(const Case &rCase, Way way, int others, const Pair &pair, bool &rMet) {
        if (way == Way::OneOfTheHeap) {
            const HeapRefusal refusal(others);
            const int result = rCase.call(pair.env, pair.other);
            rMet = refusal.Met();
            return result;
        }
        if (way != Way::AllNewAndTheLog)
            zr::platform::services.open_text = OpenLog;
        const NthAllocation refusal(others, way != Way::OneNew);
        const int result = rCase.call(pair.env, pair.other);
        rMet = refusal.Met();
        zr::platform::services.open_text = zr::platform::backend::OpenText;
        return result;
    }

    // Once, and of a text that was cut before that.
    static void ExpectTold(const Case &rCase, const Reports &reports) {
        const std::size_t fewest = rCase.freedom & MaySayNothing ? 0 : 1;
        const std::size_t most = rCase.freedom & MayGoOnCut ? 4 : 1;
        EXPECT_THAT(reports.size(), testing::AllOf(testing::Ge(fewest), testing::Le(most)));
        EXPECT_TRUE(std::all_of(reports.begin(), reports.end(), IsOfMemory)) << testing::PrintToString(reports);
    }

    static void ExpectRepeatable(const Case &rCase, const Pair &pair, const Whole &whole) {
        pair.ExpectSoundAndUsable();
        if (rCase.freedom & MayNotBeRepeated)
            return;
        EXPECT_EQ(rCase.done, rCase.call(pair.env, pair.other));
        EXPECT_EQ(whole.trees, pair.Trees());
        pair.ExpectSoundAndUsable();
    }
};

TEST_F(EnvMemory, CoreFunctionsReportAndGiveTheirErrorValue) {
    const Case cases[] = {
        {"env_open", nullptr, 1, 0, [](zr_env env, zr_env) { return Closed(env_open(1, env)); }, MaySayNothing},
        {"env_open_subenv", nullptr, 1, 0,
         [](zr_env env, zr_env) { return Closed(env_open_subenv(env, kSection, kPath, 1)); }, MaySayNothing},
        {"env_create_subenv", nullptr, 1, 0,
         [](zr_env env, zr_env) { return Closed(env_create_subenv(env, kSection, "new@of a long name indeed")); },
         MaySayNothing},
        {"env_attach_as_last_default", "Env_core", 1, 0,
         [](zr_env env, zr_env other) {
             env_attach_as_last_default(other, env);
             return env_detach_default_chain(other) == env ? 1 : 0;
         }},
        {"env_exist", "Env_core", 1, 0, [](zr_env env, zr_env) { return env_exist(env, kSection, kLeaf, 0); }},
        {"env_exist_data", "Env_core", 1, 0,
         [](zr_env env, zr_env) { return env_exist_data(env, kSection, kLeaf, 0); }},
        {"env_exist_block", "Env_core", 1, 0,
         [](zr_env env, zr_env) { return env_exist_block(env, kSection, "inner", 0); }},
        {"env_check", "Env_core", -1, -10, [](zr_env env, zr_env) { return env_check(env, kSection, kLeaf, 0); }},
        {"env_count_path", "Env_core", 2, -10,
         [](zr_env env, zr_env) { return env_count_path(env, kSection, kLeaf, 0); }},
        {"env_count_elements", "Env_core", 2, -10,
         [](zr_env env, zr_env) { return env_count_elements(env, kSection, "inner", 0); }},
        {"env_get_core", "Env_core", -1, -10,
         [](zr_env env, zr_env) {
             const char *name = nullptr;
             const int result = env_get_core(env, kSection, "inner", 0, 1, nullptr, &name, nullptr);
             EXPECT_STREQ(name, result == -10 ? nullptr : kLeaf);
             return result;
         }},
        {"env_rename", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_rename(env, kSection, "Title of a long name", "x"); }},
        {"env_rename, to a longer name", "Env_core", 0, -10,
         [](zr_env env, zr_env) {
             return env_rename(env, "Other", "value", "a longer name than before, for all memory");
         },
         MayLeaveNameless},
        {"env_rename, of a section", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_rename(env, "Other", nullptr, "Another name, too long for its place"); },
         MayLeaveNameless},
        {"env_rename, twice and back", "Env_core", 0, -10,
         [](zr_env env, zr_env) {
             const int first = env_rename(env, "Other", "value", "a");
             const int second = first ? first : env_rename(env, "Other", "a", "z");
             return second ? second : env_rename(env, "Other", "x", "y");
         },
         MayNotBeRepeated},
        {"env_rename, among many", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_rename(env, "Many", "n5", "n0"); }},
        {"env_count_path, among many", nullptr, 1, -10,
         [](zr_env env, zr_env) { return env_count_path(env, "Many", "n5", 1); }},
        {"env_insert_before, among many", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_insert_before(env, "Many", "n5", "n5"); }},
        {"env_delete", nullptr, 0, -10, [](zr_env env, zr_env) { return env_delete(env, kSection, kPath); }},
        {"env_delete, among many", nullptr, 0, -10, [](zr_env env, zr_env) { return env_delete(env, "Many", "n5"); }},
        {"env_delete, of all", nullptr, 0, -10, [](zr_env env, zr_env) { return env_delete(env, nullptr, nullptr); }},
        {"env_delete, of a section", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_delete(env, kSection, nullptr); }},
        {"env_close, of a chain", nullptr, 1, 0,
         [](zr_env env, zr_env other) {
             const int first = Closed(env_open(1, env));
             const int second = Closed(env_open(2, other));
             return first && second ? 1 : 0;
         },
         MaySayNothing},
        {"env_insert_before", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_insert_before(env, kSection, "outer", "a new one of a long name"); }},
        {"env_insert_before, of a section", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_insert_before(env, "Other", nullptr, "a new one of a long name"); }},
        {"env_traverse", "Env_core", 0, -10,
         [](zr_env env, zr_env) { return env_traverse(env, kSection, kPath, 1, Ignore, nullptr); }},
    };
    for (const Case &rCase : cases)
        RunWithEveryRefusal(rCase);
}

TEST_F(EnvMemory, AccessFunctionsReportAndGiveTheirErrorValue) {
    const Case cases[] = {
        {"env_get", "Env_pg", 3, -10,
         [](zr_env env, zr_env) {
             char buffer[50] = "kept";
             const int result = env_get(env, kSection, kLeaf, 0, 50, buffer);
             EXPECT_STREQ(buffer, result == -10 ? "kept" : "1");
             return result;
         }},
        {"env_put", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put(env, kSection, "new@of a long name indeed", "a new value"); }},
        {"env_put, where there is a value", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put(env, "Many", "n5", "longer than before"); }},
        {"env_put, among many", nullptr, 0, -10, [](zr_env env, zr_env) { return env_put(env, "Many", "n5@2", "2"); }},
        {"env_put, in place of a block", "Env_pg", 0, -10,
         [](zr_env env, zr_env) { return env_put(env, "Other", "block", "a new value"); }},
        {"env_put, through a value", "Env_pg", 0, -10,
         [](zr_env env, zr_env) { return env_put(env, "Other", "value@a@b", "a new value"); }},
        {"env_put, through the root of a subenvironment", "Env_pg", 0, -10,
         [](zr_env env, zr_env) {
             const zr_env sub = env_open_subenv(env, "Other", "value", 1);
             const int result = sub ? env_put(sub, nullptr, "a@b", "a new value") : -10;
             env_close(sub, 0);
             return result;
         },
         MaySayNothing},
        {"env_put, where names are in order already", "Env_pg", 0, -10,
         [](zr_env env, zr_env) {
             const int result = env_rename(env, "Other", "value", "v");
             return result ? result : env_put(env, "Other", "new@4@b", "a new value");
         },
         MayNotBeRepeated},
        {"env_get_pos", "Env_pg", -2, -10,
         [](zr_env env, zr_env) {
             char name[50] = "kept";
             const int result = env_get_pos(env, kSection, "middle", 0, 1, nullptr, 50, name, 0, nullptr);
             EXPECT_STREQ(name, result == -10 ? "kept" : "inner");
             return result;
         }},
        {"env_get_first_core", "Env_pg", -2, -10,
         [](zr_env env, zr_env) {
             char name[50] = "kept";
             const int result = env_get_first_core(env, kSection, "outer", 1, nullptr, 50, name, 0, nullptr);
             EXPECT_STREQ(name, result == -10 ? "kept" : "middle");
             return result;
         }},
        {"env_get_first_core, of sections", "Env_pg", -2, -10,
         [](zr_env env, zr_env) {
             char name[50] = "kept";
             const int result = env_get_first_core(env, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr);
             EXPECT_STREQ(name, result == -10 ? "kept" : kSection);
             return result;
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryRefusal(rCase);
}

TEST_F(EnvMemory, TypedFunctionsReportAndGiveTheirErrorValue) {
    const Case cases[] = {
        {"env_get_long", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             zr_long number = 77;
             const int result = env_get_long(env, kSection, kLeaf, 0, &number);
             EXPECT_EQ(number, result == -10 ? 77 : 1);
             return result;
         }},
        {"env_get_double", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             double number = 77;
             const int result = env_get_double(env, kSection, kLeaf, 0, &number);
             EXPECT_EQ(number, result == -10 ? 77 : 1);
             return result;
         }},
        {"env_get_bin", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             char bytes[50] = "kept";
             zr_long size = 50;
             const int result = env_get_bin(env, kSection, kLeaf, 0, bytes, &size);
             EXPECT_STREQ(bytes, result == -10 ? "kept" : "1");
             return result;
         }},
        {"env_get_longs", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             zr_long count = 1;
             zr_long number = 77;
             const int result = env_get_longs(env, kSection, kLeaf, 0, &count, &number);
             EXPECT_EQ(number, result == -10 ? 77 : 1);
             return result;
         }},
        {"env_get_doubles", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             zr_long count = 1;
             double number = 77;
             const int result = env_get_doubles(env, kSection, kLeaf, 0, &count, &number);
             EXPECT_EQ(number, result == -10 ? 77 : 1);
             return result;
         }},
        {"env_get_strings", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             zr_long count = 1;
             char item[50] = "kept";
             char *items[] = {item};
             const int result = env_get_strings(env, kSection, kLeaf, 0, &count, 50, items);
             EXPECT_STREQ(item, result == -10 ? "kept" : "1");
             return result;
         }},
        {"env_get_reference", "Env_uti2", 3, -10,
         [](zr_env env, zr_env) {
             const char *text = nullptr;
             const int result = env_get_reference(env, kSection, kLeaf, 0, &text);
             EXPECT_STREQ(text, result == -10 ? nullptr : "1");
             return result;
         }},
        {"env_get_array_size", "Env_uti2", 0, -10,
         [&](zr_env env, zr_env) {
             zr_long count = 9;
             zr_long width = 9;
             const int result = env_get_array_size(env, kSection, kLeaf, 0, &count, &width);
             EXPECT_EQ(count, result == 0 ? 1 : 0);
             EXPECT_EQ(width, result == 0 ? 1 : 0);
             return result;
         }},
        {"env_data_length", "Env_uti2", 1, -10,
         [](zr_env env, zr_env) { return env_data_length(env, kSection, kLeaf, 0); }},
        {"env_put_long", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_long(env, kSection, "new@of a long name indeed", 5); }},
        {"env_put_long, in place of a block", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_put_long(env, "Other", "block", 5); }},
        {"env_put_long, where there is a value", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_long(env, "Other", "value", -2147483647); }},
        {"env_put_doubles, where there is a value", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             const double values[] = {1, -1.234567890123e-200, 3.5};
             return env_put_doubles(env, "Many", "n5", 3, values);
         }},
        {"env_put_bin, where there is a value", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_bin(env, "Many", "n5", "abc", 3); }},
        {"env_put_double", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             return env_put_double(env, kSection, "new@of a long name indeed", -1.234567890123e-200);
         }},
        {"env_put_longs", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             const zr_long values[] = {1, -2147483647, 3, 2147483647, 5};
             return env_put_longs(env, kSection, "new@of a long name indeed", 5, values);
         }},
        {"env_put_doubles", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             const double values[] = {1, -1.234567890123e-200, 3.5};
             return env_put_doubles(env, kSection, "new@of a long name indeed", 3, values);
         }},
        {"env_put_strings", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             const char *items[] = {"one of them", "", "and one more"};
             return env_put_strings(env, kSection, "new@of a long name indeed", 3, items);
         }},
        {"env_put_strings, where there is a value", nullptr, 0, -10,
         [](zr_env env, zr_env) {
             const char *items[] = {"one of them", "and one more"};
             return env_put_strings(env, "Other", "value", 2, items);
         }},
        {"env_put_bin, in place of a block", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_put_bin(env, "Other", "block", "\0\n=", 3); }},
        {"env_put_bin", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_put_bin(env, kSection, "new@of a long name indeed", "abc", 3); }},
        {"env_set_data_version", nullptr, 0, -10,
         [](zr_env env, zr_env) { return env_set_data_version(env, 1, 2, 3, 4); }},
        {"env_get_data_version", nullptr, 1, 0,
         [](zr_env env, zr_env) {
             if (env_set_data_version(env, 1, 2, 3, 4) != 0)
                 return 0;
             zr_long first = 7;
             zr_long last = 7;
             env_get_data_version(env, &first, nullptr, nullptr, &last);
             EXPECT_EQ(last, 4 * first);
             return static_cast<int>(first);
         }},
        {"env_write_to_string", "Env_uti2", 1, 0,
         [](zr_env env, zr_env) {
             char *written = env_write_to_string(env);
             env_free_string(written);
             return written ? 1 : 0;
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryRefusal(rCase);
}

TEST_F(EnvMemory, WalksReportAndGiveTheirErrorValue) {
    char names[200];
    const Case cases[] = {
        {"env_traverse, counting", "Env_core", 3, -10,
         [](zr_env env, zr_env) {
             int visits = 0;
             const int result = env_traverse(env, "Other", nullptr, 1, Count, &visits);
             return result == 0 ? visits : result;
         }},
        {"env_traverse_leafs, counting", "Env_uti2", 16, -10,
         [](zr_env env, zr_env) {
             int visits = 0;
             const int result = env_traverse_leafs(env, Count, &visits);
             return result == 0 ? visits : result;
         }},
        {"env_get_first and next", "Env_pg", 3, -10,
         [&](zr_env env, zr_env) {
             int count = 0;
             int result = env_get_first(env, "Other", nullptr, 1, nullptr, 200, names, 200, names, 0);
             for (; result == -1 || result == -2; ++count)
                 result = env_get_next(env, 200, names, 200, names, 0);
             return result == -4 ? count : result;
         }},
        {"env_traverse_leafs", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_traverse_leafs(env, Ignore, nullptr); }},
        {"env_sink, appending", "Env_uti2", 0, -10, [](zr_env env, zr_env other) { return env_sink(env, other, 1); },
         MayNotBeRepeated},
        {"env_sink, into an empty environment", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) {
             const int result = env_delete(other, nullptr, nullptr);
             zr::env::DropSpareChunks(); // of what was there
             return result ? result : env_sink(other, env, 2);
         }},
        {"env_sink, overwriting", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) {
             const int result = env_put(other, "Other", "value", "a longer one than the other has");
             return result ? result : env_sink(env, other, 2);
         }},
        {"env_sink, updating", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) {
             const int result = env_put(other, "Other", "value", "a longer one than the other has");
             return result ? result : env_sink(env, other, 3);
         }},
        {"env_sink, of what is missing", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) {
             const int result = env_put(other, "New", "block@value", "one that the other has not");
             return result ? result : env_sink(env, other, 0);
         },
         MayNotBeRepeated},
        {"env_copy_block", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) {
             const int result = env_delete(env, kSection, "outer");
             return result == 0 || result == -4 ? env_copy_block(env, other, kSection, kPath, 2) : result;
         },
         MaySayNothing},
        {"env_copy_block_to", "Env_uti2", 0, -10,
         [](zr_env env, zr_env other) { return env_copy_block_to(env, other, "New", "to@here", kSection, kPath, 2); },
         MaySayNothing},
        {"env_list_elem_names, of sections", "Env_uti2", 0, -10,
         [&](zr_env env, zr_env) {
             std::strcpy(names, "kept");
             const int result = env_list_elem_names(env, nullptr, nullptr, 1, ',', 200, names);
             EXPECT_STREQ(names, result == 0 ? "Model of a long name,Other,Many," : "");
             return result;
         }},
        {"env_list_elem_names", "Env_uti2", 0, -10,
         [&](zr_env env, zr_env) {
             std::strcpy(names, "kept");
             const int result = env_list_elem_names(env, kSection, nullptr, 1, ',', 200, names);
             EXPECT_STREQ(names, result == 0 ? "Title of a long name,outer," : "");
             return result;
         }},
    };
    for (const Case &rCase : cases)
        RunWithEveryRefusal(rCase);
}

TEST_F(EnvMemory, ReadingAndWritingReportAndGiveTheirErrorValue) {
    const TempFolder folder;
    const std::string source = folder.File("source.zrenv");
    const std::string target = folder.File("target.zrenv");
    const std::string faulty = kLongModel + "[X]\nb ={\nx =1\n[Y]\n";
    std::string text;
    {
        const EnvHandle env(kLongModel.c_str());
        char *written = env_write_to_string(env);
        text = written;
        env_free_string(written);
        ASSERT_EQ(env_write_file(source.c_str(), env), 1);
    }
    const Case cases[] = {
        {"env_read_from_string", "Env_uti2", 0, -10,
         [](zr_env env, zr_env) { return env_read_from_string(kLongModel.c_str(), env); }, MayGoOnCut},
        {"env_read_from_string, with a fault", "Env_uti2", -5, -10,
         [&](zr_env env, zr_env) { return env_read_from_string(faulty.c_str(), env); }, MayGoOnCut},
        {"env_read_file", "Env_uti2", 0, -10, [&](zr_env env, zr_env) { return env_read_file(source.c_str(), env); },
         MayGoOnCut},
        {"env_write_to_string", "Env_uti2", 1, 0,
         [&](zr_env env, zr_env) {
             if (env_read_from_string(kLongModel.c_str(), env) != 0)
                 return 0;
             char *written = env_write_to_string(env);
             const bool same = written && text == written;
             env_free_string(written);
             return same ? 1 : 0;
         }},
        {"env_write_file", "Env_uti2", 1, 0,
         [&](zr_env env, zr_env) {
             if (env_read_file(source.c_str(), env) != 0)
                 return 0;
             const int result = env_write_file(target.c_str(), env);
             EXPECT_TRUE(result == 0 || Holds(target, env));
             return result;
         },
         MayGoOnCut},
    };
    for (const Case &rCase : cases)
        RunWithEveryRefusal(rCase);
}

TEST_F(EnvMemory, IterationThatCannotStartIsNone) {
    EnvHandle env(kModel);
    char name[50] = "?";
    int first = 0;
    {
        const NthAllocation refusal(0);
        first = env_get_first(env, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr, 0);
    }
    EXPECT_EQ(first, -10);
    EXPECT_STREQ(name, "?");
    EXPECT_TRUE(IsTold(m_reports.Take(), "Env_pg"));
    EXPECT_EQ(env_get_next(env, 50, name, 0, nullptr, 0), -10);
    EXPECT_EQ(env_get_first(env, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr, 0), -2);
    EXPECT_EQ(env_get_next(env, 50, name, 0, nullptr, 0), -2);
}

TEST_F(EnvMemory, ElementThatLostItsNameIsNotSunk) {
    EnvHandle env(kModel);
    const std::string name(101, 'n');
    {
        const Refusal refusal(name.size() + 1, name.size() + 1);
        EXPECT_EQ(env_rename(env, "Other", "value", name.c_str()), 0);
        EXPECT_TRUE(refusal.Met());
    }
    EXPECT_EQ("(null)", NameOf(env->GetSection("Other")->GetFirstElement()->GetSuccElem()->GetSuccElem()));
    EnvHandle target;
    EXPECT_EQ(env_sink(target, env, 2), -10);
    EXPECT_EQ(WrittenText(env).substr(0, WrittenText(target).size()), WrittenText(target))
        << "what stands in front of it";
    EXPECT_EQ(ValueOf(target, "Other", "block@y"), "2");
    EXPECT_EQ(ValueOf(target, "Many", "n0"), "(-4)");
}

TEST_F(EnvMemory, CloseAndDeleteNeedNone) {
    zr::env::DropSpareChunks();
    const MemoryBalance memory;
    const zr_env last = env_open(1, nullptr);
    const zr_env middle = env_open(2, last);
    const zr_env env = env_open(3, middle);
    EXPECT_EQ(env_read_from_string(kLongModel.c_str(), last), 0);
    EXPECT_EQ(env_read_from_string(kLongModel.c_str(), middle), 0);
    const zr_env sub = env_open_subenv(middle, kSection, kPath, 1);
    char name[50];
    EXPECT_EQ(env_get_first(sub, nullptr, nullptr, 1, nullptr, 50, name, 0, nullptr, 0), -7);
    {
        const NthAllocation refusal(0, true);
        EXPECT_EQ(env_delete(last, "Other", "block"), 0);
        EXPECT_EQ(env_delete(last, "Very many", "n50"), 0) << "found without an index";
        EXPECT_EQ(env_delete(last, "Other", nullptr), 0);
        EXPECT_EQ(env_close(sub, 0), 0);
        EXPECT_EQ(env_close(env, 1), 0);
    }
    zr::env::DropSpareChunks();
    EXPECT_EQ(0, memory.Open());
    EXPECT_EQ(Reports{}, m_reports.Take());
}

} // namespace
} // namespace zr::test
