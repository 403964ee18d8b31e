// A file's version as users know it.
#ifndef ZR_SETTINGS_VERSION_TEXT_H
#define ZR_SETTINGS_VERSION_TEXT_H

#include <cstddef>

#include "platform/library_record.h"

namespace zr::settings {

// Writes the text for the four places a.b.c.d to out[0..size-1], cut if it doesn't fit. Which form it has is b's doing:
//   below 50   "a.bbcd": b with two digits at least, d only if it isn't 0
//   50 to 55   "a.000 VL" with a letter for n = b * 10 + c: from 526 on A and so on, below it 'a' for 500 and so on
//   above 55   "a.xxyycc": b / 100, the rest of that, and c, each with two digits at least
// A letter beyond the alphabet is the character that comes there, modulo 256.
void WriteVersionText(const platform::FileVersion &version, char *out, std::size_t size);

} // namespace zr::settings

#endif
