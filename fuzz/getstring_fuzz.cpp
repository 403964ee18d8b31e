// Any bytes as a file of texts: fio_getstring and fio_getstringdel against a plain reference.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <zrclb/file_handle.h>

namespace {

// A file of its own, removed at the end.
struct ScratchFile {
    ScratchFile() : path(std::filesystem::temp_directory_path()) {
        path /= "zr_getstring_" + std::to_string(std::random_device()());
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    std::filesystem::path path;
};

// What a read gives: its result, the text, and how much of the file it took.
struct Piece {
    int result;
    std::string text;
    std::size_t taken;
};

Piece Expected(std::string_view rest, int max, std::string_view delimiters) {
    Piece piece = {-1, "", 0};
    while (static_cast<int>(piece.text.size()) < max && piece.taken < rest.size()) {
        const char c = rest[piece.taken++];
        piece.result = 0;
        if (c == '\0' || c == '\n')
            break;
        piece.text += c;
        if (delimiters.find(c) != std::string_view::npos)
            break;
    }
    return piece;
}

void Check(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace

// Byte 0: max as a signed number. Byte 1: how many of the bytes behind it are delimiters, at most 15, and from its highest bit
// whether both functions read in turn. The rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const ScratchFile scratch;
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (size < 2)
        return 0;
    const int max = static_cast<std::int8_t>(data[0]);
    const bool in_turn = data[1] >= 128;
    const std::string delimiters(std::string(input.substr(2, data[1] % 16)).c_str());
    const std::string_view bytes = input.substr(std::min<std::size_t>(size, 2U + data[1] % 16));

    fio_handle *handle = fio_open("", scratch.path.string().c_str(), FIO_WRITE | FIO_UPDATE);
    Check(handle != nullptr);
    Check(fio_fwrite(bytes.data(), 1, bytes.size(), handle) == bytes.size() && fio_seek(handle, 0, 0) == 0);
    // Exactly as large as allowed, so that a sanitizer sees a byte too many.
    std::vector<char> buffer(static_cast<std::size_t>(std::max(max, 0)) + 1);
    std::size_t position = 0;
    bool plain = in_turn;
    for (int result = 0; result == 0; plain = in_turn && !plain) {
        buffer.assign(buffer.size(), '~');
        const Piece expected = Expected(bytes.substr(position), max, plain ? "" : delimiters);
        result = plain ? fio_getstring(handle, max, buffer.data())
                       : fio_getstringdel(handle, max, delimiters.c_str(), buffer.data());
        position += expected.taken;
        Check(result == expected.result);
        Check(fio_tell(handle) == static_cast<zr_long>(position));
        if (plain && max <= 0)
            Check(buffer[0] == '~'); // left alone
        else
            Check(buffer.data() == expected.text);
    }
    Check(max <= 0 || position == bytes.size());
    Check(fio_close(handle) == 0);
    return 0;
}
