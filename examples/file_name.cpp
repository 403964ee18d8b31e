// Where a program would put a copy of a file: takes the file's name apart, changes parts of it and puts it together.
//
//   file_name PATH
#include <cstdio>

#include <zrclb/zrclb.hpp>

int main(int argc, char **argv) {
    if (argc != 2)
        return 2;
    CZrFileName file(argv[1]);
    if (file.GetError() != ZR_FILE_NAME_OK) {
        std::printf("not a path: %s (%d)\n", argv[1], file.GetError());
        return 1;
    }
    std::printf("drive %s, folder %s, name %s, extension %s\n", file.GetDrive(), file.GetDir(false),
                file.GetFileName(false), file.GetExt());

    // Values are copied as a block; the copy lies in a folder of its own, beside the file.
    CZrFileName copy(file);
    if (!copy.AddDir("backup") || !copy.SetExt("bak"))
        return 1;
    std::printf("copy: %s\n", copy.GetPath());
    std::printf("in a dialog: %s\n", copy.GetCompactPath(30));

    // Setters answer whether what they store is valid; the object tells it later, too.
    if (!copy.SetFileName("what?", true))
        std::printf("fault: %d\n", copy.GetError());
    return 0;
}
