// Single values of a settings file of 40 KB, straight from the file, beside readers that keep the whole of it.
//
// Read<who>: opens the file, finds one value, closes it; the first, the middle and the last of 1000 entries. PlainBlocks is
// the least that such a read takes: blocks of 8 KB, memchr for the brackets in front of the section and for the line feeds in
// it, an end at the hit, and none of the format's rules. Change<who>: one value of the middle, saved, also in a file of 4 KB.
// The last lines print ratios of the shortest processor times; with --benchmark_repetitions they settle.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#define SI_NO_CONVERSION // texts stay bytes, the fastest way
#include <SimpleIni.h>
#include <benchmark/benchmark.h>
#include <glib.h>
#include <ini.h>

#include <zrclb/zrclb.h>

#include "platform/services.h"
#include "shortest_times.h"

namespace {

constexpr int sections = 20;
constexpr int entries = 50; // of each

// A folder in memory if the host has one, else the temporary one; removed at the end.
struct Folder {
    Folder() : path(std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()) {
        path /= "zr_bench_" + std::to_string(std::random_device()());
        std::filesystem::create_directory(path);
        setenv("TMPDIR", path.c_str(), 1); // for the library's temporary files
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
};

std::string SectionAt(int section) {
    return "Section" + std::to_string(section);
}

std::string EntryAt(int section, int entry) {
    return "Entry_" + std::to_string(section) + "_" + std::to_string(entry);
}

std::string ValueAt(int section, int entry) {
    std::string value = "C:\\data\\" + std::to_string(section * entries + entry);
    return value + std::string(24 - value.size(), 'v');
}

std::string FileText(int count) {
    std::string text;
    for (int section = 0; section < count; ++section) {
        text += "[" + SectionAt(section) + "]\r\n";
        for (int entry = 0; entry < entries; ++entry)
            text += EntryAt(section, entry) + "=" + ValueAt(section, entry) + "\r\n";
        text += "\r\n";
    }
    return text;
}

// The path of the file, fresh for each caller. A small one has two of the sections.
std::string FreshFile(bool small = false) {
    static const Folder folder;
    const std::string path = (folder.path / "bench.ini").string();
    std::ofstream(path, std::ios::binary) << FileText(small ? 2 : sections);
    return path;
}

struct Place {
    std::string section, entry, value;
};

Place PlaceAt(int section, int entry) {
    return {SectionAt(section), EntryAt(section, entry), ValueAt(section, entry)};
}

void Check(bool holds) {
    if (!holds) {
        std::fputs("wrong answer\n", stderr);
        std::abort();
    }
}

// ---- What is measured ---------------------------------------------------------------------------------------------

std::string ReadZrclb(const std::string &path, const Place &place) {
    char buffer[256];
    zr_long size = sizeof buffer - 1;
    Check(ini_read_string(path.c_str(), place.section.c_str(), place.entry.c_str(), buffer, &size) == INI_DONE);
    return {buffer, static_cast<std::size_t>(size)};
}

// A file read in blocks, the last bytes of one in front of the next.
class PlainBlocks {
public:
    explicit PlainBlocks(const std::string &path) : m_file(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~PlainBlocks() { close(m_file); }
    PlainBlocks(const PlainBlocks &) = delete;
    PlainBlocks &operator=(const PlainBlocks &) = delete;

    // Goes behind the header.
    bool FindSection(std::string_view header) {
        for (;;) {
            const char *const bracket = Find('[');
            if (bracket == nullptr || Behind(bracket) < header.size()) {
                if (!Fill(bracket != nullptr ? bracket : m_end))
                    return false;
            } else if (std::memcmp(bracket, header.data(), header.size()) == 0) {
                m_at = bracket + header.size();
                return true;
            } else {
                m_at = bracket + 1;
            }
        }
    }

    // What follows the start in the first line that has it.
    std::string_view FindEntry(std::string_view start) {
        for (;;) {
            const char *const feed = Find('\n');
            if (feed == nullptr) {
                if (!Fill(m_at))
                    return {};
                continue;
            }
            const char *const line = m_at;
            const auto size = static_cast<std::size_t>(feed - line);
            m_at = feed + 1;
            if (size > start.size() && std::memcmp(line, start.data(), start.size()) == 0)
                return {line + start.size(), size - start.size() - 1}; // without the CR
        }
    }

private:
    std::size_t Behind(const char *from) const { return static_cast<std::size_t>(m_end - from); }
    const char *Find(char sign) const { return static_cast<const char *>(std::memchr(m_at, sign, Behind(m_at))); }

    bool Fill(const char *kept) {
        const std::size_t left = Behind(kept);
        std::memmove(m_buffer, kept, left);
        const ssize_t count = read(m_file, m_buffer + left, 8192);
        m_at = m_buffer;
        m_end = m_buffer + left + std::max<ssize_t>(count, 0);
        return count > 0;
    }

    int m_file;
    char m_buffer[10240];
    const char *m_at = m_buffer;
    const char *m_end = m_buffer;
};

std::string ReadPlainBlocks(const std::string &path, const Place &place) {
    PlainBlocks blocks(path);
    Check(blocks.FindSection("[" + place.section + "]"));
    return std::string(blocks.FindEntry(place.entry + "="));
}

struct InihSearch {
    const Place &place;
    std::string value;
};

std::string ReadInih(const std::string &path, const Place &place) {
    InihSearch search = {place, {}};
    const auto take = [](void *user, const char *section, const char *name, const char *value) {
        auto &wanted = *static_cast<InihSearch *>(user);
        if (wanted.place.section == section && wanted.place.entry == name)
            wanted.value = value;
        return 1;
    };
    Check(ini_parse(path.c_str(), take, &search) == 0);
    return search.value;
}

std::string ReadSimpleIni(const std::string &path, const Place &place) {
    CSimpleIniCaseA file;
    Check(file.LoadFile(path.c_str()) == SI_OK);
    return file.GetValue(place.section.c_str(), place.entry.c_str(), "");
}

std::string ReadGKeyFile(const std::string &path, const Place &place) {
    GKeyFile *file = g_key_file_new();
    Check(g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr) != 0);
    char *text = g_key_file_get_value(file, place.section.c_str(), place.entry.c_str(), nullptr);
    std::string value = text != nullptr ? text : "";
    g_free(text);
    g_key_file_free(file);
    return value;
}

void Copy(int from, int to) {
    char block[16384];
    for (ssize_t count; (count = read(from, block, sizeof block)) > 0;)
        Check(write(to, block, static_cast<std::size_t>(count)) == count);
}

// The copies alone, as plain calls of the system: to a temporary file and back in place. Nothing is looked at or changed.
void ChangePlainCopies(const std::string &path, const Place &, const char *) {
    std::string temporary = path + "XXXXXX";
    int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    int copy = mkostemp(temporary.data(), O_CLOEXEC);
    Copy(file, copy);
    close(copy);
    close(file);
    file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    copy = open(temporary.c_str(), O_RDONLY | O_CLOEXEC);
    Copy(copy, file);
    Check(ftruncate(file, lseek(file, 0, SEEK_CUR)) == 0);
    close(copy);
    close(file);
    unlink(temporary.c_str());
}

void ChangeZrclb(const std::string &path, const Place &place, const char *value) {
    Check(ini_write_string(path.c_str(), place.section.c_str(), place.entry.c_str(), value) == 0);
}

void ChangeSimpleIni(const std::string &path, const Place &place, const char *value) {
    CSimpleIniCaseA file;
    Check(file.LoadFile(path.c_str()) == SI_OK);
    file.SetValue(place.section.c_str(), place.entry.c_str(), value);
    Check(file.SaveFile(path.c_str(), false) == SI_OK);
}

// Through a temporary file, which takes the place of the other: GLib has it so.
void ChangeGKeyFile(const std::string &path, const Place &place, const char *value) {
    GKeyFile *file = g_key_file_new();
    Check(g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr) != 0);
    g_key_file_set_value(file, place.section.c_str(), place.entry.c_str(), value);
    Check(g_key_file_save_to_file(file, path.c_str(), nullptr) != 0);
    g_key_file_free(file);
}

// ---- Rows ---------------------------------------------------------------------------------------------------------

using Read = std::string (*)(const std::string &path, const Place &place);
using Change = void (*)(const std::string &path, const Place &place, const char *value);

void RunRead(benchmark::State &state, Read read, const Place &place) {
    const std::string path = FreshFile();
    Check(read(path, place) == place.value);
    for (auto _ : state)
        benchmark::DoNotOptimize(read(path, place));
}

void RunChange(benchmark::State &state, Change change, const Place &place, bool small) {
    const std::string path = FreshFile(small);
    bool turn = false;
    for (auto _ : state) {
        change(path, place, turn ? "one value" : "another one");
        turn = !turn;
    }
    change(path, place, "last");
    const std::string value = ReadGKeyFile(path, place);
    Check(value == (change == ChangePlainCopies ? place.value : "last"));
}

// The time in which the file is neither the old one nor the new one: from the first byte written over it to its cut.
void WindowOfChange(benchmark::State &state, const Place &place) {
    using Clock = std::chrono::steady_clock;
    static Clock::time_point opened, closed;
    auto &services = zr::platform::services;
    services.reserve_output = [](std::intptr_t file, std::uint64_t size) {
        const int code = zr::platform::backend::ReserveOutput(file, size);
        opened = Clock::now();
        return code;
    };
    services.cut_output = [](std::intptr_t file, std::uint64_t size) {
        const int code = zr::platform::backend::CutOutput(file, size);
        closed = Clock::now();
        return code;
    };
    const std::string path = FreshFile();
    bool turn = false;
    std::vector<double> times; // in microseconds; a pause of the process in some of them makes the mean long
    for (auto _ : state) {
        ChangeZrclb(path, place, turn ? "one value" : "another one");
        turn = !turn;
        const std::chrono::duration<double> time = closed - opened;
        state.SetIterationTime(time.count());
        times.push_back(time.count() * 1e6);
    }
    services = {};
    std::sort(times.begin(), times.end());
    state.counters["shortest_us"] = times.front();
    state.counters["middle_us"] = times[times.size() / 2];
}

constexpr struct {
    const char *name;
    Read read;
} readers[] = {{"ReadPlainBlocks", ReadPlainBlocks},
               {"ReadZrclb", ReadZrclb},
               {"ReadInih", ReadInih},
               {"ReadSimpleIni", ReadSimpleIni},
               {"ReadGKeyFile", ReadGKeyFile}};

constexpr struct {
    const char *name;
    Change change;
} changers[] = {{"ChangePlainCopies", ChangePlainCopies},
                {"ChangeZrclb", ChangeZrclb},
                {"ChangeSimpleIni", ChangeSimpleIni},
                {"ChangeGKeyFile", ChangeGKeyFile}};

const struct {
    const char *name;
    int section, entry;
} places[] = {{"First", 0, 0}, {"Middle", sections / 2, entries / 2}, {"Last", sections - 1, entries - 1}};

class Summary : public bench::ShortestTimes {
public:
    // Of the shortest times; 0 if a row is missing.
    double Ratio(const std::string &row, const std::string &peer) const {
        const std::optional<double> own = Time(row), other = Time(peer);
        return own && other ? *own / *other : 0;
    }
};

void PrintRatios(const Summary &summary, const char *own, const char *peer, const char *place) {
    const std::string row = std::string(own) + place, other = std::string(peer) + place;
    if (row != other)
        std::printf("%-18s / %-24s %.3f\n", row.c_str(), other.c_str(), summary.Ratio(row, other));
}

} // namespace

int main(int argc, char **argv) {
    for (const auto &place : places) {
        for (const auto &[name, read] : readers)
            benchmark::RegisterBenchmark((std::string(name) + place.name).c_str(), RunRead, read,
                                         PlaceAt(place.section, place.entry))
                ->UseRealTime()
                ->Unit(benchmark::kMicrosecond);
    }
    for (const bool small : {true, false}) {
        for (const auto &[name, change] : changers)
            benchmark::RegisterBenchmark((std::string(name) + (small ? "Small" : "")).c_str(), RunChange, change,
                                         PlaceAt(small ? 0 : sections / 2, entries / 2), small)
                ->UseRealTime()
                ->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("WindowOfChange", WindowOfChange, PlaceAt(sections / 2, entries / 2))
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond);
    benchmark::Initialize(&argc, argv);
    Summary summary;
    benchmark::RunSpecifiedBenchmarks(&summary);
    for (const auto &place : places) {
        for (const auto &reader : readers)
            PrintRatios(summary, "ReadZrclb", reader.name, place.name);
    }
    for (const char *size : {"Small", ""}) {
        for (const auto &changer : changers)
            PrintRatios(summary, "ChangeZrclb", changer.name, size);
    }
}
