/* A library with nothing in it: the peer of load_bench. */
int empty_library(void);

int empty_library(void) {
    return 0;
}
