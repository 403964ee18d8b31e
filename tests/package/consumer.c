/* A user's program in C: the plain functions of the installed library. Ends with the number of the check that failed. */
#include <string.h>

#include <zrclb/zrclb.h>

int main(void) {
    char *text;
    zr_long value = 0;
    zr_env env = env_open(7, NULL);

    if (strcmp(zr_Version(), ZR_VERSION) != 0)
        return 1;
    if (env == NULL)
        return 2;
    if (env_put_long(env, "Model", "frame@nodes", 42) != ENV_OK)
        return 3;
    if (env_get_long(env, "Model", "frame@nodes", 1, &value) != 7 || value != 42)
        return 4;
    text = env_write_to_string(env);
    if (text == NULL || strstr(text, "nodes") == NULL)
        return 5;
    env_free_string(text);
    if (env_close(env, 0) != ENV_OK)
        return 6;
    return 0;
}
