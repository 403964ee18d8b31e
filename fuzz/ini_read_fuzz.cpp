// Values of any file, read straight from it: as the plain reference reads them, within the room that there is.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <zrclb/ini.h>
#include <zrclb/str.h>

#include "ini_input.h"
#include "settings/reference_ini.h"

namespace {

using fuzz::OrNull;
using fuzz::Require;
using zr::test::IniAnswer;
using zr::test::ReferenceIni;
using Section = ReferenceIni::Section;

constexpr char malformed[] = "Incorrect entry's format. '=' is not found. File below:";

struct Place {
    std::string file;
    Section section, entry;
};

IniAnswer Read(const Place &place, int size) {
    const fuzz::ReportCount reports(malformed);
    // A byte more than told is seen by the sanitizer.
    const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(size) + 1);
    zr_long length = size;
    IniAnswer answer;
    answer.result =
        ini_read_string(place.file.c_str(), OrNull(place.section), OrNull(place.entry), buffer.get(), &length);
    answer.size = static_cast<int>(length);
    answer.malformed = reports.Take();
    if (answer.result == INI_DONE || answer.result == INI_NO_ROOM) {
        const auto stored = static_cast<std::size_t>(length);
        Require(buffer[stored] == 0, "a terminator behind the text");
        answer.text = place.entry ? buffer.get() : std::string(buffer.get(), stored);
    }
    return answer;
}

// Pieces with commas between them; nothing behind the last comma.
std::vector<std::string> Pieces(const std::string &value) {
    std::vector<std::string> pieces;
    for (std::size_t from = 0; from < value.size();) {
        const std::size_t end = std::min(value.find(',', from), value.size());
        pieces.push_back(value.substr(from, end - from));
        from = end + 1;
    }
    return pieces;
}

template <class Value>
void CompareNumbers(const IniAnswer &expected, int result, zr_long count, zr_long room, const Value *values,
                    Value (*convert)(const char *) noexcept) {
    if (expected.result != INI_DONE) {
        Require(result == expected.result && count == 0, "no list");
        return;
    }
    const std::vector<std::string> pieces = Pieces(expected.text);
    const auto most = static_cast<std::size_t>(room);
    Require(result == (pieces.size() > most ? INI_NO_ROOM : INI_DONE), "result of a list");
    Require(static_cast<std::size_t>(count) == std::min(pieces.size(), most), "length of a list");
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const Value wanted = convert(pieces[i].c_str());
        Require(std::memcmp(&values[i], &wanted, sizeof wanted) == 0, "number of a list");
    }
}

void CompareAsNumbers(const Place &place, zr_long room) {
    const IniAnswer expected = ReferenceIni().Read(place.file, place.section, place.entry, 2047);
    const char *const file = place.file.c_str(), *const section = OrNull(place.section),
                      *const entry = OrNull(place.entry);
    zr_long number = 77;
    Require(ini_read_long(file, section, entry, &number) == expected.result, "result of a long");
    Require(number == (expected.result == INI_DONE ? convert_stol(expected.text.c_str()) : 77), "long");
    double real = 77.0;
    const double wanted = expected.result == INI_DONE ? convert_stod(expected.text.c_str()) : 77.0;
    Require(ini_read_double(file, section, entry, &real) == expected.result, "result of a double");
    Require(std::memcmp(&real, &wanted, sizeof real) == 0, "double");
    const auto longs = std::make_unique<zr_long[]>(static_cast<std::size_t>(room));
    zr_long count = room;
    int result = ini_read_longs(file, section, entry, longs.get(), &count);
    CompareNumbers(expected, result, count, room, longs.get(), convert_stol);
    const auto doubles = std::make_unique<double[]>(static_cast<std::size_t>(room));
    count = room;
    result = ini_read_doubles(file, section, entry, doubles.get(), &count);
    CompareNumbers(expected, result, count, room, doubles.get(), convert_stod);
}

void CompareVersion(const std::string &file) {
    const IniAnswer expected = ReferenceIni().Read(file, "_Zr_Data_Version_Info_", "Version", 2047);
    std::vector<std::string> pieces = Pieces(expected.result == INI_DONE ? expected.text : "");
    pieces.resize(4);
    zr_long parts[4] = {7, 7, 7, 7};
    Require(ini_get_data_version(file.c_str(), &parts[0], &parts[1], &parts[2], &parts[3]) == 0, "result of a version");
    for (std::size_t i = 0; i < pieces.size(); ++i)
        Require(parts[i] == convert_stol(pieces[i].c_str()), "version");
}

} // namespace

// The lines in front of the file are section and entry.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr int rooms[] = {3000, 0, 1, 2, 3, 4, 5, 9, 79};
    fuzz::IniInput input(data, size);
    const int room = rooms[input.Choose(std::size(rooms))];
    Place place = {fuzz::PathOf("read.ini"), input.LineOrNull(), input.LineOrNull()};
    fuzz::Store(place.file, input.Rest());
    Require(Read(place, room) == ReferenceIni().Read(place.file, place.section, place.entry, room), "text");
    if (place.entry)
        CompareAsNumbers(place, room % 100);
    CompareVersion(place.file);
    return 0;
}
