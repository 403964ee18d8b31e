// Any bytes as environment text, as a string and as a file: the library's reader against the plain reference in tree, result,
// reports and the place of a failure; what was read is written as the plain writer writes it.
#include <cstdint>
#include <string>

#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/reference_reader.h"
#include "env/reference_writer.h"
#include "scratch_file.h"

namespace {

using fuzz::Require;
using text_test::ReferenceReader;

// Text before the first section is passed over: so much of it brings the input to the edge of the block that a file is
// read by, and behind what is looked at as the first line.
std::string Padding(std::uint8_t length) {
    return std::string(29800U + length, 'p');
}

void RequireReadAs(Zr::CZrEnv &env, int result, const ReferenceReader &reference) {
    fuzz::Reports reports;
    for (const std::string &report : reference.reports)
        reports.push_back("error ZrEnv|" + report);
    Require(result == reference.result, "same result");
    Require(text_test::TreeOf(env) == reference.sections, "same tree");
    Require(fuzz::TakeReports() == reports, "same reports");
    zr_long line = 0;
    zr_long column = 0;
    const bool failed = env.GetErrorPosition(line, column) == Zr::ENV_OK;
    Require(failed == (reference.result != 0), "place of a failure");
    Require(!failed || (line == reference.line && column == reference.column), "same place");
}

void RequireWritten(Zr::CZrEnv &env, const text_test::Tree &tree) {
    for (const bool wrap : {false, true}) {
        char *written = env.WriteString(wrap);
        Require(text_test::ReferenceWriter(tree, wrap).text == written, "same text");
        Zr::CZrEnv::FreeString(written);
    }
}

void ReadAsString(Zr::CZrEnv &env, const std::string &bytes, EEnvReadMode mode) {
    const std::string text = bytes.c_str();
    const ReferenceReader reference(text, false, mode, "");
    RequireReadAs(env, env.ReadString(text.c_str(), mode), reference);
    Require(env.GetFileMTime() == -1, "no time of a string");
    RequireWritten(env, reference.sections);
}

void ReadAsFile(Zr::CZrEnv &env, const std::string &bytes, EEnvReadMode mode) {
    static const std::string path = fuzz::PathOf("read.env");
    fuzz::Store(path, bytes);
    const ReferenceReader reference(text_test::AsTextStreamReads(bytes), true, mode, path);
    RequireReadAs(env, env.ReadFile(path.c_str(), mode), reference);
    Require((env.GetFileMTime() != -1) == (reference.result == 0), "time of the file");
    RequireWritten(env, reference.sections);
}

} // namespace

// The first byte chooses the mode, whether a file is read too, and whether the next byte tells of a padding, which is a
// matter of the file alone; the rest is the text, for a string up to its first zero byte.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::TakeReports();
    std::string bytes(reinterpret_cast<const char *>(data), size);
    const unsigned choices = size == 0 ? 2 : data[0];
    const auto mode = static_cast<EEnvReadMode>(choices % 3);
    bytes.erase(0, 1);
    Zr::CZrEnv *env = Zr::CZrEnv::CreateEnv(1, nullptr);
    if (choices >= 224 && !bytes.empty())
        bytes = Padding(static_cast<std::uint8_t>(bytes[0])) + bytes.substr(1);
    else
        ReadAsString(*env, bytes, mode);
    if (choices >= 128) // what the string left in the tree goes
        ReadAsFile(*env, bytes, mode);
    Zr::CZrEnv::DestroyEnv(env, false);
    return 0;
}
