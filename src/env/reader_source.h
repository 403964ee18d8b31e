// Where the reader of the text format takes its bytes from: a text stream, through a block, or a text in memory.
#ifndef ZR_ENV_READER_SOURCE_H
#define ZR_ENV_READER_SOURCE_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string_view>

namespace Zr {

class CZrEnvReaderSource {
public:
    static constexpr int End = -1;
    static constexpr std::size_t BlockSize = 30000;

    // A place in the source, line and column counted from 1, a column being one byte.
    struct Place {
        std::size_t uLine = 1;
        std::size_t uColumn = 1;
    };

    // Takes the bytes of [pText, pText + uLength), which stay the caller's. first is the place of the first of them.
    void OpenText(const char *pText, std::size_t uLength, Place first);

    // Takes the bytes of head, then what pStream delivers from its present position on, up to its end or the first call
    // that fails. Both stay the caller's, for as long as bytes are taken. With little memory the block is smaller;
    // std::bad_alloc when not even a few bytes are left.
    void OpenStream(std::string_view head, std::FILE *pStream, Place first);

    // The next byte, 0 to 255, or End. A carriage return is dropped and the byte behind it taken in its place, whatever
    // it is. The first byte of a block that was just filled is taken without this test, and so is, at the end of a block,
    // the byte behind a carriage return. After End there is nothing but End.
    int Get() {
        if (m_pNext == m_pFilled)
            return Refill();
        const unsigned char cTaken = static_cast<unsigned char>(*m_pNext++);
        if (cTaken != '\r')
            return cTaken;
        return m_pNext == m_pFilled ? Refill() : static_cast<unsigned char>(*m_pNext++);
    }

    // What the block still holds: [Next, Limit). SetNext says how far it was used without Get; at least one byte more.
    const char *Next() const { return m_pNext; }
    const char *Limit() const { return m_pFilled; }
    void SetNext(const char *pNext) { m_pNext = pNext; }

    // The place of the byte that was taken last; at the end of the source the place behind the last byte.
    Place LastPlace() const;

private:
    int Refill();
    void Fetch();

    std::string_view m_Head;          // comes before what the stream still holds
    std::FILE *m_pStream = nullptr;   // null: there is no more
    std::unique_ptr<char[]> m_pOwned; // the block of a stream
    std::size_t m_uCapacity = 0;
    const char *m_pBlock = nullptr;
    const char *m_pNext = nullptr;
    const char *m_pFilled = nullptr;
    Place m_BlockPlace; // of m_pBlock[0]
    bool m_bEnded = false;
};

} // namespace Zr

#endif
