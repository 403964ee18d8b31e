// The steps of a path.
#include "env/path.h"

#include <limits>

namespace Zr {

// Takes the text up to the next delimiter, and the delimiter.
std::string_view CZrEnvPath::Token() {
    const std::size_t at = m_Rest.find(m_cDelimiter);
    const std::string_view token = m_Rest.substr(0, at);
    m_Rest.remove_prefix(at == std::string_view::npos ? m_Rest.size() : at + 1);
    return token;
}

// Takes the next token if it consists of digits only. Values past the range stay at its end.
bool CZrEnvPath::TakePosition(zr_long &rlPos) {
    const std::string_view token = m_Rest.substr(0, m_Rest.find(m_cDelimiter));
    if (token.empty() || token.find_first_not_of("0123456789") != std::string_view::npos)
        return false;
    constexpr zr_long most = std::numeric_limits<zr_long>::max();
    zr_long value = 0;
    for (const char digit : token) {
        const zr_long add = digit - '0';
        value = value > (most - add) / 10 ? most : value * 10 + add;
    }
    rlPos = value;
    Token();
    return true;
}

bool CZrEnvPath::Next(CZrEnvPathElem &rStep) {
    while (!m_Rest.empty()) {
        rStep.m_Name = Token();
        rStep.m_lPos = 1;
        TakePosition(rStep.m_lPos);
        if (!rStep.m_Name.empty() && rStep.m_Name.find('=') == std::string_view::npos)
            return true;
    }
    return false;
}

} // namespace Zr
