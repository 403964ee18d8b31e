// The trace of a scanner: a line for each token in the file "trc" of the current folder.
#include "expressions/scan_trace.h"

#include <cstdarg>
#include <limits>

#include "platform/format.h"
#include "platform/streams.h"

namespace zr::expressions {

namespace {

constexpr zr_long trace_id = 1;
constexpr int text_limit = ZR_SCAN_TEXT_SIZE; // a text that fills its place has no terminator
constexpr std::size_t line_size = ZR_SCAN_TEXT_SIZE + std::numeric_limits<double>::max_exponent10 + 128;

const char *Label(zr_long kind) {
    switch (kind) {
    case SCAN_KIND_VOID:
        return "** void **";
    case SCAN_KIND_KEYWORD:
        return "keyword";
    case SCAN_KIND_IDENTIFIER:
        return "identifier";
    case SCAN_KIND_LONG:
        return "long";
    case SCAN_KIND_DOUBLE:
        return "double";
    case SCAN_KIND_CHARACTER:
        return "char";
    case SCAN_KIND_STRING:
        return "string";
    case SCAN_KIND_END_OF_LINE:
        return "eol";
    case SCAN_KIND_END:
        return "eof";
    default:
        return "symbol";
    }
}

void Print(std::FILE *file, const char *format, ...) {
    char line[line_size];
    std::va_list arguments;
    va_start(arguments, format);
    if (platform::FormatVA(line, sizeof line, format, arguments) >= 0)
        std::fputs(line, file);
    va_end(arguments);
}

} // namespace

ScanTrace::~ScanTrace() {
    if (m_file != nullptr)
        std::fclose(m_file);
}

void ScanTrace::Open() {
    m_file = platform::OpenText("trc", "w");
}

void ScanTrace::Write(zr_long kind, const ZrScanToken &token) {
    if (m_file == nullptr)
        return;
    const long row = token.row;
    const long column = token.column;
    Print(m_file, "S%-3ld[%2ld:%2ld]\t%-10s <%.*s>", static_cast<long>(trace_id), row, column, Label(kind), text_limit,
          token.text);
    if (kind == SCAN_KIND_KEYWORD)
        Print(m_file, " #%ld", static_cast<long>(token.longValue));
    else if (kind == SCAN_KIND_LONG)
        Print(m_file, "  %ld", static_cast<long>(token.longValue));
    else if (kind == SCAN_KIND_DOUBLE)
        Print(m_file, "  %lf", token.doubleValue);
    std::fputc('\n', m_file);
}

} // namespace zr::expressions
