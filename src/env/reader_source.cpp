// The block source of the reader: filling, and the place in the file.
#include "env/reader_source.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace Zr {

namespace {

// Counted in rounds that fit a byte, so that the compiler can add whole vectors.
std::size_t CountLineFeeds(const char *pFirst, const char *pLast) {
    std::size_t uTotal = 0;
    while (pFirst != pLast) {
        const std::ptrdiff_t lRound = std::min<std::ptrdiff_t>(pLast - pFirst, 255);
        std::uint8_t uRound = 0;
        for (std::ptrdiff_t i = 0; i < lRound; ++i)
            uRound = static_cast<std::uint8_t>(uRound + (pFirst[i] == '\n'));
        uTotal += uRound;
        pFirst += lRound;
    }
    return uTotal;
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

void CZrEnvReaderSource::OpenStream(std::FILE *pStream, Place first) {
    m_uCapacity = BlockSize;
    m_pOwned.reset(new (std::nothrow) char[m_uCapacity]);
    while (!m_pOwned) {
        if (m_uCapacity <= 2) // the step below would stay here for ever
            throw std::bad_alloc();
        m_uCapacity = m_uCapacity / 2 + 1;
        m_pOwned.reset(new (std::nothrow) char[m_uCapacity]);
    }
    m_pStream = pStream;
    m_pBlock = m_pNext = m_pFilled = m_pOwned.get();
    m_BlockPlace = first;
}

int CZrEnvReaderSource::Refill() {
    m_bEnded = true;
    if (!m_pStream)
        return End;
    m_BlockPlace = PlaceBehind(m_BlockPlace, m_pBlock, m_pFilled);
    m_pBlock = m_pNext = m_pFilled = m_pOwned.get();
    const std::size_t uCame = std::fread(m_pOwned.get(), 1, m_uCapacity, m_pStream);
    if (uCame == 0)
        return End;
    m_bEnded = false;
    m_pFilled += uCame;
    return static_cast<unsigned char>(*m_pNext++);
}

CZrEnvReaderSource::Place CZrEnvReaderSource::LastPlace() const {
    const char *pLast = m_bEnded || m_pNext == m_pBlock ? m_pNext : m_pNext - 1;
    return PlaceBehind(m_BlockPlace, m_pBlock, pLast);
}

} // namespace Zr
