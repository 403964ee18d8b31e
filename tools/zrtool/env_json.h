// The tree as JSON, and back. docs/tool.md describes the form.
#ifndef ZRTOOL_ENV_JSON_H
#define ZRTOOL_ENV_JSON_H

#include <string>
#include <string_view>

#include <zrclb/env.hpp>

namespace zrtool {

// The whole tree as a JSON text that ends in a line feed.
std::string ToJson(const Zr::CZrEnv &env);

// Adds what the text describes to an empty environment. JsonFault when it is no JSON, not of the documented form, or
// names an element as the library does not allow; sections read before the fault are then in the environment.
void FromJson(std::string_view text, Zr::CZrEnv &env);

} // namespace zrtool

#endif
