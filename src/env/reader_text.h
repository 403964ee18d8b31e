// What the two ways of the reader share about runs of characters.
#ifndef ZR_ENV_READER_TEXT_H
#define ZR_ENV_READER_TEXT_H

#include <array>
#include <bit>
#include <cstddef>
#include <string_view>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Zr {

// What a run of ordinary characters stops at.
enum Stop : unsigned char {
    StopAlways = 1, // LF, CR, zero, 0xFF and backslash: one of the levels may have something to do
    StopEqual = 2,
    StopBracket = 4
};

constexpr std::array<unsigned char, 256> MakeStops() {
    std::array<unsigned char, 256> stops{};
    stops['\n'] = stops['\r'] = stops[0] = stops[0xFF] = stops['\\'] = StopAlways;
    stops['='] = StopEqual;
    stops[']'] = StopBracket;
    return stops;
}

constexpr std::array<unsigned char, 256> Stops = MakeStops();

inline bool StopsAt(char cChar, unsigned char uStops) {
    return (Stops[static_cast<unsigned char>(cChar)] & uStops) != 0;
}

#ifdef __SSE2__
// Which of the 16 bytes at pText may be a stop of any kind: a bit for each, the lowest for the first. Few others are:
// the control characters below CR.
inline unsigned PossibleStops(const char *pText) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pText));
    const auto equal = [bytes](char cChar) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(cChar)); };
    const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8('\r')), bytes);
    const __m128i any =
        _mm_or_si128(_mm_or_si128(low, equal('\xFF')), _mm_or_si128(equal('\\'), _mm_or_si128(equal('='), equal(']'))));
    return static_cast<unsigned>(_mm_movemask_epi8(any));
}
#endif

// The first stop in [pFirst, pLimit), or pLimit.
inline const char *FindStop(const char *pFirst, const char *pLimit, unsigned char uStops) {
    const char *pNext = pFirst;
#ifdef __SSE2__
    for (; pLimit - pNext >= 16; pNext += 16)
        for (unsigned uPossible = PossibleStops(pNext); uPossible != 0; uPossible &= uPossible - 1)
            if (const char *pAt = pNext + std::countr_zero(uPossible); StopsAt(*pAt, uStops))
                return pAt;
#endif
    while (pNext != pLimit && !StopsAt(*pNext, uStops))
        ++pNext;
    return pNext;
}

inline bool IsBlank(int iChar) {
    return iChar == ' ' || iChar == '\t';
}

inline std::string_view WithoutTrailingBlanks(const char *pFirst, const char *pLast) {
    while (pLast != pFirst && IsBlank(pLast[-1]))
        --pLast;
    return {pFirst, static_cast<std::size_t>(pLast - pFirst)};
}

// Whether the backslash at pAt stands in a line-end mark that lies whole in [pFirst, pLast).
inline bool InMark(const char *pAt, const char *pFirst, const char *pLast) {
    return pAt - pFirst >= 2 && pLast - pAt >= 4 && pAt[-2] == '<' && pAt[-1] == '<' &&
           (pAt[1] == 'n' || pAt[1] == 'r') && pAt[2] == '>' && pAt[3] == '>';
}

} // namespace Zr

#endif
