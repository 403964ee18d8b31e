// Any three texts composed and divided: as the plain reference does it, within the limit, and the same when composed again.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <zrclb/paths.h>

#include "files/reference_makepath.h"

namespace {

using paths_test::DividedPath;
using paths_test::ReferenceDivide;
using paths_test::ReferenceMakepath;

// A text in a block of exactly its size; a sanitizer sees every byte read behind it.
using ExactText = std::unique_ptr<char[]>;

ExactText Exact(const std::string &text) {
    ExactText copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

void Check(bool holds) {
    if (!holds)
        std::abort();
}

void CheckDivide(const char *path) {
    const ExactText drive = std::make_unique<char[]>(3);
    const ExactText folder = std::make_unique<char[]>(256);
    const ExactText name = std::make_unique<char[]>(260);
    Check(fio_divide(path, drive.get(), folder.get(), name.get()) == 0);
    const DividedPath expected = ReferenceDivide(path);
    Check(drive.get() == expected.drive && folder.get() == expected.folder);
    Check(name.get() == expected.name.substr(0, 259));
}

// A composed path stays as it is, if composing takes it whole and no separator at its end is left to cut.
void CheckAgain(const std::string &path) {
    const DividedPath divided = ReferenceDivide(path.c_str());
    if (path.ends_with('\\') || divided.drive + divided.folder + divided.name != path)
        return;
    const ExactText out = std::make_unique<char[]>(260);
    Check(fio_makepath(out.get(), "", "", Exact(path).get()) == out.get() && out.get() == path);
}

} // namespace

// The first byte tells which of the three texts are null; line feeds part them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const unsigned nulls = size > 0 ? data[0] : 0;
    const std::string input(reinterpret_cast<const char *>(data), size);
    ExactText texts[3];
    std::size_t start = size > 0 ? 1 : 0;
    for (unsigned i = 0; i < 3; ++i) {
        const std::size_t end = i < 2 && start <= size ? input.find('\n', start) : std::string::npos;
        const std::string text = start <= size ? input.substr(start, end - start) : "";
        if ((nulls >> i & 1) == 0)
            texts[i] = Exact(text.c_str());
        start = end != std::string::npos ? end + 1 : size + 1;
    }
    for (const ExactText &text : texts) {
        if (text != nullptr)
            CheckDivide(text.get());
    }
    const ExactText out = std::make_unique<char[]>(260);
    const char *result = fio_makepath(out.get(), texts[0].get(), texts[1].get(), texts[2].get());
    const auto expected = ReferenceMakepath(texts[0].get(), texts[1].get(), texts[2].get()).Result();
    Check((result != nullptr) == expected.has_value());
    if (result != nullptr) {
        Check(*expected == result && expected->size() <= 259);
        CheckAgain(*expected);
    }
    return 0;
}
