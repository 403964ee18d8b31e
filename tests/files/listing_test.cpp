// The listing of a folder.
#include <zrclb/files.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/clock.h>
#include <zrclb/heap.h>

#include "env/refused_memory.h"
#include "files/names_fixture.h"
#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"
#include "platform/clock.h"
#include "platform/file_verbs.h"

namespace {

namespace fs = std::filesystem;
using zr::test::HeapRefusal;
using Names = std::vector<std::string>;

// All is done in a zone that has summer time, set before anybody asks for the zone: not every runtime follows later
// changes.
const bool in_new_york = [] {
    static char zone[] = "TZ=EST5EDT"; // the environment keeps it
    putenv(zone);
    tzset();
    return true;
}();

class Listing : public NamesFixture {
protected:
    // One call, its outputs spoilt before and its array given back.
    struct Result {
        int code;
        bool array;
        std::vector<fio_dirent> entries;

        Names AllNames() const {
            Names names;
            for (const fio_dirent &entry : entries)
                names.emplace_back(entry.name);
            return names;
        }
        const fio_dirent &operator[](const std::string &name) const {
            const auto found =
                std::find_if(entries.begin(), entries.end(), [&](const fio_dirent &e) { return e.name == name; });
            return found != entries.end() ? *found : (ADD_FAILURE() << "no entry " << name, s_none);
        }
    };

    static Result List(const char *dir, const char *pattern, unsigned mask) {
        fio_dirent spoilt{}, *entries = &spoilt;
        int count = -7;
        Result result{fio_listdir(dir, pattern, mask, &entries, &count), entries != nullptr, {}};
        EXPECT_NE(entries, &spoilt);
        EXPECT_EQ(entries != nullptr, count > 0);
        for (int i = 0; entries != nullptr && i < count; ++i)
            result.entries.push_back(entries[i]);
        heap_free(entries);
        return result;
    }

    Result List(const char *pattern = nullptr, unsigned mask = 0) const { return List(Dir().c_str(), pattern, mask); }

    static void ExpectFailure(const Result &result) {
        EXPECT_EQ(result.code, -1);
        EXPECT_FALSE(result.array);
    }

    static void ExpectNothing(const Result &result) {
        EXPECT_EQ(result.code, 0);
        EXPECT_FALSE(result.array);
    }

    void WriteMany(int count) const {
        for (int i = 0; i < count; ++i)
            Write("f" + std::to_string(1000 + i), "");
    }

    static inline const fio_dirent s_none{};
};

// What comes back

TEST_F(Listing, HoldsAllEntriesByName) {
    Write("b", "12345");
    Write("A", "");
    Write("c.d.e", "1");
    MakeFolders("B2");
    const Result result = List();
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.AllNames(), (Names{".", "..", "A", "b", "B2", "c.d.e"}));
    EXPECT_EQ(result["b"].size, 5U);
    EXPECT_EQ(result["A"].size, 0U);
    EXPECT_EQ(result["B2"].size, 0U);
    EXPECT_EQ(result["b"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_FILE});
    EXPECT_EQ(result["B2"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_DIR});
    EXPECT_EQ(result["."].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_DIR});
    EXPECT_EQ(result[".."].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_DIR});
}

TEST_F(Listing, RecordAndFlagsHaveTheToldShape) {
    constexpr int flags[] = {FIO_IS_FILE, FIO_IS_DIR, FIO_IS_READONLY, FIO_IS_HIDDEN, FIO_IS_SYSTEM, FIO_IS_ARCHIVE};
    EXPECT_TRUE(std::ranges::equal(flags, std::initializer_list<int>{1, 2, 8, 64, 128, 512}));
    EXPECT_EQ(sizeof(fio_dirent), 268U);
    EXPECT_EQ(offsetof(fio_dirent, flags), 256U);
    EXPECT_EQ(offsetof(fio_dirent, size), 260U);
    EXPECT_EQ(offsetof(fio_dirent, mtime), 264U);
}

TEST_F(Listing, EmptyFolder_HoldsItselfAndTheOneAbove) {
    EXPECT_EQ(List().AllNames(), (Names{".", ".."}));
    EXPECT_EQ(List(nullptr, FIO_IS_FILE | FIO_IS_DIR).AllNames(), (Names{".", ".."}));
}

TEST_F(Listing, PatternChoosesNames) {
    for (const char *name : {"one.txt", "two.TXT", "three.dat", "four"})
        Write(name, "");
    MakeFolders("folder.txt");
    for (const char *all : {static_cast<const char *>(nullptr), "", "*.*", "*"})
        EXPECT_EQ(List(all).AllNames(), (Names{".", "..", "folder.txt", "four", "one.txt", "three.dat", "two.TXT"}));
    EXPECT_EQ(List("*.txt").AllNames(), (Names{"folder.txt", "one.txt", "two.TXT"}));
    EXPECT_EQ(List("*.Txt", FIO_IS_FILE).AllNames(), (Names{"one.txt", "two.TXT"}));
    EXPECT_EQ(List("T*").AllNames(), (Names{"three.dat", "two.TXT"}));
    EXPECT_EQ(List("f??r", FIO_IS_FILE).AllNames(), (Names{"four"}));
    EXPECT_EQ(List("ONE.TXT").AllNames(), (Names{"one.txt"}));
    ExpectFailure(List("*.none"));
    ExpectFailure(List("missing"));
}

TEST_F(Listing, MaskChoosesKinds) {
    Write("file", "");
    Write("guarded", "");
    MakeFolders("sub");
    const ReadOnly guard(Path("guarded"));
    EXPECT_EQ(List(nullptr, FIO_IS_FILE).AllNames(), (Names{"file", "guarded"}));
    EXPECT_EQ(List(nullptr, FIO_IS_DIR).AllNames(), (Names{".", "..", "sub"}));
    EXPECT_EQ(List(nullptr, FIO_IS_READONLY).AllNames(), (Names{"guarded"}));
    EXPECT_EQ(List(nullptr, FIO_IS_READONLY | FIO_IS_DIR).AllNames(), (Names{".", "..", "guarded", "sub"}));
    EXPECT_EQ(List(nullptr, std::numeric_limits<unsigned>::max()).entries.size(), 5U);
    ExpectNothing(List(nullptr, 4));
    ExpectNothing(List("sub", FIO_IS_FILE));
}

TEST_F(Listing, FlagsAreTheSystemsAttributes) {
    using namespace zr::platform;
    struct {
        std::uint32_t attribute, flag;
    } const cases[] = {{attribute_read_only, FIO_IS_READONLY},
                       {attribute_hidden, FIO_IS_HIDDEN},
                       {attribute_system, FIO_IS_SYSTEM},
                       {attribute_archive, FIO_IS_ARCHIVE},
                       {attribute_folder, FIO_IS_DIR}};
    for (const std::string name : {"plain", ".hidden"}) {
        Write(name, "");
        const std::string path = Path(name);
        for (const std::uint32_t wanted :
             {attribute_normal, attribute_read_only, attribute_hidden, attribute_system, attribute_archive}) {
            ASSERT_EQ(SetAttributes(path.c_str(), wanted), done);
            std::uint32_t attributes = 0;
            ASSERT_EQ(GetAttributes(path.c_str(), attributes), done);
            std::uint32_t expected = FIO_IS_FILE;
            for (const auto &[attribute, flag] : cases)
                expected |= (attributes & attribute) != 0 ? flag : 0;
            EXPECT_EQ(List()[name].flags, expected) << name << " " << wanted;
        }
        ASSERT_EQ(SetAttributes(path.c_str(), attribute_normal), done);
    }
}

TEST_F(Listing, NamesOf255BytesAndBeyondAsciiAreWhole) {
    const std::string longest(200, 'l'), letters = "\xE4\x80\xFF \x9F.x";
    Write(longest, "");
    ASSERT_EQ(fio_copy(Dir().c_str(), longest.c_str(), Dir().c_str(), letters.c_str()), 0);
    EXPECT_EQ(List(nullptr, FIO_IS_FILE).AllNames(), (Names{longest, letters}));
    const CurrentFolder here(m_folder.Folder());
    const std::string limit(255, 'm');
    std::ofstream(limit).put('x');
    if (!fs::exists(limit))
        GTEST_SKIP() << "no names of 255 bytes on this host";
    EXPECT_EQ(List(nullptr, "m*", 0).AllNames(), (Names{limit}));
    fs::remove(limit);
}

// Sizes and times

TEST_F(Listing, SizesOf4GiBAndMore_AreTheGreatestThereIs) {
    struct {
        const char *name;
        std::uintmax_t size;
        std::uint32_t listed;
    } const cases[] = {
        {"a", 3000000000U, 3000000000U}, {"b", 4294967295U, 4294967295U}, {"c", 4294967296U, 4294967295U}};
    for (const auto &[name, size, listed] : cases) {
        Write(name, "");
        std::error_code failure;
        fs::resize_file(Path(name), size, failure);
        if (failure || fs::file_size(Path(name)) != size)
            GTEST_SKIP() << "no files of that size on this host";
        EXPECT_EQ(List(name)[name].size, listed);
    }
}

class ListingTimes : public Listing {
protected:
    // What the listing says of a file that was last written at that time.
    std::int32_t ListedTime(std::int64_t seconds) const {
        Write("file", "");
        const auto time = std::chrono::sys_time<std::chrono::seconds>(std::chrono::seconds(seconds));
        fs::last_write_time(Path("file"), std::chrono::file_clock::from_sys(time));
        return List("file")["file"].mtime;
    }

    // Seconds of the local time that a value means.
    static std::string Local(std::int32_t value) {
        char text[26];
        zr::platform::CtimeText(value, text);
        return text;
    }
};

TEST_F(ListingTimes, AreThoseOfTheLastWrite) {
    for (const std::int64_t time : {18000, 86399, 315529200, 951782400, 1000000000, 1711839600, 2147483647})
        EXPECT_EQ(ListedTime(time), time);
    EXPECT_EQ(ListedTime(4294967296 + 100000), 100000); // 32 bits of the value
    EXPECT_EQ(ListedTime(0), -1);                       // the clocks still show 1969, which has no values
    EXPECT_EQ(ListedTime(17999), -1);
}

TEST_F(ListingTimes, BeforeTheFirst_AreTheStartOf1980) {
    EXPECT_EQ(Local(ListedTime(-2)), "Tue Jan  1 00:00:00 1980\n");
    EXPECT_EQ(Local(ListedTime(-100000000)), "Tue Jan  1 00:00:00 1980\n");
}

TEST_F(ListingTimes, UnknownOne_IsFixed) {
    EXPECT_EQ(ListedTime(-1), 315529200);
}

// The night in November when an hour comes twice, and the one in March when an hour is left out.
TEST_F(ListingTimes, AreValuesOfTheClock) {
    ASSERT_EQ(Local(1372636800), "Sun Jun 30 20:00:00 2013\n"); // in summer time
    constexpr std::int64_t november = 1383451200, march = 1362895200, hour = 3600;
    struct {
        std::int64_t time, listed;
    } const cases[] = {{november, november}, // 00:00
                       {november + hour - 1, november + hour - 1},
                       {november + hour, november + 2 * hour}, // 01:00 for the first time
                       {november + 2 * hour - 1, november + 3 * hour - 1},
                       {november + 2 * hour, november + 2 * hour}, // 01:00 for the second time
                       {november + 3 * hour, november + 3 * hour},
                       {march, march}, // 01:00
                       {march + hour - 1, march + hour - 1},
                       {march + hour, march + hour}, // 03:00
                       {march + 2 * hour, march + 2 * hour},
                       {-1, 315529200},
                       {-2, 315550800}}; // the start of 1980
    for (const auto &[time, listed] : cases) {
        EXPECT_EQ(ListedTime(time), listed) << time;
        clock_struct fields{};
        if (time > 0) {
            EXPECT_EQ(listed, clock_makevalue(clock_makestruct(static_cast<zr_long>(time), &fields))) << time;
        }
    }
}

TEST_F(ListingTimes, OfSeveralFiles_DontMix) {
    using namespace std::chrono;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "f" + std::to_string(10 + i);
        Write(name, "");
        fs::last_write_time(Path(name), file_clock::from_sys(sys_seconds(seconds(1000000000 + i / 2))));
    }
    const Result result = List(nullptr, FIO_IS_FILE);
    ASSERT_EQ(result.entries.size(), 40U);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(result.entries[static_cast<std::size_t>(i)].mtime, 1000000000 + i / 2);
}

// Folders

TEST_F(Listing, FolderIsTakenWithAndWithoutSeparator) {
    Write("file", "");
    for (const char *end : {"", "\\", "/"})
        EXPECT_EQ(List((Dir() + end).c_str(), "f*", 0).AllNames(), (Names{"file"}));
}

TEST_F(Listing, FolderAndPatternAreJoinedAsTheyStand) {
    MakeFolders("sub");
    Write("sub/inside", "");
    EXPECT_EQ(List("sub\\i*").AllNames(), (Names{"inside"}));
    EXPECT_EQ(List("sub/*", FIO_IS_FILE).AllNames(), (Names{"inside"}));
    EXPECT_EQ(List("\\sub\\i*").AllNames(), (Names{"inside"}));
    EXPECT_EQ(List("C:", nullptr, 0).AllNames(), List("C:\\", nullptr, 0).AllNames()); // a separator is put behind it
    const CurrentFolder here(m_folder.Folder());
    EXPECT_EQ(List("sub", nullptr, FIO_IS_FILE).AllNames(), (Names{"inside"}));
    EXPECT_EQ(List("C:sub", nullptr, FIO_IS_FILE).AllNames(), (Names{"inside"}));
}

TEST_F(Listing, SearchTextOfTheLastLength_IsAnyOther) {
    Write("file", "");
    const std::string stars(zr::platform::path_limit - Dir().size() - 1, '*');
    EXPECT_EQ(List(stars.c_str(), FIO_IS_FILE).AllNames(), (Names{"file"}));
    ExpectFailure(List((stars + "*").c_str(), FIO_IS_FILE));
}

TEST_F(Listing, NoFolder_IsTheCurrentOne) {
    Write("file", "");
    const CurrentFolder here(m_folder.Folder());
    EXPECT_EQ(List(nullptr, "*", 0).AllNames(), (Names{".", "..", "file"}));
    EXPECT_EQ(List("", nullptr, FIO_IS_FILE).AllNames(), (Names{"file"}));
    EXPECT_EQ(List(".", nullptr, FIO_IS_FILE).AllNames(), (Names{"file"}));
}

TEST_F(Listing, RootHasNoFolderAbove) {
    const Result result = List("C:\\", "*", 0);
    EXPECT_EQ(result.code, 0);
    EXPECT_FALSE(result.entries.empty());
    for (const std::string &name : result.AllNames())
        EXPECT_TRUE(name != "." && name != "..");
    EXPECT_EQ(List("C:\\..\\..", "*", 0).AllNames(), result.AllNames());
}

TEST_F(Listing, BadFoldersAndPatterns_Fail) {
    Write("file", "");
    for (const std::string &path : BadPaths())
        if (!path.empty())
            ExpectFailure(List(path.c_str(), nullptr, 0));
    for (const std::string &pattern : {std::string(260, 'x'), std::string(259, '?'), std::string(10000, '*'),
                                       std::string("missing\\*"), std::string("file\\*"), std::string("\xE4\x80")})
        ExpectFailure(List(pattern.c_str()));
    ExpectFailure(List(Path("file").c_str(), nullptr, 0));
}

TEST_F(Listing, WithoutOutputs_Fails) {
    fio_dirent spoilt{}, *entries = &spoilt;
    int count = 7;
    EXPECT_EQ(fio_listdir(Dir().c_str(), nullptr, 0, nullptr, &count), -1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(fio_listdir(Dir().c_str(), nullptr, 0, &entries, nullptr), -1);
    EXPECT_EQ(entries, nullptr);
    EXPECT_EQ(fio_listdir(nullptr, nullptr, 0, nullptr, nullptr), -1);
}

TEST_F(Listing, LinksCountAsWhatTheyLeadTo) {
    Write("file", "12345");
    MakeFolders("sub");
    std::error_code failure;
    fs::create_symlink("file", Path("to_file"), failure);
    if (failure)
        GTEST_SKIP() << "no links on this host";
    fs::create_symlink("sub", Path("to_folder"));
    fs::create_symlink("nowhere", Path("dangling"));
    fs::create_symlink("ring", Path("ring"));
    const Result result = List(nullptr, FIO_IS_FILE);
    EXPECT_EQ(result["to_file"].size, 5U);
    EXPECT_EQ(result["to_file"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_FILE});
    EXPECT_EQ(result["dangling"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_FILE});
    EXPECT_EQ(result["ring"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_FILE});
    EXPECT_EQ(List("to_folder")["to_folder"].flags & (FIO_IS_FILE | FIO_IS_DIR), unsigned{FIO_IS_DIR});
    Write("sub/inside", "");
    EXPECT_EQ(List(Path("to_folder").c_str(), nullptr, FIO_IS_FILE).AllNames(), (Names{"inside"}));
    for (const char *name : {"to_file", "dangling", "ring"})
        ExpectFailure(List(Path(name).c_str(), nullptr, 0));
}

// Memory

TEST_F(Listing, AnyNumberOfEntriesComesBack) {
    int made = 0;
    for (const int count : {1, 9, 10, 11, 20, 21, 300}) {
        for (; made < count; ++made)
            Write("f" + std::to_string(1000 + made), "");
        const Result result = List(nullptr, FIO_IS_FILE);
        ASSERT_EQ(result.entries.size(), static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(result.entries[static_cast<std::size_t>(i)].name, "f" + std::to_string(1000 + i));
    }
}

TEST_F(Listing, ArrayIsTheCallersCountedBlock) {
    WriteMany(25);
    const auto before = zr::frame::heap_block_count.load();
    fio_dirent *entries = nullptr;
    int count = 0;
    ASSERT_EQ(fio_listdir(Dir().c_str(), nullptr, 0, &entries, &count), 0);
    EXPECT_EQ(count, 27);
    EXPECT_EQ(zr::frame::heap_block_count, before + 1);
    void *place = entries;
    heap_smart_free(&place);
    EXPECT_EQ(place, nullptr);
    EXPECT_EQ(zr::frame::heap_block_count, before);
    ExpectNothing(List(nullptr, 4));
    ExpectFailure(List("none"));
    EXPECT_EQ(zr::frame::heap_block_count, before);
}

class ListingMemory : public Listing {
protected:
    void SetUp() override { WriteMany(35); }
};

TEST_F(ListingMemory, NoneToBeginWith_GivesNothing) {
    const std::string dir = Dir(), missing = Path("missing");
    for (const std::string &path : {dir, missing}) {
        fio_dirent spoilt{}, *entries = &spoilt;
        int count = 7;
        const HeapRefusal refusal(0);
        EXPECT_EQ(fio_listdir(path.c_str(), nullptr, 0, &entries, &count), 0);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(entries, nullptr);
        EXPECT_EQ(count, 0);
    }
}

TEST_F(ListingMemory, NoneOnTheWay_Fails) {
    const std::string dir = Dir();
    const auto before = zr::frame::heap_block_count.load();
    for (const int granted : {1, 2, 3}) {
        fio_dirent spoilt{}, *entries = &spoilt;
        int count = 7;
        const HeapRefusal refusal(granted);
        EXPECT_EQ(fio_listdir(dir.c_str(), nullptr, 0, &entries, &count), -1);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(entries, nullptr);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(zr::frame::heap_block_count, before);
    }
}

TEST_F(ListingMemory, NoneToFitTheArray_DoesntMatter) {
    const std::string dir = Dir();
    fio_dirent *entries = nullptr;
    int count = 0;
    const HeapRefusal refusal(1);
    EXPECT_EQ(fio_listdir(dir.c_str(), "f100*", 0, &entries, &count), 0);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(count, 10);
    heap_free(entries);
}

TEST_F(ListingMemory, NoneForTheSearch_Fails) {
    const auto before = zr::frame::heap_block_count.load();
    const std::string dir = Dir();
    int refused = 0;
    for (std::size_t nth = 0; nth < 200; ++nth) {
        fio_dirent *entries = nullptr;
        int count = -1, code = 0;
        bool met = false;
        {
            // Each size that the search asks for in its turn.
            const zr::test::Refusal refusal(nth * 512 + 1, (nth + 1) * 512);
            code = fio_listdir(dir.c_str(), nullptr, 0, &entries, &count);
            met = refusal.Met();
        }
        EXPECT_EQ(code, met ? -1 : 0);
        EXPECT_EQ(count, met ? 0 : 37);
        refused += met ? 1 : 0;
        heap_free(entries);
    }
    EXPECT_GT(refused, 0);
    EXPECT_EQ(zr::frame::heap_block_count, before);
}

// What lies in a folder that can't be listed stays, and so does the folder.
TEST_F(ListingMemory, NoneForTheRemovalOfTheTree_LeavesIt) {
    const std::string dir = Dir();
    const auto before = zr::frame::heap_block_count.load();
    for (const int granted : {0, 1, 2}) {
        const HeapRefusal refusal(granted);
        EXPECT_EQ(fio_rmdir_ex(dir.c_str()), -1);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(zr::frame::heap_block_count, before);
    }
    EXPECT_EQ(List(nullptr, FIO_IS_FILE).entries.size(), 35U);
}

TEST_F(Listing, FolderThatVanishesMeanwhile_IsListedAsFarAsItGoes) {
    WriteMany(300);
    const fs::path folder = m_folder.Folder();
    // A host may keep a folder while somebody lists it.
    const auto remove = [&folder] {
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    };
    std::atomic<bool> removed = false;
    std::thread remover([&] {
        remove();
        removed = true;
    });
    while (!removed) {
        const Names names = List().AllNames();
        EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
        EXPECT_LE(names.size(), 302U);
    }
    remover.join();
    remove();
    ExpectFailure(List());
}

} // namespace
