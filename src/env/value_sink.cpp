// The value sink: stores from texts, and texts from stored numbers.
#include "env/value_sink.h"

#include "env/number_text.h"

namespace Zr {

void CZrEnvValueSink::PutDouble(const char *text) {
    if (text == nullptr)
        SetOverflow();
    else
        StoreDouble(zr::env::ReadDouble(text));
}

void CZrEnvValueSink::PutLong(const char *text) {
    if (text == nullptr)
        SetOverflow();
    else
        StoreLong(zr::env::ReadLong(text));
}

void CZrEnvValueSink::PutString(const char *text) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    if (text == nullptr || !HasRoom(length + 1)) {
        SetOverflow();
        return;
    }
    std::memmove(m_pWrite, text, length + 1);
    m_pWrite += length;
}

std::size_t CZrEnvValueSink::GetDoubleText(char *buffer, std::size_t capacity) {
    double value = 0.0;
    if (!CanRead(sizeof value, buffer))
        return 0;
    std::memcpy(&value, m_pRead, sizeof value);
    char text[zr::env::G13TextSize];
    return GiveText(text, zr::env::FormatG13(text, value), sizeof value, buffer, capacity);
}

std::size_t CZrEnvValueSink::GetLongText(char *buffer, std::size_t capacity) {
    zr_long value = 0;
    if (!CanRead(sizeof value, buffer))
        return 0;
    std::memcpy(&value, m_pRead, sizeof value);
    char text[zr::env::LongTextSize];
    return GiveText(text, zr::env::FormatLong(text, value), sizeof value, buffer, capacity);
}

bool CZrEnvValueSink::CanRead(std::size_t size, const char *buffer) {
    if ((m_uFlags & ReadOverflow) == 0 && buffer != nullptr && static_cast<std::size_t>(m_pWrite - m_pRead) >= size)
        return true;
    m_uFlags |= ReadOverflow;
    return false;
}

std::size_t CZrEnvValueSink::GiveText(const char *text, std::size_t length, std::size_t size, char *buffer,
                                      std::size_t capacity) {
    if (length > capacity) {
        m_uFlags |= ReadOverflow;
        return length;
    }
    std::memcpy(buffer, text, length + 1);
    m_pRead += size;
    return length;
}

} // namespace Zr
