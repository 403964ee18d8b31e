/* Reads a small language with the scanner: loads with names, and sums of numbers.
 *
 *   loads loads.txt
 *
 * Prints each load, or tells row and column of the first fault, counted from 1. */
#include <stdio.h>

#include <zrclb/zrclb.h>

static FILE *input; /* getChar has no arguments: what it reads from is known to the program */

static int next_character(void) {
    const int c = fgetc(input);
    return c != EOF ? c : 0;
}

enum {
    keyword_load /* position in the list */
};
static const char *keywords[] = {"load", NULL};

static CZrScanner *scanner;
static ZrScanToken token;
static zr_long kind;

static void advance(void) {
    if (scan_token(scanner, &kind, &token) != SCAN_ERROR_NONE)
        kind = SCAN_KIND_VOID; /* suits no rule */
}

/* Passes over a token of this kind. */
static int take(zr_long wanted) {
    const int found = kind == wanted;
    if (found)
        advance();
    return found;
}

/* number = long | double */
static int read_number(double *value) {
    *value = kind == SCAN_KIND_LONG ? token.longValue : token.doubleValue;
    return take(SCAN_KIND_LONG) || take(SCAN_KIND_DOUBLE);
}

/* load = "load" name "=" number { "+" number } ";" */
static int read_load(void) {
    char name[64];
    double sum = 0;
    double value = 0;
    if (kind != SCAN_KIND_KEYWORD || token.longValue != keyword_load)
        return 0;
    advance();
    snprintf(name, sizeof name, "%.63s", token.text);
    if (!take(SCAN_KIND_IDENTIFIER) || !take(SCAN_KIND_EQUAL))
        return 0;
    do {
        if (!read_number(&value))
            return 0;
        sum += value;
    } while (take(SCAN_KIND_PLUS));
    if (kind != SCAN_KIND_SEMICOLON)
        return 0;
    printf("%s: %g\n", name, sum);
    advance();
    return 1;
}

int main(int argc, char **argv) {
    int good = 1;
    input = argc > 1 ? fopen(argv[1], "r") : NULL;
    if (input == NULL)
        return 2;
    scanner = scan_open(next_character, SCAN_LINE_COMMENT | SCAN_KEYWORDS_NOCASE, keywords);
    if (scanner == NULL)
        return 2;
    advance();
    while (good && kind != SCAN_KIND_END)
        good = read_load();
    if (!good)
        printf("not understood: row %d, column %d\n", (int)token.row + 1, (int)token.column + 1);
    scan_close(scanner);
    fclose(input);
    return !good;
}
