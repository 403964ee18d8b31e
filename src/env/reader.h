// The reader of the environment text format: one object for one reading, on the stack of the call.
#ifndef ZR_ENV_READER_H
#define ZR_ENV_READER_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <zrclb/env.hpp>

#include "env/node_store.h"
#include "env/reader_source.h"

namespace Zr {

// Characters that were looked at behind a backslash and turned out to be no fold. They are always backslashes, then
// blanks, then at most one more character, which may be the end of the input; so they are counted, not stored.
class CZrEnvPending {
public:
    bool Empty() const { return m_uBackslashes == 0 && m_uBlanks == 0 && !m_bHasLast; }
    void PostBackslash() { ++m_uBackslashes; }
    void PostBlank() { ++m_uBlanks; }
    void PostLast(int iChar) {
        m_iLast = iChar;
        m_bHasLast = true;
    }
    void Clear() { m_uBackslashes = m_uBlanks = 0; }

    // The first of them. REQUIRES: not Empty().
    int Take() {
        if (m_uBackslashes != 0)
            return --m_uBackslashes, '\\';
        if (m_uBlanks != 0)
            return --m_uBlanks, ' ';
        m_bHasLast = false;
        return m_iLast;
    }

private:
    std::size_t m_uBackslashes = 0;
    std::size_t m_uBlanks = 0;
    int m_iLast = 0;
    bool m_bHasLast = false;
};

// Reads in two ways that give the same tree. The careful way goes through levels, character by character: source, comments
// (GetLineChar), folds (GetChar), texts (AccumulateString), tokens (GetToken). The plain way (ReadPlainItems) takes items
// that lie whole in the source's block and hold nothing that the levels would change, and stops in front of any other.
class CZrEnvReader {
public:
    explicit CZrEnvReader(EEnvReadMode eMode) : m_eMode(eMode) {}
    CZrEnvReader(const CZrEnvReader &) = delete;
    CZrEnvReader &operator=(const CZrEnvReader &) = delete;

    // The whole of CZrEnv::ReadFile and ReadString; a null environment is reported like a null text. std::bad_alloc
    // passes; sections that were complete by then are in the environment. Stores the place of a failure.
    EZrEnvError ReadFile(CZrEnv *pEnv, const char *szPath);
    EZrEnvError ReadString(CZrEnv *pEnv, const char *szText);

private:
    enum Token : int {
        TokenSection = 1,
        TokenEqual = 2,
        TokenName = 3,
        TokenBlockEnd = 4,
        TokenEnd = 5
    };
    struct Item;
    class PlaceKeeper;

    bool Accepts(CZrEnv *pEnv, const char *szText) const;
    EZrEnvError ReadStream(CZrEnv &env, const char *szPath);
    void ReadText(CZrEnv &env, const char *szText);
    bool DetectReadMode(const char *szLine);
    void Parse(CZrEnv &env);

    // Grammar
    void SkipToFirstSection();
    void ParseSections(CZrEnv &env);
    std::unique_ptr<CZrEnvSection> ParseSection();
    bool ParseBody(CZrEnvSection &section);
    CZrEnvBlock *ParseElement(CZrEnvBlock &block);
    void ReportFault(const char *szText, int iLine);

    // Characters, tokens, texts
    int GetLineChar();
    int GetChar();
    int GetFoldedChar();
    int GetNonBlankChar();
    void GetToken();
    int AccumulateString(int iFirst, char cTerminator);
    void AppendRun(unsigned char uStops);
    void Append(const char *pText, std::size_t uLength);
    bool Grow(std::size_t uNeeded);
    std::string_view ReplaceMarks();

    // The plain way
    CZrEnvBlock *ReadPlainItems(CZrEnvBlock *pBlock, const CZrEnvSection &section);
    CZrEnvBlock *ReadPlainItem(Item &item, CZrEnvBlock *pBlock);
    const char *PlainRun(const char *pFirst, const char *pLimit, unsigned char uStops, bool &rbMarked) const;

    bool m_bAtLineStart = true;
    CZrEnvPending m_Pending;
    int m_iPushedBack = 0; // 0: none
    CZrEnvReaderSource m_Source;
    Token m_eToken = TokenEnd;
    std::string m_TokenText;
    EZrEnvError m_eError = ENV_OK;
    std::size_t m_uCapacity = 8192;
    std::unique_ptr<char[]> m_pAccumulated; // the text in the making
    std::size_t m_uUsed = 0;
    bool m_bCut = false; // no memory: the rest of the text is dropped
    char m_szFileName[260] = "";
    EEnvReadMode m_eMode;
    CZrEnvNodeStore::Batch m_Batch;
};

} // namespace Zr

#endif
