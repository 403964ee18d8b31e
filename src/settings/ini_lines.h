// The lines of a settings file, straight from its blocks.
//
//   file  = { line }
//   line  = blank | comment | header | other
//   comment = ";" text          header = "[" name [ "]" text ]          other = name "=" value, or a malformed line
//
// A line is what a read of the text stream with a buffer of 2047 bytes delivers: at most 2046 bytes with the line
// feed, the rest of a longer one is a line of its own. Of it counts what is in front of the first NUL, less the bytes
// of 32 and below at both ends. As in any text stream, CR LF is a line feed and a byte 0x1A ends the file.
#ifndef ZR_SETTINGS_INI_LINES_H
#define ZR_SETTINGS_INI_LINES_H

#include <cstddef>
#include <string_view>

#include "platform/raw_file.h"

namespace zr::settings {

// Without the bytes of 32 and below, NUL and all that is not ASCII counted from 0 to 255, at both ends.
std::string_view Trimmed(std::string_view text);

// The name of a header line, which begins with "[".
std::string_view HeaderName(std::string_view line);

// Reads a file from its start on. Texts given out are valid until the next call. Threads: one at a time.
class IniLines {
public:
    IniLines() = default;
    IniLines(const IniLines &) = delete;
    IniLines &operator=(const IniLines &) = delete;

    // False if the file can't be opened or, as a folder, not be read.
    bool Open(const char *path);

    bool IsOpen() const { return m_file.IsOpen(); }
    void Close() { m_file.Close(); }

    // Whether a read failed, which looks like the end of the file otherwise.
    bool HasFailed() const { return m_failed; }

    // The next line, trimmed, empty ones left out. False at the end.
    bool Next(std::string_view &line);

    // The lines from here on that are entries (or malformed) and stand in the file as they are put there: trimmed, and
    // with CR LF behind each of them but the last one here. Empty if the next line is none; more may follow.
    std::string_view PlainLines();

    // Goes on to the next header, without a look at what stands in front of it.
    bool NextHeader(std::string_view &name);

    // The next piece of what is left, as it stands in the file: CR LF and NUL bytes are what they are. Empty at the end.
    std::string_view Rest();

private:
    // Most values stand near the front; who gets behind the first block wants more at once.
    static constexpr std::size_t first_block_size = 8192;
    static constexpr std::size_t block_size = 16384;
    static constexpr std::size_t line_size = 2046; // the longest line, with its line feed
    // What a line of this size may take in the file: its line feed may have a CR in front.
    static constexpr std::size_t line_bytes = line_size + 1;

    std::size_t Available() const { return static_cast<std::size_t>(m_end - m_at); }
    bool Fill();
    bool NextPhysical(std::string_view &line);
    const char *BehindPlainLine(const char *line) const;
    bool GoToNextBracket();
    void DropSearched();

    platform::RawFile m_file;
    bool m_ended = false; // all of the file is in memory
    bool m_failed = false;
    std::size_t m_wanted = first_block_size;
    const char *m_at = m_buffer; // the start of a line
    const char *m_end = m_buffer;
    char m_buffer[line_bytes + block_size]; // a line that goes on in the next block, and this block
};

} // namespace zr::settings

#endif
