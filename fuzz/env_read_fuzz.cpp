// Any bytes as environment text: the library's reader against the plain reference, and what was read is written.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "env/reference_reader.h"
#include "env/reference_writer.h"

// The first byte chooses the mode, the rest is the text up to its first zero byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const auto mode = static_cast<EEnvReadMode>(size == 0 ? 2 : data[0] % 3);
    const std::string text(std::string(reinterpret_cast<const char *>(data), size).substr(size == 0 ? 0 : 1).c_str());
    const text_test::ReferenceReader reference(text, false, mode, "");
    Zr::CZrEnv *env = Zr::CZrEnv::CreateEnv(1, nullptr);
    if (env->ReadString(text.c_str(), mode) != reference.result || text_test::TreeOf(*env) != reference.sections)
        std::abort();
    for (const bool wrap : {false, true}) {
        char *written = env->WriteString(wrap);
        if (text_test::ReferenceWriter(reference.sections, wrap).text != written)
            std::abort();
        Zr::CZrEnv::FreeString(written);
    }
    Zr::CZrEnv::DestroyEnv(env, false);
    return 0;
}
