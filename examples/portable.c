/* Shows paths as they are best kept in a file that moves to another machine together with its project:
 *
 *   portable C:\proj C:\proj\model\a.zrenv
 */
#include <stdio.h>

#include <zrclb/zrclb.h>

int main(int argc, char **argv) {
    int i;
    if (argc < 2)
        return 1;
    zr_SetProjDir(argv[1]);
    for (i = 2; i < argc; ++i) {
        char form[260];
        char whole[260];
        const int inside = zr_BuildProjDirPath(argv[i], form);
        if (!zr_BuildFullPath(form, NULL, whole))
            return 1;
        printf("%s: keep %s, open %s%s\n", argv[i], form, whole, inside ? "" : " (outside of the project)");
    }
    printf("the library lies in %s\n", zr_GetBinDir());
    return 0;
}
