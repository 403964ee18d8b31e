// One reading in a process of its own: how long the first takes, and what it leaves in memory.
//   env_once make SECTIONS FOLDER     writes the model as FOLDER/model.env and FOLDER/model.xml
//   env_once zrclb|pugixml FILE       prints one line of JSON: seconds of processor time for the first reading of the file's text
//                                     in memory; resident bytes that it added, and added at most meanwhile; for zrclb also what
//                                     all name indexes add
#include <cstdio>
#include <fstream>
#include <sstream>

#include <time.h>
#include <unistd.h>
#include <zrclb/zrclb.hpp>

#include "env_stores.h"

namespace {

using namespace bench;

double ProcessorTime() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// A line of what the system tells of this process, in bytes.
double StatusBytes(const std::string &key) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key + ":", 0) == 0)
            return 1024 * std::strtod(line.c_str() + key.size() + 1, nullptr);
    return 0;
}

std::string TextOf(const char *path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Require(file.good());
    std::string text(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    Require(file.good());
    return text;
}

// Looks a name up in every block, as deep as they go.
void BuildIndexes(Zr::CZrEnvBlock *pBlock) {
    pBlock->GetElement("-", 1);
    for (Zr::CZrEnvElement *pElem = pBlock->GetFirstElement(); pElem; pElem = pElem->GetSuccElem())
        if (Zr::CZrEnvBlock *pInner = pElem->ToEnvBlock())
            BuildIndexes(pInner);
}

void AddIndexes(Store &store) {
    auto *pEnv = reinterpret_cast<Zr::CZrEnv *>(store.env);
    pEnv->GetSection("-");
    for (Zr::CZrEnvSection *pSection = pEnv->GetFirstSection(); pSection; pSection = pEnv->GetNextSection(pSection))
        BuildIndexes(pSection);
}

void AddIndexes(Pugi &) {}

template <class Library>
int Once(const char *path) {
    const std::string text = TextOf(path);
    const double before = StatusBytes("VmRSS");
    // The highest mark so far is forgotten: 5 is the system's word for that.
    std::ofstream("/proc/self/clear_refs") << "5";
    Library library;
    const double start = ProcessorTime();
    library.Read(text);
    const double seconds = ProcessorTime() - start;
    const double after = StatusBytes("VmRSS");
    const double peak = StatusBytes("VmHWM");
    AddIndexes(library);
    const double indexed = StatusBytes("VmRSS");
    std::printf("{\"seconds\": %.6f, \"input\": %.0f, \"resident\": %.0f, \"peak\": %.0f, \"indexed\": %.0f}\n",
                seconds, static_cast<double>(text.size()), after - before, peak - before, indexed - before);
    return 0;
}

int Make(const char *sections, const std::string &folder) {
    const ModelText model = MakeModel(std::atoi(sections));
    std::ofstream(folder + "/model.env", std::ios::binary) << model.env;
    std::ofstream(folder + "/model.xml", std::ios::binary) << model.xml;
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const std::string work = argc > 1 ? argv[1] : "";
    if (argc == 4 && work == "make")
        return Make(argv[2], argv[3]);
    if (argc == 3 && work == "zrclb")
        return Once<Store>(argv[2]);
    if (argc == 3 && work == "pugixml")
        return Once<Pugi>(argv[2]);
    std::fputs("usage: env_once make SECTIONS FOLDER | zrclb FILE | pugixml FILE\n", stderr);
    return 2;
}
