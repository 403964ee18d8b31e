// The writer of the environment text format: one object for one writing, on the stack of the call.
#ifndef ZR_ENV_WRITER_H
#define ZR_ENV_WRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include <zrclb/env.hpp>

namespace Zr {

class CZrEnvWriter {
public:
    explicit CZrEnvWriter(bool bWrap) : m_bWrap(bWrap) {}
    CZrEnvWriter(const CZrEnvWriter &) = delete;
    CZrEnvWriter &operator=(const CZrEnvWriter &) = delete;

    // The whole of CZrEnv::WriteFile and WriteString; a null environment gives false or null. std::bad_alloc passes.
    bool WriteFile(const CZrEnv *pEnv, const char *szPath);
    char *WriteString(const CZrEnv *pEnv);

private:
    enum class Kind {
        Data,
        Section,
        Block,
        Unknown
    };

    void SetUpBuffer(std::FILE *pStream);
    void WriteEnv(const CZrEnv &env);
    void PutMode();
    void PutSection(const CZrEnvSection &section);
    void PutElement(const CZrEnvElement &element);
    bool PutPlainLine(const char *szName, const char *szData, std::uint32_t uFlags);
    void PutBlockHead(const CZrEnvElement &element, Kind eKind);
    void PutBlockEnd(const CZrEnvBlock &block);
    static Kind KindOf(const CZrEnvElement &element);
    static const CZrEnvDataElement *DataOf(const CZrEnvElement &element);

    void PutIndent();
    void PutText(const char *szText);
    void PutRun(const char *pText, std::size_t uLength);
    std::size_t ToFold() const;
    void PutLineEnd();
    void PutLineFeed();
    void PutFold();
    void PutBytes(const char *pBytes, std::size_t uLength);
    bool MakeRoom();
    void GatherParts();
    bool FlushBuffer();

    // A buffer that became too small, filled from where the one before ends up to uEnd.
    struct Part {
        std::unique_ptr<char[]> pText;
        std::uint32_t uEnd;
    };
    // Capacities grow by 64 KB, at most twice, and are then doubled, up to 4 GB.
    static constexpr std::size_t MostParts = 18;

    std::FILE *m_pStream = nullptr;    // null: the text stays in the buffer
    std::unique_ptr<char[]> m_pBuffer; // of a text in memory: filled from where the parts end
    std::array<Part, MostParts> m_Parts;
    std::size_t m_uParts = 0;
    std::uint32_t m_uCapacity = 0;
    std::uint32_t m_uCount = 0;
    bool m_bOk = true;
    char m_cLast = 0;          // the byte that was put last
    std::size_t m_uIndent = 1; // of the line, plus one
    std::size_t m_uFoldAt = 0; // the rest of indent and column, by the line's width, at which the next fold falls
    std::size_t m_uColumn = 0; // characters of the line so far, without indentation and folds
    bool m_bWrap;
    std::vector<const CZrEnvBlock *> m_Open; // the blocks that the walk is in
};

} // namespace Zr

#endif
