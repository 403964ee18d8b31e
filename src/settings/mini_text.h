// The text of a settings file in memory, cut into names and values where it stands.
//
//   file  = { line }
//   line  = blank | comment | header | other
//   comment = ";" text          header = "[" name [ "]" text ]          other = name "=" value, or a malformed line
//
// A line ends in front of a line feed or a NUL, or behind 2047 characters. It counts less the bytes of 32 and below at
// both ends: the CR of a CR LF goes so too. As in any text stream, a byte 0x1A ends the file.
#ifndef ZR_SETTINGS_MINI_TEXT_H
#define ZR_SETTINGS_MINI_TEXT_H

#include <cstddef>
#include <string_view>

#include "settings/mini_memory.h"

namespace zr::settings {

// A part of the text.
struct MiniPiece {
    char *from;
    char *end;

    std::size_t Size() const { return static_cast<std::size_t>(end - from); }
    std::string_view View() const { return {from, Size()}; }
};

// Reads a file from its start on. Without memory the process ends.
class MiniText {
public:
    enum class Kind {
        end,    // of the file
        header, // the piece is the section's name, trimmed
        other   // the piece is the trimmed line
    };

    MiniText() = default;
    ~MiniText() {
        if (m_block != nullptr)
            m_block->Release();
    }
    MiniText(const MiniText &) = delete;
    MiniText &operator=(const MiniText &) = delete;

    // False if the file can't be opened or, as a folder, not be read.
    bool Read(const char *path);

    // Whether reading failed on the way, which looks like the end of the file otherwise.
    bool HasFailed() const { return m_failed; }

    // The block that the text lies in, which lives as long as this object and the sections made in it.
    MiniBlock &Block() { return *m_block; }

    // The next line; those that are empty and comments are left out.
    Kind Next(MiniPiece &piece);

    // Goes on to the next header. False at the end.
    bool NextHeader(MiniPiece &name);

    // Terminates a piece of the line that was read last, whose other pieces behind this one may be spoiled.
    char *Terminated(const MiniPiece &piece);

private:
    bool NextPhysical(MiniPiece &piece);

    MiniBlock *m_block = nullptr;
    char *m_at = nullptr;  // the start of a line
    char *m_end = nullptr; // a byte more is there
    bool m_failed = false;
    bool m_has_nul = false;
};

} // namespace zr::settings

#endif
