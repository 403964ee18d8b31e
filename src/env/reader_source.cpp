// The block source of the reader: filling, and the place in the file.
#include "env/reader_source.h"

#include <algorithm>
#include <new>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Zr {

namespace {

// The bytes are added up as minus ones in rounds that fit a byte.
std::size_t CountLineFeeds(const char *pFirst, const char *pLast) {
    std::size_t uTotal = 0;
#ifdef __SSE2__
    const __m128i lineFeeds = _mm_set1_epi8('\n');
    while (pLast - pFirst >= 16) {
        __m128i round = _mm_setzero_si128();
        for (int i = 0; i < 255 && pLast - pFirst >= 16; ++i, pFirst += 16) {
            const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pFirst));
            round = _mm_sub_epi8(round, _mm_cmpeq_epi8(bytes, lineFeeds));
        }
        const __m128i sums = _mm_sad_epu8(round, _mm_setzero_si128());
        uTotal += static_cast<std::size_t>(_mm_cvtsi128_si32(sums) + _mm_extract_epi16(sums, 4));
    }
#endif
    return uTotal + static_cast<std::size_t>(std::count(pFirst, pLast, '\n'));
}

// The place of pLast, if that of pFirst is `place`.
CZrEnvReaderSource::Place PlaceBehind(CZrEnvReaderSource::Place place, const char *pFirst, const char *pLast) {
    const std::size_t uLines = CountLineFeeds(pFirst, pLast);
    if (uLines == 0) {
        place.uColumn += static_cast<std::size_t>(pLast - pFirst);
        return place;
    }
    const char *pLine = pLast;
    while (pLine[-1] != '\n')
        --pLine;
    return {place.uLine + uLines, static_cast<std::size_t>(pLast - pLine) + 1};
}

} // namespace

void CZrEnvReaderSource::OpenText(const char *pText, std::size_t uLength, Place first) {
    m_pBlock = m_pNext = pText;
    m_pFilled = pText + uLength;
    m_BlockPlace = first;
}

void CZrEnvReaderSource::OpenStream(std::string_view head, std::FILE *pStream, Place first) {
    m_uCapacity = BlockSize;
    m_pOwned.reset(new (std::nothrow) char[m_uCapacity]);
    while (!m_pOwned) {
        if (m_uCapacity <= 2) // the step below would stay here for ever
            throw std::bad_alloc();
        m_uCapacity = m_uCapacity / 2 + 1;
        m_pOwned.reset(new (std::nothrow) char[m_uCapacity]);
    }
    m_Head = head;
    m_pStream = std::feof(pStream) || std::ferror(pStream) ? nullptr : pStream;
    m_pBlock = m_pNext = m_pFilled = m_pOwned.get();
    m_BlockPlace = first;
}

int CZrEnvReaderSource::Refill() {
    m_bEnded = true;
    if (m_Head.empty() && !m_pStream)
        return End;
    m_BlockPlace = PlaceBehind(m_BlockPlace, m_pBlock, m_pFilled);
    m_pBlock = m_pNext = m_pFilled = m_pOwned.get();
    m_pFilled += m_Head.copy(m_pOwned.get(), m_uCapacity);
    m_Head.remove_prefix(static_cast<std::size_t>(m_pFilled - m_pBlock));
    Fetch();
    if (m_pFilled == m_pBlock)
        return End;
    m_bEnded = false;
    return static_cast<unsigned char>(*m_pNext++);
}

// Fills the rest of the block. After a failure the stream is not asked again: it might go on behind a gap.
void CZrEnvReaderSource::Fetch() {
    const std::size_t uRoom = m_uCapacity - static_cast<std::size_t>(m_pFilled - m_pBlock);
    const std::size_t uCame = m_pStream ? std::fread(m_pOwned.get() + m_uCapacity - uRoom, 1, uRoom, m_pStream) : 0;
    m_pFilled += uCame;
    if (uCame < uRoom)
        m_pStream = nullptr;
}

CZrEnvReaderSource::Place CZrEnvReaderSource::LastPlace() const {
    const char *pLast = m_bEnded || m_pNext == m_pBlock ? m_pNext : m_pNext - 1;
    return PlaceBehind(m_BlockPlace, m_pBlock, pLast);
}

} // namespace Zr
