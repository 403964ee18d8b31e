/* The scanner: tokens or characters of a small language, pulled from a caller's source. C17 and C++20.
 *
 * One word of options and a list of keywords say what the language looks like. A scanner belongs to one thread at a time;
 * different scanners are independent.
 */
#ifndef ZRCLB_SCAN_H
#define ZRCLB_SCAN_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A scanner, opaque to callers. */
typedef struct CZrScanner CZrScanner;

#define ZR_SCAN_TEXT_SIZE 4096

/* A token. text ends with a zero byte unless it holds all 4096 characters; then the call tells an error, or the number is one
 * of exactly 4096 characters. Rows and columns count from 0. */
typedef struct ZrScanToken {
    char text[ZR_SCAN_TEXT_SIZE];
    double doubleValue; /* of kind 8 */
    zr_long longValue;  /* of kinds 7 and 9; position of a keyword in the caller's list; length of a name or string */
    zr_long row;        /* of the first character; left as it was, as column is, by a "." that a sign has left over */
    zr_long column;
    zr_long user; /* what the user function answered for names and symbols, else 0 */
} ZrScanToken;

/* Kinds. 1 to 4 come from scan_character alone, which shares 0, 43 and 44 with the tokens. */
enum {
    SCAN_KIND_VOID = 0,      /* a character without a meaning */
    SCAN_KIND_LETTER = 1,    /* scan_character */
    SCAN_KIND_DIGIT = 2,     /* scan_character */
    SCAN_KIND_PRINTABLE = 3, /* scan_character */
    SCAN_KIND_BLANK = 4,     /* scan_character */
    SCAN_KIND_KEYWORD = 5,
    SCAN_KIND_IDENTIFIER = 6,
    SCAN_KIND_LONG = 7,
    SCAN_KIND_DOUBLE = 8,
    SCAN_KIND_CHARACTER = 9, /* literal between apostrophes */
    SCAN_KIND_STRING = 10,   /* between double quotes */
    SCAN_KIND_QUOTED = 11,   /* between a backquote and an apostrophe */
    SCAN_KIND_EQUAL = 12,
    SCAN_KIND_HASH = 13, /* "#"; "<>" and "><" with SCAN_COMPOSE_RELATIONS */
    SCAN_KIND_COMMA = 14,
    SCAN_KIND_SEMICOLON = 15,
    SCAN_KIND_DOT = 16,
    SCAN_KIND_COLON = 17,
    SCAN_KIND_PLUS = 18,
    SCAN_KIND_MINUS = 19,
    SCAN_KIND_STAR = 20,
    SCAN_KIND_SLASH = 21,
    SCAN_KIND_POWER = 22, /* "^"; "**" with SCAN_STAR_POWER, whose text is "^" */
    SCAN_KIND_LESS = 23,
    SCAN_KIND_GREATER = 24,
    SCAN_KIND_LESS_EQUAL = 25,    /* "<=" or "=<" */
    SCAN_KIND_GREATER_EQUAL = 26, /* ">=" or "=>" */
    SCAN_KIND_LEFT_PARENTHESIS = 27,
    SCAN_KIND_RIGHT_PARENTHESIS = 28,
    SCAN_KIND_LEFT_BRACE = 29,
    SCAN_KIND_RIGHT_BRACE = 30,
    SCAN_KIND_LEFT_BRACKET = 31,
    SCAN_KIND_RIGHT_BRACKET = 32,
    SCAN_KIND_DOLLAR = 33,
    SCAN_KIND_AT = 34,
    SCAN_KIND_PERCENT = 35,
    SCAN_KIND_AMPERSAND = 36,
    SCAN_KIND_QUESTION = 37,
    SCAN_KIND_EXCLAMATION = 38,
    SCAN_KIND_BAR = 39,
    SCAN_KIND_TILDE = 41,
    SCAN_KIND_QUOTE = 42, /* the double quote with SCAN_HASH_STYLE */
    SCAN_KIND_END_OF_LINE = 43,
    SCAN_KIND_END = 44
};

/* Option bits. */
enum {
    SCAN_KEEP_EOL = 0x1,           /* a line feed is a token; without it, it is skipped like a blank */
    SCAN_BLOCK_COMMENT = 0x2,      /* a slash and a star to a star and a slash */
    SCAN_LINE_COMMENT = 0x4,       /* two slashes to the end of the line */
    SCAN_BANG_COMMENT = 0x8,       /* "!" to the end of the line */
    SCAN_SIGNED_NUMBERS = 0x10,    /* "+" or "-" directly in front of a number belongs to it */
    SCAN_COMPOSE_RELATIONS = 0x20, /* "<", ">", "=" compose into tokens of two characters */
    SCAN_LOWER = 0x40,             /* characters fold to lower case as they are read; wins over the next */
    SCAN_UPPER = 0x80,             /* to upper case */
    SCAN_BACKSLASH_JOIN = 0x100,   /* a backslash, blanks and a line feed are skipped */
    SCAN_HASH_STYLE = 0x200,       /* "#" begins a comment, a backquote a string, and the double quote is a symbol */
    SCAN_UMLAUTS = 0x400,          /* bytes 84, 94, 81, 8E, 99, 9A, E1 (hexadecimal) are letters, and fold */
    SCAN_APOSTROPHE_NAMES = 0x800, /* the apostrophe is a letter of names */
    SCAN_KEYWORDS_NOCASE = 0x1000, /* keywords compare without regard to case */
    SCAN_TRACE = 0x8000,           /* every token is traced to the file "trc" in the current folder */
    SCAN_STAR_POWER = 0x10000,     /* "**" is kind 22 */
    SCAN_STRING_ESCAPES = 0x60000, /* either bit: a backslash in a string escapes */
    SCAN_STRING_JOIN = 0x80000     /* a backslash behind a string's closing quote joins the next string to it */
};

/* Errors that scan_token answers. 5 is left free by the numbers that can be written, 8 by all. */
enum {
    SCAN_ERROR_NULL = -1, /* a null argument */
    SCAN_ERROR_NONE = 0,
    SCAN_ERROR_NAME_TOO_LONG = 1,     /* 4096 characters and more */
    SCAN_ERROR_STRING_TOO_LONG = 2,   /* 4096 characters and more */
    SCAN_ERROR_CHARACTER_OPEN = 3,    /* character literal not closed */
    SCAN_ERROR_STRING_OPEN = 4,       /* string not closed before the end of the line or of the input */
    SCAN_ERROR_NUMBER = 5,            /* number malformed */
    SCAN_ERROR_EXPONENT = 6,          /* exponent without digits */
    SCAN_ERROR_ESCAPE = 7,            /* unknown escape in a character literal */
    SCAN_ERROR_LONG_TOO_LARGE = 9,    /* an integer too large for a double too */
    SCAN_ERROR_DOUBLE_TOO_LARGE = 10, /* or a number of more than 4096 characters */
    SCAN_ERROR_DOUBLE_TOO_SMALL = 11
};

/* A scanner that reads through getChar, which answers the next character, and 0 or -1 at the end of the input (it may be
 * asked again behind the end); a null one is an input without characters. keywords is a list that ends with null, or null;
 * it is borrowed: list and texts stay in place until scan_close. Null if memory runs out. If it runs out for the index of the
 * keywords alone, zr_error tells "Nicht gen\374gend Speicher" (tag Scan), and the scanner knows no keywords and
 * writes no trace. To be ended by scan_close. */
ZR_API CZrScanner *scan_open(int (*getChar)(void), zr_long options, const char **keywords) ZR_NOEXCEPT;

/* The same; userFunction, unless null, is called for each name and symbol and answers the token's user field. */
ZR_API CZrScanner *scan_open_with_userdata(int (*getChar)(void), zr_long (*userFunction)(void), zr_long options,
                                           const char **keywords) ZR_NOEXCEPT;

/* Ends the scanner; null does nothing. */
ZR_API void scan_close(CZrScanner *handle) ZR_NOEXCEPT;

/* Back to the start: row, column, and what was read ahead. The source is the caller's to rewind. The handle; null for null. */
ZR_API CZrScanner *scan_reset(CZrScanner *handle) ZR_NOEXCEPT;

/* Reads the next token. Answers its error; the token is delivered as far as it got. kind is left as it was by a number that
 * can't be converted, and by a backslash that joins no lines. Behind the end every token is of kind 44. */
ZR_API int scan_token(CZrScanner *handle, zr_long *kind, ZrScanToken *token) ZR_NOEXCEPT;

/* Reads the next character; comments are characters like any others. The first one of a fresh scanner is a blank. A null argument
 * does nothing. */
ZR_API void scan_character(CZrScanner *handle, zr_long *kind, char *c) ZR_NOEXCEPT;

/* The same, and passes over comments of the kinds that the options know. A slash that opens none is lost. */
ZR_API void scan_character_ex(CZrScanner *handle, zr_long *kind, char *c) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
