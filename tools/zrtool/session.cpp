// Translation of texts at the edge of the program.
#include "session.h"

#include "code_page.h"

namespace zrtool {

std::string Session::FromUser(const std::string &word) const {
    if (!utf8)
        return word;
    std::string text;
    for (std::size_t at = 0; at < word.size();) {
        unsigned char byte = 0;
        const char32_t point = DecodeUtf8(word, at);
        if (!ByteOfPoint(point, byte))
            throw Failure(BadUsage, "'" + word + "' holds a letter that code page 1252 lacks, or is not UTF-8");
        text += static_cast<char>(byte);
    }
    return text;
}

std::string Session::ToUser(std::string_view text) const {
    if (!utf8)
        return std::string(text);
    std::string shown;
    for (const char c : text)
        AppendUtf8(shown, PointOfByte(static_cast<unsigned char>(c)));
    return shown;
}

} // namespace zrtool
