// The writer of the environment text format: the walk over the tree, lines and folds, the output buffer.
#include "env/writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <zrclb/report.h>

#include "env/node_store.h"
#include "platform/memory.h"
#include "platform/streams.h"

namespace Zr {

namespace {

constexpr char Tag[] = "ZrEnv";
constexpr std::uint32_t Grain = 65536;
constexpr std::size_t LineWidth = 90;

// The characters that a run of text stops at: its end and the two that are written as marks.
constexpr std::array<bool, 256> MakeStops() {
    std::array<bool, 256> stops{};
    stops[0] = stops['\n'] = stops['\r'] = true;
    return stops;
}

constexpr std::array<bool, 256> Stops = MakeStops();

std::size_t RunLength(const char *szText) {
    const char *pNext = szText;
    while (!Stops[static_cast<unsigned char>(*pNext)])
        ++pNext;
    return static_cast<std::size_t>(pNext - szText);
}

// The characters up to the first stop, put at pOut; pText goes to the stop. Whole strides are read and written, the last
// one beyond the stop.
char *CopyRun(char *pOut, const char *&pText) {
#ifdef __SSE2__
    for (;; pOut += 16, pText += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pText));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(pOut), bytes);
        const __m128i stops = _mm_or_si128(
            _mm_cmpeq_epi8(bytes, _mm_setzero_si128()),
            _mm_or_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('\n')), _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\r'))));
        if (const auto uStops = static_cast<unsigned>(_mm_movemask_epi8(stops))) {
            pText += std::countr_zero(uStops);
            return pOut + std::countr_zero(uStops);
        }
    }
#else
    const std::size_t uRun = RunLength(pText);
    std::memcpy(pOut, pText, uRun);
    pText += uRun;
    return pOut + uRun;
#endif
}

struct CloseStream {
    void operator()(std::FILE *pStream) const { std::fclose(pStream); }
};

} // namespace

// ---- One writing from end to end

bool CZrEnvWriter::WriteFile(const CZrEnv *pEnv, const char *szPath) {
    if (!pEnv)
        return false;
    std::unique_ptr<std::FILE, CloseStream> pStream(szPath ? zr::platform::OpenText(szPath, "wt") : nullptr);
    if (!pStream) {
        zr_error("Can't open to write:", szPath ? szPath : "", nullptr, Tag, __LINE__);
        return false;
    }
    SetUpBuffer(pStream.get());
    WriteEnv(*pEnv);
    if (m_bOk)
        FlushBuffer();
    return true; // the file could be opened; a full disk is not told
}

char *CZrEnvWriter::WriteString(const CZrEnv *pEnv) {
    if (!pEnv)
        return nullptr;
    SetUpBuffer(nullptr);
    WriteEnv(*pEnv);
    GatherParts();
    m_pBuffer[m_uCount] = '\0';
    return m_pBuffer.release();
}

void CZrEnvWriter::SetUpBuffer(std::FILE *pStream) {
    m_pStream = pStream;
    m_uCapacity = Grain;
    m_pBuffer.reset(new (std::nothrow) char[m_uCapacity]);
    while (!m_pBuffer) {
        if (m_uCapacity <= 2) // the step below would stay here for ever
            throw std::bad_alloc();
        m_uCapacity = m_uCapacity / 2 + 1;
        m_pBuffer.reset(new (std::nothrow) char[m_uCapacity]);
    }
}

void CZrEnvWriter::WriteEnv(const CZrEnv &env) {
    PutMode();
    if (env.IsSubEnv()) {
        zr_message("can not write subenv", nullptr, nullptr, Tag, __LINE__);
        return;
    }
    for (CZrEnvSection *pSection = env.GetFirstSection(); pSection; pSection = env.GetNextSection(pSection))
        PutSection(*pSection);
}

void CZrEnvWriter::PutMode() {
    constexpr char szLine[] = "__ZR_ENV_READ_MODE__=NOT_WRAPPED";
    if (m_bWrap)
        return;
    PutBytes(szLine, sizeof szLine - 1);
    PutLineFeed();
}

// ---- The walk

// The section with all that is below it. The blocks that are open are kept apart: a copy of a block shares its children
// with its source, and their parent links lead there and not back to the copy.
void CZrEnvWriter::PutSection(const CZrEnvSection &section) {
    const CZrEnvElement *pElem = &section;
    while (pElem) {
        const std::size_t uDepth = m_Open.size();
        PutElement(*pElem);
        if (m_Open.size() != uDepth)
            pElem = m_Open.back()->m_pFirst;
        else
            pElem = m_Open.empty() ? nullptr : pElem->m_pSucc;
        while (!pElem && !m_Open.empty()) {
            const CZrEnvBlock *pClosed = m_Open.back();
            m_Open.pop_back();
            PutBlockEnd(*pClosed);
            pElem = m_Open.empty() ? nullptr : pClosed->m_pSucc; // the successor of the section is not below it
        }
    }
}

// A data line whole; of a block its head, and the block is open then. Nothing of an element without a name, or of a data
// element without a text.
void CZrEnvWriter::PutElement(const CZrEnvElement &element) {
    if (!element.m_szName)
        return;
    const Kind eKind = KindOf(element);
    if (eKind == Kind::Data) {
        const char *szData = DataOf(element)->m_szData;
        if (!szData || PutPlainLine(element.m_szName, szData, element.m_uFlags))
            return;
        PutIndent();
        PutText(element.m_szName);
        PutRun(" =", 2);
        PutText(szData);
        PutLineEnd();
    } else if (eKind == Kind::Unknown) {
        zr_error("Unknown env-Element", nullptr, nullptr, Tag, __LINE__);
    } else {
        PutBlockHead(element, eKind);
    }
}

// A data line as it stands, if that is known to be right: not folded, without marks, with room for it, and with texts
// that whole strides may be read from. False, with nothing done, for any other.
bool CZrEnvWriter::PutPlainLine(const char *szName, const char *szData, std::uint32_t uFlags) {
    using Store = CZrEnvNodeStore;
    constexpr std::size_t uMost = 2 * (Store::LongestInChunk + Store::ReadableBehind) + sizeof " =\\\r\n";
    constexpr std::uint32_t uAsked = Store::InChunk | Store::OwnsName | Store::OwnsData;
    if (m_bWrap || (uFlags & uAsked) != Store::InChunk || m_uCapacity - m_uCount < uMost + m_uIndent || !m_bOk)
        return false;
    char *pOut = m_pBuffer.get() + m_uCount;
    std::memset(pOut, ' ', m_uIndent - 1);
    pOut = CopyRun(pOut + m_uIndent - 1, szName);
    *pOut++ = ' ';
    *pOut++ = '=';
    pOut = CopyRun(pOut, szData);
    if (*szName != '\0' || *szData != '\0')
        return false;
    if (pOut[-1] == '\\')
        *pOut++ = '\\';
    if (!m_pStream)
        *pOut++ = '\r';
    *pOut++ = '\n';
    m_uCount = static_cast<std::uint32_t>(pOut - m_pBuffer.get());
    m_cLast = '\n';
    return true;
}

void CZrEnvWriter::PutBlockHead(const CZrEnvElement &element, Kind eKind) {
    PutIndent();
    if (eKind == Kind::Section)
        PutRun("[", 1);
    PutText(element.m_szName);
    if (eKind == Kind::Section)
        PutRun("]", 1);
    else
        PutRun(" ={", 3);
    PutLineEnd();
    m_Open.push_back(element.ToEnvBlock());
    m_uIndent += 2;
}

void CZrEnvWriter::PutBlockEnd(const CZrEnvBlock &block) {
    m_uIndent -= 2;
    if (KindOf(block) != Kind::Block)
        return; // a section ends where the next one begins
    PutIndent();
    PutRun("}", 1);
    PutLineEnd();
}

CZrEnvWriter::Kind CZrEnvWriter::KindOf(const CZrEnvElement &element) {
    if (element.m_uFlags & CZrEnvNodeStore::LibraryType) { // its flags say what the conversions would
        if (element.m_uFlags & CZrEnvNodeStore::KindData)
            return Kind::Data;
        return element.m_uFlags & CZrEnvNodeStore::KindSection ? Kind::Section : Kind::Block;
    }
    if (element.ToEnvDataElement())
        return Kind::Data;
    if (!element.ToEnvBlock())
        return Kind::Unknown;
    return element.ToEnvSection() ? Kind::Section : Kind::Block;
}

const CZrEnvDataElement *CZrEnvWriter::DataOf(const CZrEnvElement &element) {
    return element.m_uFlags & CZrEnvNodeStore::LibraryType ? static_cast<const CZrEnvDataElement *>(&element)
                                                           : element.ToEnvDataElement();
}

// ---- Lines

void CZrEnvWriter::PutIndent() {
    static constexpr char szBlanks[] = "                                ";
    constexpr std::size_t uMost = sizeof szBlanks - 1;
    for (std::size_t uLeft = m_uIndent - 1; uLeft != 0;) {
        const std::size_t uNow = std::min(uLeft, uMost);
        PutBytes(szBlanks, uNow);
        uLeft -= uNow;
    }
    m_uFoldAt = 0;
    m_uColumn = 0;
}

void CZrEnvWriter::PutText(const char *szText) {
    for (;;) {
        const std::size_t uRun = RunLength(szText);
        PutRun(szText, uRun);
        szText += uRun;
        if (*szText == '\0')
            return;
        PutRun(*szText == '\n' ? "<<\\n>>" : "<<\\r>>", 6);
        ++szText;
    }
}

// Characters of a line that are put as they are, with the folds that fall among them. A fold falls where indentation and
// column, by the line's width, leave the rest m_uFoldAt: normally 0. Behind a backslash it would not be read as a fold,
// so there it waits for the next character; once it has waited for a whole line's width it comes no more.
void CZrEnvWriter::PutRun(const char *pText, std::size_t uLength) {
    if (!m_bWrap) {
        PutBytes(pText, uLength);
        return;
    }
    while (uLength != 0) {
        const std::size_t uNow = std::min(uLength, ToFold());
        PutBytes(pText, uNow);
        m_uColumn += uNow;
        pText += uNow;
        uLength -= uNow;
        if ((m_uIndent + m_uColumn) % LineWidth == m_uFoldAt)
            PutFold();
    }
}

// How many characters go up to the next place of a fold; at least 1.
std::size_t CZrEnvWriter::ToFold() const {
    if (m_uFoldAt >= LineWidth)
        return std::numeric_limits<std::size_t>::max();
    const std::size_t uRest = (m_uIndent + m_uColumn) % LineWidth;
    return uRest < m_uFoldAt ? m_uFoldAt - uRest : LineWidth + m_uFoldAt - uRest;
}

void CZrEnvWriter::PutFold() {
    if (m_cLast == '\\') {
        ++m_uFoldAt;
        return;
    }
    PutBytes("\\", 1);
    PutLineFeed();
    m_uFoldAt = 0;
}

// A text that ends in a backslash gets one more, so that the line's end is not read as a fold; with folds and without.
void CZrEnvWriter::PutLineEnd() {
    if (m_cLast == '\\')
        PutBytes("\\", 1);
    PutLineFeed();
}

// Text streams write a line feed as CR LF by themselves.
void CZrEnvWriter::PutLineFeed() {
    if (m_pStream)
        PutBytes("\n", 1);
    else
        PutBytes("\r\n", 2);
}

// ---- Bytes

// One byte of the buffer always stays free for the end of the text.
void CZrEnvWriter::PutBytes(const char *pBytes, std::size_t uLength) {
    while (uLength != 0 && m_bOk) {
        const std::size_t uRoom = m_uCapacity - 1 - m_uCount;
        const std::size_t uNow = std::min(uLength, uRoom);
        if (uNow == 0) {
            m_bOk = MakeRoom();
            continue;
        }
        std::memcpy(m_pBuffer.get() + m_uCount, pBytes, uNow);
        m_uCount += static_cast<std::uint32_t>(uNow);
        m_cLast = pBytes[uNow - 1];
        pBytes += uNow;
        uLength -= uNow;
    }
}

// False if the stream does not take it: what is in the file stays the front of the text, without a gap.
bool CZrEnvWriter::FlushBuffer() {
    const std::size_t uWritten = std::fwrite(m_pBuffer.get(), 1, m_uCount, m_pStream);
    return uWritten == std::exchange(m_uCount, 0);
}

// Writes the buffer out or, for a text in memory, goes on in a larger one. False if that fails: all further output is
// dropped.
bool CZrEnvWriter::MakeRoom() {
    if (m_pStream)
        return FlushBuffer();
    const std::uint64_t uCapacity = m_uCapacity + std::uint64_t{Grain} * std::max(m_uCapacity / Grain, 1u);
    const bool bFits = uCapacity <= std::numeric_limits<std::uint32_t>::max();
    std::unique_ptr<char[]> pLarger(bFits ? new (std::nothrow) char[static_cast<std::size_t>(uCapacity)] : nullptr);
    if (!pLarger) {
        zr_error("Can not allocate buffer", nullptr, nullptr, Tag, __LINE__);
        return false;
    }
    m_Parts[m_uParts++] = {std::move(m_pBuffer), m_uCount};
    m_pBuffer = std::move(pLarger);
    m_uCapacity = static_cast<std::uint32_t>(uCapacity);
    return true;
}

// Copies what stands in former buffers to its place in the last one. Until then each new buffer is only filled from where
// the former ends, so half as many of its pages are ever touched as if it began with a copy.
void CZrEnvWriter::GatherParts() {
    if (m_uParts == 0)
        return;
    zr::platform::FillPagesAhead(m_pBuffer.get(), m_Parts[m_uParts - 1].uEnd);
    std::uint32_t uStart = 0;
    for (Part *pPart = m_Parts.data(); m_uParts != 0; ++pPart, --m_uParts) {
        std::memcpy(m_pBuffer.get() + uStart, pPart->pText.get() + uStart, pPart->uEnd - uStart);
        uStart = pPart->uEnd;
        pPart->pText.reset();
    }
}

} // namespace Zr
