// The text of a settings file in memory, cut into names and values where it stands.
#include "settings/mini_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include <zrclb/heap.h>

#include "platform/files.h"
#include "platform/raw_file.h"

namespace zr::settings {

namespace {

constexpr char end_of_text = 0x1A;
constexpr std::size_t line_limit = 2047;
constexpr std::size_t smallest_text = 1024;
constexpr std::size_t smallest_chunk = 512, largest_chunk = 65536;

// What stands in a block of the heap, and how much it can take.
struct Text {
    char *bytes;
    std::size_t size;
    std::size_t room;
};

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

char *Find(char *from, char *end, char c) {
    return static_cast<char *>(std::memchr(from, c, static_cast<std::size_t>(end - from)));
}

void Trim(MiniPiece &piece) {
    while (piece.from != piece.end && IsBlank(*piece.from))
        ++piece.from;
    while (piece.from != piece.end && IsBlank(piece.end[-1]))
        --piece.end;
}

// Room for all of the file, which may be longer than it looks, and a byte that tells that there is no more.
std::size_t RoomFor(const char *path) {
    platform::FileStatus status;
    if (!platform::GetFileStatus(path, status))
        return smallest_text;
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max() / 2;
    return std::max(static_cast<std::size_t>(std::min(status.size, most)) + 1, smallest_text);
}

void Grow(Text &text) {
    const std::size_t room = text.room * 2;
    void *const bytes = room < std::numeric_limits<unsigned>::max()
                            ? heap_realloc(text.bytes, static_cast<unsigned>(room + 1))
                            : nullptr;
    if (bytes == nullptr)
        EndWithoutMemory();
    text.bytes = static_cast<char *>(bytes);
    text.room = room;
}

// Reads up to the end of the text: what the last read answered.
std::ptrdiff_t ReadAll(platform::RawFile &file, Text &text) {
    for (;;) {
        if (text.size == text.room)
            Grow(text);
        char *const piece = text.bytes + text.size;
        const std::ptrdiff_t count = file.Read(piece, text.room - text.size);
        if (count <= 0)
            return count;
        const char *const end = Find(piece, piece + count, end_of_text);
        text.size += static_cast<std::size_t>(end != nullptr ? end - piece : count);
        if (end != nullptr)
            return 0;
    }
}

} // namespace

bool MiniText::Read(const char *path) {
    platform::RawFile file;
    if (!file.Open(path))
        return false;
    const std::size_t room = RoomFor(path);
    Text text = {static_cast<char *>(TakeMemory(room + 1)), 0, room};
    m_failed = ReadAll(file, text) < 0;
    if (m_failed && text.size == 0) {
        heap_free(text.bytes);
        return false;
    }
    m_block = MiniBlock::Create(std::clamp(2 * text.size, smallest_chunk, largest_chunk));
    m_block->Own(text.bytes);
    m_at = text.bytes;
    m_end = m_at + text.size;
    m_has_nul = Find(m_at, m_end, 0) != nullptr;
    return true;
}

bool MiniText::NextPhysical(MiniPiece &piece) {
    if (m_at == m_end)
        return false;
    char *const farthest = m_at + std::min(static_cast<std::size_t>(m_end - m_at), line_limit);
    char *end = Find(m_at, farthest, '\n');
    if (m_has_nul) {
        char *const nul = Find(m_at, end != nullptr ? end : farthest, 0);
        end = nul != nullptr ? nul : end;
    }
    piece = {m_at, end != nullptr ? end : farthest};
    m_at = end != nullptr ? end + 1 : farthest;
    return true;
}

MiniText::Kind MiniText::Next(MiniPiece &piece) {
    while (NextPhysical(piece)) {
        Trim(piece);
        if (piece.from == piece.end || *piece.from == ';')
            continue;
        if (*piece.from != '[')
            return Kind::other;
        ++piece.from;
        char *const bracket = Find(piece.from, piece.end, ']');
        piece.end = bracket != nullptr ? bracket : piece.end;
        Trim(piece);
        return Kind::header;
    }
    return Kind::end;
}

bool MiniText::NextHeader(MiniPiece &name) {
    Kind kind;
    do
        kind = Next(name);
    while (kind == Kind::other);
    return kind == Kind::header;
}

char *MiniText::Terminated(const MiniPiece &piece) {
    if (piece.end == m_at && m_at != m_end) // the line was cut, and the next one begins here
        return m_block->Copy(piece.View());
    *piece.end = 0;
    return piece.from;
}

} // namespace zr::settings
