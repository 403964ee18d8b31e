// The order of dates in the form dd.mm.yy hh:mm:ss.
#include <cstddef>
#include <cstring>

#include <zrclb/str.h>
#include <zrclb/window_utilities.h>

namespace {

constexpr std::size_t looked_at = 80; // characters of a text
constexpr std::size_t number_count = 6;
constexpr std::size_t year = 2;
constexpr std::size_t order_of_numbers[number_count] = {year, 1, 0, 3, 4, 5};

struct Date {
    zr_long numbers[number_count] = {}; // as they stand in the text, the year of its century
};

Date ReadDate(const char *date_text) {
    char text[looked_at + 1];
    Date date;
    str_ncpy(text, date_text, static_cast<int>(looked_at));
    char *next = text;
    for (zr_long &number : date.numbers) {
        char *const end = next + std::strcspn(next, ". :");
        const bool last = *end == 0;
        *end = 0;
        number = convert_stol(next);
        if (last)
            break;
        next = end + 1;
    }
    constexpr zr_long first_of_last_century = 80;
    constexpr zr_long century = 100;
    if (date.numbers[year] >= first_of_last_century)
        date.numbers[year] -= century;
    return date;
}

} // namespace

extern "C" int wu_DateCmp(const char *a, const char *b) noexcept {
    const Date date_a = ReadDate(a), date_b = ReadDate(b);
    for (const std::size_t i : order_of_numbers) {
        if (date_a.numbers[i] != date_b.numbers[i])
            return date_a.numbers[i] > date_b.numbers[i] ? 1 : -1;
    }
    return 0;
}
