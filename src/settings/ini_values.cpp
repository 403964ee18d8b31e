// How values of settings files get to their readers.
#include "settings/ini_values.h"

#include <algorithm>

namespace zr::settings {

int CopyValue(std::string_view value, char *buffer, zr_long &size) {
    const auto room = static_cast<std::size_t>(size);
    const std::size_t length = std::min(value.size(), room);
    if (buffer != nullptr) {
        std::memcpy(buffer, value.data(), length);
        buffer[length] = 0;
    }
    if (value.size() > room)
        return INI_NO_ROOM;
    size = static_cast<zr_long>(length);
    return INI_DONE;
}

NameList::NameList(char *buffer, zr_long size)
    : m_buffer(buffer), m_size(static_cast<std::size_t>(size)), m_limit(m_size > 0 ? m_size - 1 : 0) {}

bool NameList::Add(std::string_view name) {
    const std::size_t length = std::min(name.size(), m_limit - m_stored);
    if (m_buffer != nullptr)
        std::memcpy(m_buffer + m_stored, name.data(), length);
    m_stored += length;
    m_full = m_full || m_stored == m_limit;
    if (m_full)
        return false;
    if (m_buffer != nullptr)
        m_buffer[m_stored] = 0;
    ++m_stored;
    return true;
}

int NameList::End(zr_long &size) {
    if (m_buffer != nullptr) {
        m_buffer[m_stored] = 0;
        if (m_full)
            m_buffer[m_size] = 0;
    }
    size = static_cast<zr_long>(m_stored);
    return m_full ? INI_NO_ROOM : INI_DONE;
}

} // namespace zr::settings
