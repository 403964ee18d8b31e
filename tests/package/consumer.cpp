// A user's program in C++: classes, type information and derived classes across the border of the installed library.
// Ends with the number of the check that failed.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <zrclb/zrclb.hpp>

namespace {

class Marked : public Zr::CZrEnvBlock {
public:
    explicit Marked(const char *szName) : CZrEnvBlock(szName) { ++alive; }
    ~Marked() override { --alive; }
    Marked(const Marked &) = delete;
    Marked &operator=(const Marked &) = delete;

    static int alive;
};

int Marked::alive = 0;

int Check() {
    if (std::strcmp(zr_Version(), ZR_VERSION) != 0) {
        return 1;
    }
    // The library's file tells the version, on Windows through its version resource.
    char tek_version[80], told[80];
    std::snprintf(told, sizeof told, "%d.%02d%d", ZR_VERSION_MAJOR, ZR_VERSION_MINOR, ZR_VERSION_PATCH);
    if (zr_get_tek_version(tek_version, sizeof tek_version) == nullptr || std::strcmp(tek_version, told) != 0) {
        return 8;
    }
    Zr::CZrEnv *pEnv = Zr::CZrEnv::CreateEnv(3, nullptr);
    if (pEnv == nullptr || pEnv->GetID() != 3) {
        return 2;
    }
    if (pEnv->SetDouble("Model", "frame@height", 3.25) != Zr::ENV_OK ||
        pEnv->GetDouble("Model", "frame@height") != 3.25) {
        return 3;
    }
    Zr::CZrEnvElement *pElem = pEnv->GetElement("Model", "frame", true, false);
    if (dynamic_cast<Zr::CZrEnvBlock *>(pElem) == nullptr || dynamic_cast<Zr::CZrEnvSection *>(pElem) != nullptr) {
        return 4;
    }
    std::vector<std::string> names;
    pElem->ToEnvBlock()->GetElemNames(names);
    if (names != std::vector<std::string>{"height"}) {
        return 5;
    }
    if (!pElem->ToEnvBlock()->InsertElement(new Marked("own")) || Marked::alive != 1) {
        return 6;
    }
    if (Zr::CZrEnv::DestroyEnv(pEnv, false) != Zr::ENV_OK || Marked::alive != 0) {
        return 7;
    }
    return 0;
}

} // namespace

int main() {
    return Check();
}
