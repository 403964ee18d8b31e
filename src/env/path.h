// The steps of a path.
//
//   path  = token *( delimiter token )
//   step  = name-token [ position-token ]
//
// A token that follows a name and consists of digits only is the position of that name, counted from 1; a step without one
// has position 1. A name that is empty or holds '=' is dropped together with its position. A delimiter at the very end adds
// no token.
#ifndef ZR_ENV_PATH_H
#define ZR_ENV_PATH_H

#include <string_view>

#include <zrclb/types.h>

namespace Zr {

// One step. The name is a part of the path's own text.
class CZrEnvPathElem {
public:
    std::string_view m_Name;
    zr_long m_lPos = 1;
};

// Walks the steps of a path from front to back, without a copy of it.
class CZrEnvPath {
public:
    CZrEnvPath(std::string_view path, char cDelimiter) : m_Rest(path), m_cDelimiter(cDelimiter) {}

    // The next step; false at the end.
    bool Next(CZrEnvPathElem &rStep);

private:
    std::string_view Token();
    bool TakePosition(zr_long &rlPos);

    std::string_view m_Rest;
    char m_cDelimiter;
};

} // namespace Zr

#endif
