// Reads a model, walks through its load cases, adds one and prints the text of the new section: the classes, from C++.
//
//   read_model_cpp MODEL
#include <cstdio>

#include <zrclb/zrclb.hpp>

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    Zr::CZrEnv *model = Zr::CZrEnv::CreateEnv(0, nullptr);
    bool done = model->ReadFile(argv[1], eEnvReadAuto) == Zr::ENV_OK;

    const Zr::CZrEnvBlock *loads = model->GetBlock("Loads", nullptr, true, false);
    for (Zr::CZrEnvElement *elem = loads != nullptr ? loads->GetFirstElement() : nullptr; elem != nullptr;
         elem = elem->GetSuccElem()) {
        Zr::CZrEnvBlock *block = elem->ToEnvBlock();
        Zr::CZrEnvDataElement *name = block != nullptr ? block->GetDataElement("Name", 1) : nullptr;
        if (name != nullptr)
            std::printf("load case: %s\n", name->GetString());
    }

    // What is missing on the way is made. Elements of one name are told apart by their number.
    done = done && model->SetString("Loads", "Case@4@Name", "Wind") == Zr::ENV_OK;
    const double force[] = {3.75, 0};
    done = done && model->SetDoubles("Loads", "Case@4@Point@Force", 2, force) == Zr::ENV_OK;
    std::printf("load cases: %ld\n", static_cast<long>(model->CountPath("Loads", "Case", true)));
    std::printf("wind: %s\n", done ? model->GetString("Loads", "Case@4@Point@Force") : "not set");

    Zr::CZrEnv::DestroyEnv(model, false);
    return done ? 0 : 1;
}
