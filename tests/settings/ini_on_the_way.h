// What a settings file may be while it is written over.
#ifndef TESTS_SETTINGS_INI_ON_THE_WAY_H
#define TESTS_SETTINGS_INI_ON_THE_WAY_H

#include <algorithm>
#include <cstddef>
#include <string>

namespace zr::test {

// The new bytes up to some place and behind it the old ones; zeros behind both where a system can't set room aside.
inline bool IsOnTheWay(std::string bytes, const std::string &before, const std::string &after) {
    while (bytes.size() > before.size() && bytes.back() == 0)
        bytes.pop_back();
    const auto place = std::mismatch(bytes.begin(), bytes.end(), after.begin(), after.end()).first - bytes.begin();
    const auto common = static_cast<std::size_t>(place);
    return bytes.compare(common, std::string::npos, before, std::min(common, before.size())) == 0;
}

} // namespace zr::test

#endif
