// A range of a caller's memory into which parsed numbers are stored one behind the other, and from which they can be
// read back as texts. Values need no alignment. One thread at a time.
#ifndef ZR_ENV_VALUE_SINK_H
#define ZR_ENV_VALUE_SINK_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <zrclb/types.h>

namespace Zr {

class CZrEnvValueSink {
public:
    enum Flag : std::uint32_t {
        Reading = 4,
        Writing = 6,
        WriteOverflow = 8, // a store did not fit
        ReadOverflow = 16  // a read did not fit
    };

    // Over memory[0..size-1], which stays the caller's; null memory counts as a size of 0. A sink opened for writing is
    // empty, one opened for reading is full.
    static CZrEnvValueSink ForWriting(void *memory, std::size_t size) { return {memory, size, Writing}; }
    static CZrEnvValueSink ForReading(void *memory, std::size_t size) { return {memory, size, Reading}; }

    // Store what the standard conversion makes of the text. Null, no room, or an earlier overflow sets WriteOverflow.
    void PutDouble(const char *text);
    void PutLong(const char *text);

    // Stores the text with its terminator, which the next store overwrites. Faults as above.
    void PutString(const char *text);

    // Store a number that is converted already. True if it fitted, else WriteOverflow is set.
    bool StoreDouble(double value) { return Store(&value, sizeof value); }
    bool StoreLong(zr_long value) { return Store(&value, sizeof value); }

    // Give the next number as text ("%.13g", "%ld") in buffer[0..capacity], the terminator not counted in capacity, step
    // over it, and give the text's length. A text longer than capacity sets ReadOverflow and gives the length needed; an
    // earlier overflow, no number left or a null buffer sets ReadOverflow and gives 0. The buffer is then untouched.
    std::size_t GetDoubleText(char *buffer, std::size_t capacity);
    std::size_t GetLongText(char *buffer, std::size_t capacity);

    std::uint32_t Flags() const { return m_uFlags; }
    bool Overflowed() const { return (m_uFlags & WriteOverflow) != 0; }
    bool HasRoom(std::size_t size) const {
        return !Overflowed() && static_cast<std::size_t>(m_pEnd - m_pWrite) >= size;
    }
    std::size_t BytesWritten() const { return static_cast<std::size_t>(m_pWrite - m_pBegin); }
    void SetOverflow() { m_uFlags |= WriteOverflow; }

private:
    CZrEnvValueSink(void *memory, std::size_t size, Flag mode)
        : m_uFlags(mode), m_pBegin(static_cast<unsigned char *>(memory)),
          m_pWrite(mode == Reading && memory != nullptr ? m_pBegin + size : m_pBegin), m_pRead(m_pBegin),
          m_pEnd(memory != nullptr ? m_pBegin + size : m_pBegin) {}

    bool Store(const void *value, std::size_t size) {
        if (!HasRoom(size)) {
            SetOverflow();
            return false;
        }
        std::memcpy(m_pWrite, value, size);
        m_pWrite += size;
        return true;
    }

    bool CanRead(std::size_t size, const char *buffer);
    std::size_t GiveText(const char *text, std::size_t length, std::size_t size, char *buffer, std::size_t capacity);

    std::uint32_t m_uFlags;
    unsigned char *m_pBegin;
    unsigned char *m_pWrite;
    unsigned char *m_pRead;
    unsigned char *m_pEnd;
};

} // namespace Zr

#endif
