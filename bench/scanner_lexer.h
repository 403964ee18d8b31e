/* The lexer that flex makes. C17 and C++20. */
#ifndef BENCH_SCANNER_LEXER_H
#define BENCH_SCANNER_LEXER_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

struct flex_token {
    char text[4096];
    double double_value;
    long long_value;
    long row;
};

/* Tokens of text[0..size-1], which two zero bytes follow: their number. */
long flex_tokens(char *text, size_t size);

/* The same for what a function answers up to 0. Each token is delivered: its text copied, a number converted. */
long flex_tokens_delivered(int (*get_char)(void), struct flex_token *token);

#ifdef __cplusplus
}
#endif

#endif
