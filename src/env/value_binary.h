// The ENV_BIN form of binary values: "2", the byte 0xD0, then each byte as itself or as an escape pair, "_" and a letter.
// The pairs keep line ends, blanks and the marks of the text format out of a value. Version 1, which is still read, has
// no pair for the byte 0x1A.
#ifndef ZR_ENV_VALUE_BINARY_H
#define ZR_ENV_VALUE_BINARY_H

#include <cstddef>

#include <zrclb/env.hpp>
#include <zrclb/types.h>

namespace zr::env {

// Bytes of the text for source[0..length-1], terminator not counted. A length below 1 is that of the header alone.
std::size_t EncodedLength(const char *source, zr_long length);

// Writes the text for source[0..length-1] and a terminator. The target holds EncodedLength + 1 bytes, which 2 * length + 11
// always cover. A length below 1 writes the header alone. Gives 0.
int EncodeBinary(const char *source, char *target, zr_long length);

// Reads an ENV_BIN text, or any other text as its own bytes, into target[0..*size-1]; *size becomes the number of bytes.
//   ENV_OK         done. An ENV_BIN target has to be a byte larger than its data. A plain text gets a terminator if there
//                  is room for one. An escape pair that is not known is reported, and leaves its byte in target as it was.
//   ENV_TOO_SMALL  reported; target holds the bytes that fitted, *size is unchanged. So does a size of 0 or less.
//   ENV_ERROR      reported; another version than 1 or 2, nothing is written.
//   ENV_ERROR      an argument is null.
// Reports: zr_message "Incorrect version of ENV_BIN", "Unknown '_'-symbol", "Small buffer", tag ZrEnvDataConvert.
Zr::EZrEnvError DecodeBinary(const char *text, char *target, zr_long *size);

} // namespace zr::env

#endif
