// What is put into the temporary file of a rewrite: text, each line feed of which is CR LF in the file.
#ifndef ZR_SETTINGS_INI_OUTPUT_H
#define ZR_SETTINGS_INI_OUTPUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/raw_output.h"

namespace zr::settings {

// Gathers texts and writes them in blocks. A failure shows when the file is closed. Threads: one at a time.
class IniOutput {
public:
    IniOutput() = default;
    IniOutput(const IniOutput &) = delete;
    IniOutput &operator=(const IniOutput &) = delete;

    // Opens a file that is there and empty.
    bool Open(const char *path);

    // Nobody but the owner may read the file from now on.
    void MakePrivate() { m_out.MakePrivate(); }

    void Put(std::string_view text);
    void PutLineFeed() { Append("\r\n"); }

    // Bytes that are to stand in the file as they are.
    void PutBytes(std::string_view bytes) { Append(bytes); }

    // Bytes as they stand in the file that they come from, piece by piece: what a text stream reads there and writes here.
    void PutStored(std::string_view bytes);

    // Bytes put so far.
    std::uint64_t Size() const { return m_out.Written() + m_count; }

    // Whether all that was put is in the file. Size() stays.
    bool Close();

    // After that: all that was put, if it is still in memory, else nothing.
    std::string_view Whole() const { return {m_block, m_whole}; }

private:
    static constexpr std::size_t block_size = 65536; // what most settings files fit into

    void Append(std::string_view bytes) {
        if (bytes.size() > block_size - m_count) {
            AppendInBlocks(bytes);
            return;
        }
        std::memcpy(m_block + m_count, bytes.data(), bytes.size());
        m_count += bytes.size();
    }
    void AppendInBlocks(std::string_view bytes);
    void WriteBlock();

    platform::RawOutput m_out;
    bool m_failed = false;
    bool m_behind_cr = false; // the stored bytes so far end in a CR
    std::size_t m_count = 0;  // of bytes in the block
    std::size_t m_whole = 0;
    char m_block[block_size];
};

} // namespace zr::settings

#endif
