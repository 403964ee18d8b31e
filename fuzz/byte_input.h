// What fuzz targets share: the input byte by byte, and a demand that ends the program where it does not hold.
#ifndef FUZZ_BYTE_INPUT_H
#define FUZZ_BYTE_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

inline void Require(bool holds, const char *what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

// What the input still holds; zeros behind its end.
class ByteInput {
public:
    ByteInput(const std::uint8_t *data, std::size_t size) : m_data(data), m_left(size) {}

    bool Empty() const { return m_left == 0; }

    std::uint8_t Byte() {
        if (m_left == 0)
            return 0;
        --m_left;
        return *m_data++;
    }

private:
    const std::uint8_t *m_data;
    std::size_t m_left;
};

} // namespace fuzz

#endif
