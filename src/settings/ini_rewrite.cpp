// Writing a settings file anew.
#include "settings/ini_rewrite.h"

#include <zrclb/files.h>
#include <zrclb/report.h>

#include "platform/file_verbs.h"
#include "platform/streams.h"
#include "settings/ini_names.h"

namespace zr::settings {

namespace {

constexpr char source_tag[] = "Ini";
constexpr int temporary_size = 256; // of the name, with its terminator

// Whether something that has lines is there, though they can't be read.
bool HoldsSomething(const char *path) {
    return fio_exist("", path) == 1 && fio_ispath(path) == 0;
}

} // namespace

int CopyOverFile(const char *temporary, const char *path) {
    // Copies of a file take its permissions along. What may not be written isn't copied over.
    if (platform::CanAccess(path, 2))
        platform::CopyMode(path, temporary);
    return fio_copy("", temporary, "", path);
}

bool SplitEntry(std::string_view line, std::string_view &name, std::string_view &value) {
    const std::size_t sign = FindEqualSign(line);
    if (sign == std::string_view::npos) {
        zr_error("Incorrect entry's format. '=' is not found.", nullptr, nullptr, source_tag, __LINE__);
        return false;
    }
    name = TrimmedEnd(line.substr(0, sign));
    value = line.substr(sign + 1);
    return true;
}

bool IniRewrite::Open(const char *path, Missing missing) {
    m_path = path;
    if (path == nullptr || path[0] == 0)
        return false;
    if (!m_in.Open(path) && (missing == Missing::fails || HoldsSomething(path)))
        return false;
    if (fio_tmpnam(m_temporary, temporary_size) == nullptr)
        return false;
    m_out = platform::OpenText(m_temporary, "w");
    return m_out != nullptr;
}

LineKind IniRewrite::Next(std::string_view &text, bool drop_comments) {
    while (m_in.IsOpen() && m_in.Next(text)) {
        if (text[0] == '[') {
            text = HeaderName(text);
            return LineKind::header;
        }
        if (text[0] != ';')
            return LineKind::other;
        if (drop_comments)
            continue;
        PutLineFeed();
        Put(text);
    }
    return LineKind::end;
}

bool IniRewrite::NextHeader(std::string_view &name) {
    for (;;) {
        const LineKind kind = Next(name);
        if (kind != LineKind::other)
            return kind == LineKind::header;
        m_no_header_yet = false;
        PutLineFeed();
        Put(name);
    }
}

bool IniRewrite::FindSection(std::string_view section, bool put_found) {
    std::string_view name;
    while (NextHeader(name)) {
        const bool found = name == section;
        if (!found || put_found) {
            PutSeparator();
            PutHeader(name);
        }
        if (found)
            return true;
    }
    return false;
}

void IniRewrite::Put(std::string_view text) {
    m_has_put = m_has_put || !text.empty();
    std::fwrite(text.data(), 1, text.size(), m_out);
}

void IniRewrite::PutLineFeed() {
    if (m_has_put)
        Put("\n");
}

void IniRewrite::PutSeparator() {
    PutLineFeed();
    if (!m_no_header_yet)
        Put("\n");
    m_no_header_yet = false;
}

void IniRewrite::PutRest() {
    PutLineFeed();
    if (!m_in.IsOpen())
        return;
    for (std::string_view piece = m_in.Rest(); !piece.empty(); piece = m_in.Rest())
        Put(piece);
}

bool IniRewrite::CloseOutput() {
    std::FILE *const out = m_out;
    m_out = nullptr;
    if (out == nullptr)
        return false;
    const bool failed = std::ferror(out) != 0;
    return std::fclose(out) == 0 && !failed;
}

int IniRewrite::Finish() {
    const bool is_whole = CloseOutput() && !m_in.HasFailed();
    m_in.Close();
    const int result = is_whole ? CopyOverFile(m_temporary, m_path) : -1;
    Abandon();
    return result;
}

void IniRewrite::Abandon() {
    CloseOutput();
    m_in.Close();
    if (m_temporary[0] != 0)
        fio_purge("", m_temporary);
    m_temporary[0] = 0;
}

} // namespace zr::settings
