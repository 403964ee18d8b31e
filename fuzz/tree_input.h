// The input of targets that build trees: names that meet, texts, null texts.
#ifndef FUZZ_TREE_INPUT_H
#define FUZZ_TREE_INPUT_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include "byte_input.h"
#include "env/tree_model.h"

namespace fuzz {

class TreeInput : public ByteInput {
public:
    using ByteInput::ByteInput;

    // Up to a zero byte.
    std::string Text() {
        std::string text;
        while (!Empty()) {
            const std::uint8_t byte = Byte();
            if (byte == 0)
                break;
            text += static_cast<char>(byte);
        }
        return text;
    }

    // Mostly one of a few; some of them are refused, or reached by no path. Any other text behind 255.
    zr::test::ModelText Name() {
        static const char *const names[] = {"a",  "b",   "c",   "d",  "ab",       "abcdefgh", "abcdefghi", "2",
                                            "12", "a@2", "a=b", "a]", "\xE4\xFF", "",         " ",         nullptr};
        const std::uint8_t choice = Byte();
        if (choice == 255)
            return Text();
        const std::size_t common = choice % 2 == 0 ? 3 : std::size(names);
        const char *name = names[choice / 2U % common];
        return name ? zr::test::ModelText(name) : std::nullopt;
    }

    // A small number, now and then one off the mark.
    zr_long Number() {
        const std::uint8_t choice = Byte();
        return choice < 250 ? choice % 5 : choice < 253 ? 11 : -1;
    }
};

inline const char *OrNull(const zr::test::ModelText &text) {
    return text ? text->c_str() : nullptr;
}

} // namespace fuzz

#endif
