// A program that tests start through the library: this very one. It never gets to its tests, but writes down what it
// was given.
#ifndef TESTS_SETTINGS_STARTED_PROGRAM_H
#define TESTS_SETTINGS_STARTED_PROGRAM_H

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <zrclb/system.h>

#include "library/load.h"
#include "platform/temp_folder.h"
#include "program_arguments.h"

class StartedProgram {
public:
    using Texts = std::vector<std::string>;

    // What it does for each word behind its name: "other" starts a second one, with the rest as its arguments, and
    // ends, which the file "ended" tells; "wait" waits for the file "go" first; others are written down.
    explicit StartedProgram(Texts (*what_else)() = nullptr) {
        const char *folder = std::getenv(variable);
        if (folder != nullptr && *folder != 0)
            std::_Exit(Run(folder, what_else));
    }

    // Makes programs that are started from now on such ones, which write to `folder`; until an empty one.
    static void SetFolder(const std::string &folder) { zr_putenv(variable, folder.c_str()); }

    static bool Appears(const std::filesystem::path &path) {
        for (int i = 0; i < 3000; ++i) {
            if (std::filesystem::exists(path))
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    // What the program has written down, once it has; an argument a line. Gone afterwards.
    static Texts Take(const std::filesystem::path &folder) {
        if (!Appears(folder / "answer"))
            return {"no answer"};
        Texts lines;
        {
            // Who gives the file its name may still have it open for that, and on the desktop for nobody else.
            std::ifstream file(folder / "answer", std::ios::binary);
            for (int i = 0; !file.is_open() && i < 1000; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                file.open(folder / "answer", std::ios::binary);
            }
            for (std::string line; std::getline(file, line);)
                lines.push_back(line);
        }
        std::filesystem::remove(folder / "answer");
        return lines;
    }

private:
    static constexpr const char *variable = "ZR_TEST_FOLDER";

    static int Run(const std::filesystem::path &folder, Texts (*what_else)()) {
        Texts arguments = ProgramArguments();
        const std::string first = arguments.size() > 1 ? arguments[1] : "";
        if (first == "other") {
            zr::library::LibraryLoad(nullptr);
            const int result = zr_WinExec(("\"" + arguments[0] + "\" wait").c_str(), 1);
            std::ofstream(folder / "ended") << result;
            return result == 40 ? 0 : 1;
        }
        if (first == "wait" && !Appears(folder / "go"))
            return 1;
        if (what_else != nullptr)
            arguments = what_else();
        else
            arguments.erase(arguments.begin());
        {
            std::ofstream file(folder / "answer.part", std::ios::binary);
            for (const std::string &argument : arguments)
                file << argument << '\n';
        }
        std::filesystem::rename(folder / "answer.part", folder / "answer");
        return 0;
    }
};

#endif
