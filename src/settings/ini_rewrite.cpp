// Writing a settings file anew.
#include "settings/ini_rewrite.h"

#include <zrclb/files.h>
#include <zrclb/report.h>

#include "settings/ini_names.h"

namespace zr::settings {

namespace {

constexpr char source_tag[] = "Ini";

// Whether something that has lines is there, though they can't be read.
bool HoldsSomething(const char *path) {
    return fio_exist("", path) == 1 && fio_ispath(path) == 0;
}

} // namespace

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
    if (fio_tmpnam(m_temporary, static_cast<int>(sizeof m_temporary)) == nullptr)
        return false;
    if (!m_out.Open(m_temporary))
        return false;
    if (m_in.IsOpen())
        m_out.MakePrivate(); // not everybody may be allowed to read the file
    return true;
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
        m_out.PutBytes(text);
    }
    return LineKind::end;
}

bool IniRewrite::NextHeader(std::string_view &name) {
    for (;;) {
        const std::string_view lines = m_in.IsOpen() ? m_in.PlainLines() : std::string_view();
        if (!lines.empty()) {
            PutLines(lines);
            continue;
        }
        const LineKind kind = Next(name);
        if (kind != LineKind::other)
            return kind == LineKind::header;
        PutLines(name);
    }
}

// In front of a header.
void IniRewrite::PutLines(std::string_view lines) {
    m_no_header_yet = false;
    PutLineFeed();
    m_out.PutBytes(lines);
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
        m_out.PutStored(piece);
}

int IniRewrite::Finish() {
    const bool is_whole = m_out.Close() && !m_in.HasFailed();
    m_in.Close();
    const int result = is_whole ? CopyOverFile(m_temporary, m_path, m_out.Whole()) : -1;
    Abandon();
    return result;
}

void IniRewrite::Abandon() {
    m_out.Close();
    m_in.Close();
    if (m_temporary[0] != 0)
        platform::RemoveFile(m_temporary);
    m_temporary[0] = 0;
}

} // namespace zr::settings
