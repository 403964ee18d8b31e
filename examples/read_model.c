/* Reads a model with its defaults behind it and prints a few values: the plain functions, from C.

     read_model MODEL DEFAULTS */
#include <stdio.h>

#include <zrclb/zrclb.h>

int main(int argc, char **argv) {
    char title[100];
    double position[3];
    double tolerance = 0;
    zr_long count = 3;
    zr_env model;
    zr_env defaults;
    int done = 0;

    if (argc != 3)
        return 2;
    defaults = env_open(1, NULL);  /* 1 and 2: the numbers by which a getter tells */
    model = env_open(2, defaults); /* where it found a value */
    if (env_read_file(argv[1], model) == 0 && env_read_file(argv[2], defaults) == 0) {
        if (env_get(model, "Model", "Title", 1, sizeof title, title) >= 0)
            printf("title: %s\n", title);
        if (env_get_doubles(model, "Nodes", "Node@3@Position", 1, &count, position) >= 0 && count == 2)
            printf("node 3: %g %g\n", position[0], position[1]);
        done = env_get_double(model, "Analysis", "Tolerance", 1, &tolerance);
        if (done >= 0)
            printf("tolerance: %g, from %s\n", tolerance, done == 1 ? "the defaults" : "the model");
    } else {
        zr_long line = 0;
        zr_long column = 0;
        if (env_get_error_position(model, &line, &column) == 0)
            printf("fault in line %ld, column %ld\n", (long)line, (long)column);
        done = -1;
    }
    env_close(model, 1); /* 1: the defaults behind it, too */
    return done >= 0 ? 0 : 1;
}
