// Replays a corpus without the fuzzer: runs the target that it is linked with on every file of the folders and on every
// file that the arguments name. Ends with 1 when there was nothing to run or a file could not be read.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

bool RunFile(const std::filesystem::path &path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    return true;
}

} // namespace

int main(int argc, char **argv) {
    int runs = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path start(argv[i]);
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(start)) {
            for (const auto &entry : std::filesystem::directory_iterator(start)) {
                files.push_back(entry.path());
            }
        } else {
            files.push_back(start);
        }
        for (const auto &file : files) {
            if (!RunFile(file)) {
                return 1;
            }
            ++runs;
        }
    }
    std::printf("%d seeds replayed\n", runs);
    return runs > 0 ? 0 : 1;
}
