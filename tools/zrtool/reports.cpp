// Listens to what the library reports while it works.
//
// A report reaches the channel as a header that ends in a line feed, its texts one by one, and two line feeds.
#include "reports.h"

#include <string_view>

#include "platform/services.h"

namespace zrtool {

namespace {

struct Heard {
    std::string text;
    bool fresh = true; // the next text begins a report
};
Heard heard;

// A broken file of a million faults must not fill the memory with reports.
constexpr std::size_t mostText = 1000;

} // namespace

ReportListener::ReportListener() : m_before(zr::platform::services.debug_output) {
    heard = Heard();
    zr::platform::services.debug_output = Listen;
}

ReportListener::~ReportListener() {
    zr::platform::services.debug_output = m_before;
}

std::string ReportListener::Text() const {
    return heard.text;
}

void ReportListener::Listen(const char *text) {
    const std::string_view piece = text == nullptr ? "" : text;
    if (piece == "\n\n" || (piece.starts_with("ZR_ERROR in ") && piece.ends_with(":\n"))) {
        heard.fresh = true;
        return;
    }
    if (piece.empty() || heard.text.size() > mostText)
        return;
    if (!heard.text.empty())
        heard.text += heard.fresh ? "; " : " ";
    heard.text += piece.substr(0, mostText);
    heard.fresh = false;
}

} // namespace zrtool
