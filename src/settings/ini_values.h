// How values of settings files get to their readers and come from their writers, straight from the file or from memory.
#ifndef ZR_SETTINGS_INI_VALUES_H
#define ZR_SETTINGS_INI_VALUES_H

#include <cstddef>
#include <cstring>
#include <string_view>

#include <zrclb/ini.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

namespace zr::settings {

inline constexpr zr_long value_limit = 2047;       // characters of a number's or list's text
inline constexpr std::size_t number_size = 80;     // of one number of a list, with comma and terminator
inline constexpr std::size_t list_size = 2047 + 1; // of a list with the comma at its end, and its terminator

// Copies at most `size` characters and a terminator; a null buffer takes none. INI_DONE with the length in `size`, or
// INI_NO_ROOM with `size` as it was.
int CopyValue(std::string_view value, char *buffer, zr_long &size);

// Names one behind the other in buffer[0..size], a terminator behind each and one more at the end: `size` - 1
// characters without the last terminator. A list that is cut in the midst of a name gets that name's terminator too,
// for which the buffer has a byte: who walks through it finds an end. A null buffer only gets its length.
class NameList {
public:
    NameList(char *buffer, zr_long size);

    // False if the name did not fit; no further one will.
    bool Add(std::string_view name);

    // Ends the list: INI_DONE or INI_NO_ROOM, and its length without the last terminator.
    int End(zr_long &size);

private:
    char *m_buffer;
    std::size_t m_size;
    std::size_t m_limit;
    std::size_t m_stored = 0;
    bool m_full = false;
};

// Reads the numbers of a list, which comes apart meanwhile, into values[0..count-1]; `count` becomes their number.
// INI_DONE, or INI_NO_ROOM if there are more.
template <class Value>
int SplitNumbers(char *text, Value *values, zr_long &count, Value (*convert)(const char *) noexcept) {
    const zr_long room = count;
    for (count = 0; *text != 0; ++count) {
        if (count == room)
            return INI_NO_ROOM;
        char *const end = text + std::strcspn(text, ",");
        char *const next = end + (*end != 0 ? 1 : 0);
        *end = 0;
        values[count] = convert(text);
        text = next;
    }
    return INI_DONE;
}

// Writes a list of values[0..count-1], each by `format` with a comma behind it, the last comma cut. A list that is too
// long ends a bracket that nobody opened, by promise: INI_NO_ROOM.
template <class Value>
int FormatList(const Value *values, zr_long count, const char *format, char (&list)[list_size]) {
    std::size_t length = 0;
    for (zr_long i = 0; i < count; ++i) {
        char number[number_size];
        const auto added = static_cast<std::size_t>(str_printf(number, sizeof number, format, values[i]));
        if (length + added >= list_size) {
            zr_end();
            return INI_NO_ROOM;
        }
        std::memcpy(list + length, number, added);
        length += added;
    }
    list[length > 0 ? length - 1 : 0] = 0;
    return INI_DONE;
}

} // namespace zr::settings

#endif
