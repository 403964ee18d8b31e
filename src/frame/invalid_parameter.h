// The library's reporter of bad arguments to the C library.
#ifndef ZR_FRAME_INVALID_PARAMETER_H
#define ZR_FRAME_INVALID_PARAMETER_H

namespace zr::frame {

// Reports the message "Invalid Parameter", tag "clib", with both texts, each cut at 255 characters and empty for null.
// Installed at load; also called where a text does not fit its buffer. Threads: any.
void InvalidParameterReporter(const wchar_t *expression, const wchar_t *function);

} // namespace zr::frame

#endif
