// What is put into the temporary file of a rewrite.
#include "settings/ini_output.h"

#include <algorithm>

namespace zr::settings {

bool IniOutput::Open(const char *path) {
    m_failed = m_behind_cr = false;
    m_count = m_whole = 0;
    return m_out.Open(path) == platform::done;
}

void IniOutput::Put(std::string_view text) {
    for (;;) {
        const std::size_t feed = text.find('\n');
        Append(text.substr(0, feed));
        if (feed == std::string_view::npos)
            return;
        PutLineFeed();
        text.remove_prefix(feed + 1);
    }
}

void IniOutput::PutStored(std::string_view bytes) {
    bool behind_cr = m_behind_cr;
    m_behind_cr = bytes.back() == '\r';
    std::size_t from = 0; // not appended yet
    for (std::size_t feed = bytes.find('\n'); feed != std::string_view::npos; feed = bytes.find('\n', feed + 1)) {
        if (feed > 0 ? bytes[feed - 1] == '\r' : behind_cr)
            continue;
        Append(bytes.substr(from, feed - from));
        Append("\r");
        from = feed;
    }
    Append(bytes.substr(from));
}

bool IniOutput::Close() {
    if (!m_out.IsOpen())
        return false;
    m_whole = m_out.Written() == 0 ? m_count : 0;
    WriteBlock();
    return m_out.Close() == platform::done && !m_failed;
}

void IniOutput::AppendInBlocks(std::string_view bytes) {
    while (!bytes.empty()) {
        if (m_count == block_size)
            WriteBlock();
        const std::size_t count = std::min(bytes.size(), block_size - m_count);
        std::memcpy(m_block + m_count, bytes.data(), count);
        m_count += count;
        bytes.remove_prefix(count);
    }
}

void IniOutput::WriteBlock() {
    if (m_count != 0 && !m_failed)
        m_failed = m_out.Write(m_block, m_count) != platform::done;
    m_count = 0;
}

} // namespace zr::settings
