// The reader of the environment text format: grammar, tokens and characters.
//
//   text     = [ mode line ] anything { section } end
//   section  = '[' name ']' body
//   body     = { name '=' ( value line-feed | '{' body '}' ) }
//
// Everything before the first '[' is skipped. A name runs to the next '=', over line ends if need be; blanks and tabs
// around names and values do not belong to them. Nesting is followed through the parent links of the blocks, so it costs
// no stack; whatever is wrong at some depth is reported once there, and once more for the section that is given up.
#include "env/reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

#include <zrclb/report.h>

#include "env/reader_text.h"
#include "platform/files.h"
#include "platform/streams.h"

namespace Zr {

namespace {

constexpr char Tag[] = "ZrEnv";
constexpr char ModeMark[] = "__ZR_ENV_READ_MODE__";

struct CloseStream {
    void operator()(std::FILE *pStream) const { std::fclose(pStream); }
};

zr_long Saturated(std::size_t uNumber) {
    const auto uMost = static_cast<std::size_t>(std::numeric_limits<zr_long>::max());
    return static_cast<zr_long>(std::min(uNumber, uMost));
}

} // namespace

// ---- One reading from end to end

// Stores the place of a failure in the environment, or that there was none, however the reading ends.
class CZrEnvReader::PlaceKeeper {
public:
    PlaceKeeper(const CZrEnvReaderSource &source, CZrEnv *pEnv) : m_Source(source), m_pEnv(pEnv) {}
    PlaceKeeper(const PlaceKeeper &) = delete;
    PlaceKeeper &operator=(const PlaceKeeper &) = delete;
    ~PlaceKeeper() {
        if (!m_pEnv)
            return;
        // Telling the place counts the lines of the whole text, so only a failure asks for it.
        const CZrEnvReaderSource::Place place =
            m_eResult == ENV_OK ? CZrEnvReaderSource::Place{0, 0} : m_Source.LastPlace();
        m_pEnv->m_lErrorLine = Saturated(place.uLine);
        m_pEnv->m_lErrorColumn = Saturated(place.uColumn);
    }
    EZrEnvError Keep(EZrEnvError eResult) { return m_eResult = eResult; }

private:
    const CZrEnvReaderSource &m_Source;
    CZrEnv *m_pEnv;
    EZrEnvError m_eResult = ENV_ERROR; // what an exception leaves
};

EZrEnvError CZrEnvReader::ReadFile(CZrEnv *pEnv, const char *szPath) {
    PlaceKeeper keeper(m_Source, pEnv);
    if (!Accepts(pEnv, szPath))
        return ENV_ERROR;
    const std::string path(szPath); // the caller's text may lie in the tree that goes now
    path.copy(m_szFileName, sizeof m_szFileName - 1);
    m_pAccumulated.reset(new char[m_uCapacity]);
    pEnv->DeleteEnvironmentSections();
    return keeper.Keep(ReadStream(*pEnv, path.c_str()));
}

EZrEnvError CZrEnvReader::ReadString(CZrEnv *pEnv, const char *szText) {
    PlaceKeeper keeper(m_Source, pEnv);
    if (!Accepts(pEnv, szText))
        return ENV_ERROR;
    m_pAccumulated.reset(new char[m_uCapacity]);
    pEnv->DeleteEnvironmentSections();
    ReadText(*pEnv, szText);
    return keeper.Keep(m_eError);
}

bool CZrEnvReader::Accepts(CZrEnv *pEnv, const char *szText) const {
    if (!pEnv || !szText) {
        zr_error("NULL-Pointer", nullptr, nullptr, Tag, __LINE__);
        return false;
    }
    if (pEnv->IsSubEnv()) {
        zr_message("can not read subenv", nullptr, nullptr, Tag, __LINE__);
        return false;
    }
    return true;
}

EZrEnvError CZrEnvReader::ReadStream(CZrEnv &env, const char *szPath) {
    std::unique_ptr<std::FILE, CloseStream> pStream(zr::platform::OpenText(szPath, "rt"));
    if (!pStream) {
        zr_error("Can't open to read:", szPath, nullptr, Tag, __LINE__);
        return ENV_ERROR;
    }

    // The line is handed on, not read again: a pipe cannot go back.
    char szLine[255] = "";
    std::size_t uLength = 0;
    while (uLength + 1 < sizeof szLine && (uLength == 0 || szLine[uLength - 1] != '\n')) {
        const int iChar = std::getc(pStream.get());
        if (iChar == EOF)
            break;
        szLine[uLength++] = static_cast<char>(iChar);
    }
    std::string_view head(szLine, uLength);
    CZrEnvReaderSource::Place first;
    if (DetectReadMode(szLine)) {
        if (head.ends_with('\n'))
            first.uLine = 2;
        else
            first.uColumn += uLength;
        head = {};
    }

    m_Source.OpenStream(head, pStream.get(), first);
    Parse(env);
    pStream.reset();
    if (m_eError != ENV_OK)
        return m_eError;

    zr::platform::FileStatus status;
    if (zr::platform::GetFileStatus(szPath, status))
        env.SetFileMTime(static_cast<zr_long>(static_cast<std::uint32_t>(status.modified))); // the low 32 bits
    else
        zr_message("_stat failed", nullptr, nullptr, Tag, __LINE__);
    return ENV_OK;
}

void CZrEnvReader::ReadText(CZrEnv &env, const char *szText) {
    char szLine[256] = "";
    std::size_t uLength = 0;
    while (uLength + 1 < sizeof szLine && szText[uLength] != '\0' && szText[uLength] != '\n') {
        szLine[uLength] = szText[uLength];
        ++uLength;
    }
    CZrEnvReaderSource::Place first;
    if (DetectReadMode(szLine)) {
        first.uColumn += uLength;
        szText += uLength;
        if (*szText == '\n') {
            ++szText;
            first = {2, 1};
        }
    }
    m_Source.OpenText(szText, std::strlen(szText), first);
    Parse(env);
}

// What stands behind the mark makes no difference.
bool CZrEnvReader::DetectReadMode(const char *szLine) {
    const bool bModeLine = std::strncmp(szLine, ModeMark, sizeof ModeMark - 1) == 0;
    if (m_eMode == eEnvReadAuto)
        m_eMode = bModeLine ? eEnvReadNotWrapped : eEnvReadWrapped;
    return bModeLine;
}

void CZrEnvReader::Parse(CZrEnv &env) {
    SkipToFirstSection();
    GetToken();
    env.ResetLastError();
    ParseSections(env);
}

// ---- Grammar

void CZrEnvReader::SkipToFirstSection() {
    int iChar = GetChar();
    while (iChar != '[' && iChar != CZrEnvReaderSource::End)
        iChar = GetChar();
    m_iPushedBack = iChar;
}

void CZrEnvReader::ParseSections(CZrEnv &env) {
    m_eError = ENV_OK;
    while (std::unique_ptr<CZrEnvSection> pSection = ParseSection()) {
        if (!env.InsertSection(pSection.get())) {
            m_eError = ENV_ERROR;
            return;
        }
        pSection.release(); // the environment's now
    }
}

// The section that begins at the present token, with all that is in it. Null at the end of the input and on a fault.
std::unique_ptr<CZrEnvSection> CZrEnvReader::ParseSection() {
    if (m_eToken == TokenEnd)
        return nullptr;
    if (m_eToken != TokenSection) {
        ReportFault("Section expected", __LINE__);
        return nullptr;
    }
    AccumulateString(GetNonBlankChar(), ']');
    std::unique_ptr<CZrEnvSection> pSection(m_Batch.MakeSection({m_pAccumulated.get(), m_uUsed}));
    if (ParseBody(*pSection))
        return pSection;
    zr_error("Fehler beim Lesen der Sektion:", pSection->GetName(), m_szFileName, Tag, __LINE__);
    return nullptr;
}

// All children of the section, with all that is below them. True at a token that ends the section, which is then the
// present one; what it is is the caller's business.
bool CZrEnvReader::ParseBody(CZrEnvSection &section) {
    CZrEnvBlock *pBlock = &section;
    for (;;) {
        pBlock = ReadPlainItems(pBlock, section);
        GetToken();
        if (m_eToken == TokenName) {
            pBlock = ParseElement(*pBlock);
            if (!pBlock)
                return false;
        } else if (pBlock == &section) {
            return true;
        } else if (m_eToken == TokenBlockEnd) {
            pBlock = pBlock->GetParent();
        } else {
            ReportFault("Cbracesymbol expected", __LINE__);
            return false;
        }
    }
}

// The element whose name is the present token, appended to the block. The block that what follows belongs to; null on a
// fault.
CZrEnvBlock *CZrEnvReader::ParseElement(CZrEnvBlock &block) {
    std::string name;
    name.swap(m_TokenText);
    GetToken();
    if (m_eToken != TokenEqual) {
        ReportFault("Equal sign expected", __LINE__);
        return nullptr;
    }
    const int iFirst = GetNonBlankChar();
    if (iFirst == '{') {
        CZrEnvBlock *pInner = m_Batch.MakeBlock(name);
        CZrEnvNodeStore::Append(block, pInner);
        return pInner;
    }
    AccumulateString(iFirst, '\n');
    CZrEnvNodeStore::AppendLeaf(block, m_Batch.MakeData(name, ReplaceMarks()));
    return &block;
}

void CZrEnvReader::ReportFault(const char *szText, int iLine) {
    zr_error(szText, m_szFileName, nullptr, Tag, iLine);
    m_eError = ENV_BAD_FORMAT;
}

// ---- Characters: comments and folds

// Removes comments: lines whose first character other than blanks and tabs is a semicolon.
int CZrEnvReader::GetLineChar() {
    int iChar = m_Source.Get();
    if (iChar == CZrEnvReaderSource::End)
        return iChar;
    if (m_bAtLineStart && iChar == ';') {
        do {
            const char *pNext = m_Source.Next();
            const auto uLeft = static_cast<std::size_t>(m_Source.Limit() - pNext);
            if (const void *pEnd = uLeft == 0 ? nullptr : std::memchr(pNext, '\n', uLeft))
                m_Source.SetNext(static_cast<const char *>(pEnd)); // Get takes it, also behind a CR
            else
                m_Source.SetNext(m_Source.Limit());
            iChar = m_Source.Get();
        } while (iChar != '\n' && iChar != CZrEnvReaderSource::End);
        m_bAtLineStart = iChar == '\n';
        return iChar;
    }
    m_bAtLineStart = iChar == '\n' || (m_bAtLineStart && IsBlank(iChar));
    return iChar;
}

// Removes folds: a line that ends in backslashes and blanks, or in one backslash, goes on with the next line.
int CZrEnvReader::GetChar() {
    if (m_iPushedBack != 0) {
        const int iChar = m_iPushedBack;
        m_iPushedBack = 0;
        return iChar;
    }
    if (!m_Pending.Empty())
        return m_Pending.Take();
    const int iChar = GetLineChar();
    return iChar != '\\' || m_eMode == eEnvReadNotWrapped ? iChar : GetFoldedChar();
}

// The character that counts, after a backslash was taken and nothing is pending.
int CZrEnvReader::GetFoldedChar() {
    int iChar = '\\';
    while (iChar == '\\') {
        m_Pending.PostBackslash();
        iChar = GetLineChar();
        while (iChar == '\\') {
            iChar = GetLineChar();
            if (iChar == '\n') { // of several backslashes right before a line feed one goes, and the line ends
                m_Pending.PostLast(iChar);
                return m_Pending.Take();
            }
            m_Pending.PostBackslash();
        }
        while (iChar == ' ') {
            m_Pending.PostBlank();
            iChar = GetLineChar();
        }
        if (iChar != '\n') {
            m_Pending.PostLast(iChar);
            return m_Pending.Take();
        }
        m_Pending.Clear();
        m_bAtLineStart = false; // a semicolon at the start of a continuation is text
        iChar = GetLineChar();
    }
    return iChar;
}

int CZrEnvReader::GetNonBlankChar() {
    int iChar = GetChar();
    while (IsBlank(iChar))
        iChar = GetChar();
    return iChar;
}

// ---- Tokens and texts

void CZrEnvReader::GetToken() {
    int iChar = GetNonBlankChar();
    while (iChar == '\n')
        iChar = GetNonBlankChar();
    switch (iChar) {
    case '=':
        m_eToken = TokenEqual;
        break;
    case '[':
        m_eToken = TokenSection;
        break;
    case '}':
        m_eToken = TokenBlockEnd;
        break;
    case CZrEnvReaderSource::End:
        m_eToken = TokenEnd;
        break;
    default:
        m_iPushedBack = AccumulateString(iChar, '=');
        m_TokenText.assign(m_pAccumulated.get(), m_uUsed);
        m_eToken = TokenName;
        break;
    }
}

// Collects a text that begins with iFirst up to a terminator, or to the end of the input, and gives what stopped it.
// The comparison is that of signed bytes, in which byte 0xFF is the end of the input: it ends a text, and is taken with
// it, wherever it is not the first character. A text stops at its first zero byte, although what stands behind that is
// passed over up to the terminator as well; a zero as the first character is left out.
int CZrEnvReader::AccumulateString(int iFirst, char cTerminator) {
    m_uUsed = 0;
    m_bCut = false;
    if (iFirst == cTerminator)
        return iFirst;
    if (iFirst != 0 && iFirst != CZrEnvReaderSource::End) {
        const char cFirst = static_cast<char>(iFirst);
        Append(&cFirst, 1);
    }
    const auto uStops = static_cast<unsigned char>(StopAlways | (cTerminator == '=' ? StopEqual : 0) |
                                                   (cTerminator == ']' ? StopBracket : 0));
    int iStop;
    for (;;) {
        if (m_Pending.Empty() && !m_bAtLineStart)
            AppendRun(uStops);
        const int iChar = GetChar();
        iStop = iChar == 0xFF ? CZrEnvReaderSource::End : iChar;
        if (iStop == CZrEnvReaderSource::End || iStop == cTerminator)
            break;
        const char cChar = static_cast<char>(iChar);
        Append(&cChar, 1);
    }
    const char *pText = m_pAccumulated.get();
    const void *pZero = std::memchr(pText, '\0', m_uUsed);
    const char *pEnd = pZero ? static_cast<const char *>(pZero) : pText + m_uUsed;
    m_uUsed = WithoutTrailingBlanks(pText, pEnd).size();
    return iStop;
}

// Appends the ordinary characters that come next in the source's block. Only away from a line's start, where a semicolon
// is one of them.
void CZrEnvReader::AppendRun(unsigned char uStops) {
    const char *pFirst = m_Source.Next();
    const char *pLimit = m_Source.Limit();
    const char *pLast = FindStop(pFirst, pLimit, uStops);
    Append(pFirst, static_cast<std::size_t>(pLast - pFirst));
    m_Source.SetNext(pLast);
}

void CZrEnvReader::Append(const char *pText, std::size_t uLength) {
    if (m_bCut || uLength == 0)
        return;
    if (uLength >= m_uCapacity - m_uUsed && !Grow(m_uUsed + uLength + 1)) {
        m_bCut = true;
        uLength = m_uCapacity - 1 - m_uUsed;
    }
    std::memcpy(m_pAccumulated.get() + m_uUsed, pText, uLength);
    m_uUsed += uLength;
}

// Doubles the buffer until it holds uNeeded, or as often as there is memory. False, with a report, if that is not enough:
// the text is cut at what there is then, and reading goes on.
bool CZrEnvReader::Grow(std::size_t uNeeded) {
    std::size_t uCapacity = m_uCapacity;
    while (uCapacity < uNeeded && uCapacity <= std::numeric_limits<std::size_t>::max() / 4)
        uCapacity *= 2;
    std::unique_ptr<char[]> pLarger;
    while (!pLarger && uCapacity != m_uCapacity) {
        pLarger.reset(new (std::nothrow) char[uCapacity]);
        if (!pLarger)
            uCapacity /= 2;
    }
    if (pLarger) {
        std::memcpy(pLarger.get(), m_pAccumulated.get(), m_uUsed);
        m_pAccumulated = std::move(pLarger);
        m_uCapacity = uCapacity;
    }
    if (m_uCapacity >= uNeeded)
        return true;
    zr_error("CZrEnvReader::AccumulateString : Out of memory", m_szFileName, nullptr, Tag, __LINE__);
    return false;
}

// The accumulated text with its line-end marks replaced by line feeds and carriage returns, in one pass: marks cannot
// overlap, nor come about by a replacement.
std::string_view CZrEnvReader::ReplaceMarks() {
    char *pText = m_pAccumulated.get();
    char *pOut = pText;
    const char *pIn = pText;
    const char *pLast = pText + m_uUsed;
    const char *pSearch = pIn;
    while (const void *pFound =
               pSearch == pLast ? nullptr : std::memchr(pSearch, '\\', static_cast<std::size_t>(pLast - pSearch))) {
        const char *pAt = static_cast<const char *>(pFound);
        pSearch = pAt + 1;
        if (!InMark(pAt, pIn, pLast))
            continue;
        const auto uBefore = static_cast<std::size_t>(pAt - 2 - pIn);
        const char cReplacement = pAt[1] == 'n' ? '\n' : '\r';
        std::memmove(pOut, pIn, uBefore);
        pOut += uBefore;
        *pOut++ = cReplacement;
        pIn = pSearch = pAt + 4;
    }
    const auto uRest = static_cast<std::size_t>(pLast - pIn);
    std::memmove(pOut, pIn, uRest);
    m_uUsed = static_cast<std::size_t>(pOut - pText) + uRest;
    return {pText, m_uUsed};
}

} // namespace Zr
