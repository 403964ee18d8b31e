// File handles: numbers and single characters.
#include <zrclb/file_handle.h>

#include <bit>
#include <cstdint>

#include <zrclb/report.h>

#include "files/handle_parts.h"
#include "platform/stream_items.h"

namespace zr::files {
namespace {

// Values go to the file as they lie in memory.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(short) == 2 && sizeof(zr_long) == 4 && sizeof(float) == 4 && sizeof(double) == 8);

template <class Value>
bool PutItem(std::FILE *stream, Value value) {
    return platform::WriteItem(&value, sizeof value, stream);
}

template <class Value>
bool GetItem(std::FILE *stream, Value *value) {
    Value item;
    if (!platform::ReadItem(&item, sizeof item, stream))
        return false;
    *value = item;
    return true;
}

constexpr std::uint32_t ReversedBytes(std::uint32_t bits) {
    return bits << 24 | (bits & 0xFF00) << 8 | (bits >> 8 & 0xFF00) | bits >> 24;
}

zr_long Reversed(zr_long value) {
    return static_cast<zr_long>(ReversedBytes(static_cast<std::uint32_t>(value)));
}

double Reversed(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t high = ReversedBytes(static_cast<std::uint32_t>(bits));
    return std::bit_cast<double>(high << 32 | ReversedBytes(static_cast<std::uint32_t>(bits >> 32)));
}

// Whether the handle writes doubles and longs at all. A handle that appends never has an order of its own from
// fio_open; the second test guards those that got it in another way.
bool WritesOrdered(const fio_handle *handle, const char *refusal, int line) {
    if (StreamOf(handle) == nullptr || HasMode(*handle, FIO_TEXT))
        return false;
    if (HasMode(*handle, FIO_APPEND) && handle->byte_order != 0) {
        zr_error(refusal, nullptr, nullptr, "Fio", line);
        return false;
    }
    return true;
}

// Whether floats and shorts can be moved: only in the machine's own order.
bool IsNative(const fio_handle *handle, int line) {
    if (StreamOf(handle) == nullptr)
        return false;
    if (handle->byte_order != 0) {
        zr_error("HPUX/AIX - not yet implemented", nullptr, nullptr, "Fio", line);
        return false;
    }
    return true;
}

// Reads a double or a long in the order of the file.
template <class Value>
bool GetOrdered(const fio_handle *handle, Value *value, int line) {
    if (StreamOf(handle) == nullptr || HasMode(*handle, FIO_TEXT) || value == nullptr)
        return false;
    Value item;
    const bool read = platform::ReadItem(&item, sizeof item, handle->stream);
    switch (handle->byte_order) {
    case 0:
    case -1:
        break;
    case 1:
        if (read)
            item = Reversed(item);
        break;
    default:
        zr_error("file system undefined", nullptr, nullptr, "Fio", line);
        return false;
    }
    if (read)
        *value = item;
    return read;
}

} // namespace
} // namespace zr::files

using namespace zr::files;
using namespace zr;

extern "C" {

int fio_putdouble(fio_handle *handle, double value) noexcept {
    return ResultOf(WritesOrdered(handle, "fio_putdouble: not yet implemented in append-mode", __LINE__) &&
                    PutItem(handle->stream, value));
}

int fio_putlong(fio_handle *handle, zr_long value) noexcept {
    return ResultOf(WritesOrdered(handle, "fio_putlong: not yet implemented in append-mode", __LINE__) &&
                    PutItem(handle->stream, value));
}

int fio_putfloat(fio_handle *handle, float value) noexcept {
    return ResultOf(IsNative(handle, __LINE__) && PutItem(handle->stream, value));
}

int fio_putshort(fio_handle *handle, short value) noexcept {
    return ResultOf(IsNative(handle, __LINE__) && PutItem(handle->stream, value));
}

int fio_putchar(fio_handle *handle, char value) noexcept {
    return ResultOf(StreamOf(handle) != nullptr && PutItem(handle->stream, value));
}

int fio_getdouble(fio_handle *handle, double *value) noexcept {
    return ResultOf(GetOrdered(handle, value, __LINE__));
}

int fio_getlong(fio_handle *handle, zr_long *value) noexcept {
    return ResultOf(GetOrdered(handle, value, __LINE__));
}

int fio_getfloat(fio_handle *handle, float *value) noexcept {
    return ResultOf(IsNative(handle, __LINE__) && value != nullptr && GetItem(handle->stream, value));
}

int fio_getshort(fio_handle *handle, short *value) noexcept {
    return ResultOf(IsNative(handle, __LINE__) && value != nullptr && GetItem(handle->stream, value));
}

int fio_getchar(fio_handle *handle, char *value) noexcept {
    if (StreamOf(handle) == nullptr)
        return -1;
    const int character = platform::ReadCharacter(handle->stream);
    if (value == nullptr)
        return character;
    *value = static_cast<char>(character);
    return ResultOf(character != EOF);
}
}
