/* The calculator: arithmetic typed by people, and computed values inside texts. C17 and C++20.
 *
 * The language: numbers, + - * / ^, relations, AND OR NOT, the choice a ? b : c, PI, and functions with angles in degrees.
 * Case doesn't matter. Numbers have a decimal point whatever setlocale says.
 */
#ifndef ZRCLB_CALC_H
#define ZRCLB_CALC_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What can be wrong with an expression. The values that nothing raises are there for callers who fill a record themselves. */
typedef enum CalculatorErrorType {
    CALCULATOR_OK = 0,
    CALCULATOR_SYNTAX = 1,            /* also a number that can't be read, and text left over */
    CALCULATOR_LEFT_PARENTHESIS = 2,  /* a function without "(" */
    CALCULATOR_RIGHT_PARENTHESIS = 3, /* ")" missing */
    CALCULATOR_COMMA = 4,             /* not raised */
    CALCULATOR_PARAMETER = 5,         /* not raised */
    CALCULATOR_PARAMETER_2 = 6,       /* not raised */
    CALCULATOR_ELSE = 7,              /* "?" without ":" */
    CALCULATOR_VARIABLE = 11,         /* not raised */
    CALCULATOR_FUNCTION = 12,         /* not raised */
    CALCULATOR_NEGATIVE_POWER = 14,   /* negative base and an exponent that is no whole number */
    CALCULATOR_TOO_LARGE = 15,        /* a power that is not finite */
    CALCULATOR_DIVISION = 16,         /* by zero */
    CALCULATOR_NEGATIVE_ROOT = 17     /* square root of a negative number */
} CalculatorErrorType;

/* Sets the decimals to which every result is rounded: 2 gives 0.33 for 1/3, negative ones round to tens and so on, 0, as at the
 * start, doesn't round. -1 takes the number from the entry "Nachkommastellen" of the section
 * "Calculator" of the installation's settings file (ini_read_long without a file), and keeps what there was if there is none.
 * Gives the digits then in force. They count for the whole process. Threads: not while another one computes. */
ZR_API zr_long calc_init(zr_long digits) ZR_NOEXCEPT;

/* Computes text into *result and sets *ok to 1, or to 0 on a failure, whose reason is lost. *result then holds what the leftmost
 * part had come to, or is what it was. If rounding digits are in force, *result is rounded to them in either case. A null text is
 * an empty one, which fails; null for result or ok is left out. Threads: any. */
ZR_API void calc_expression(const char *text, double *result, char *ok) ZR_NOEXCEPT;

/* Copies text to out[0..size-1], with each place "[!expression]" replaced by its value. "[!expression(.n)]" asks for n decimals;
 * without that as many as 15 digits allow, without zeros at the end. *ok becomes 1; or 0, with out empty and a report through zr_error
 * (tag Calc): "calc_string_expression(): falscher Parameter" (text or out is null, or text has 1024 characters or more),
 * "calc_string_expression(): \"Fehler beim Berechnen des Ausdrucks:" with the expression,
 * "calc_string_expression(): \"Buffer zu klein" (size doesn't hold the result and its terminator). With a size below 1 nothing is
 * written. text and out must not overlap. Null for ok is left out. Threads: any. */
ZR_API void calc_string_expression(const char *text, char *out, zr_long size, char *ok) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
