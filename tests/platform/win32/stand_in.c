/* A program with a version record that tests start: it writes down how it was started, and ends. */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <windows.h>

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR arguments, int show) {
    (void)instance;
    (void)previous;
    const char *path = getenv("ZR_TEST_ANSWER");
    FILE *file = path != NULL ? fopen(path, "wb") : NULL;
    if (file == NULL)
        return 1;
    const char *handle = getenv("ZR_TEST_HANDLE");
    if (handle != NULL)
        SetEvent((HANDLE)(uintptr_t)strtoull(handle, NULL, 10)); /* which it has only if it was handed on */
    Sleep(300);                                                  /* who doesn't wait for it comes too early */
    fprintf(file, "%d|%s", show, arguments);
    return fclose(file) == 0 ? 0 : 1;
}
