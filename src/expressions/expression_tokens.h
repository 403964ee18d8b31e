// The tokens of an expression in memory.
//
// What ordinary expressions are made of is read here at once: blanks, short names, short numbers, symbols. Everything else, and
// all that is wrong, is left to the scanner, which starts anew at the token in question.
#ifndef ZR_EXPRESSIONS_EXPRESSION_TOKENS_H
#define ZR_EXPRESSIONS_EXPRESSION_TOKENS_H

#include <zrclb/scan.h>

#include "expressions/calculator_keywords.h"
#include "expressions/scanner_core.h"

namespace zr::expressions {

// A text in memory. Its bytes are signed, so that FF ends it too. Nothing is read behind the end.
struct TextSource {
    const char *next = "";

    int Next() { return static_cast<signed char>(*next++); }
    static zr_long User() { return 0; }
};

class ExpressionTokens {
public:
    ExpressionTokens();

    // Begins with `text`, which is borrowed; null is an empty text. There is no token yet.
    void Start(const char *text);

    // Reads the next token. False if the scanner finds fault with it; its kind is that of the token before then, or its own. Behind
    // a character literal, which no expression has, rows and columns no longer count: a line feed may stand in it.
    bool Next();

    // Kind of the token, SCAN_KIND_...; a number of either kind may be called a double.
    zr_long Kind() const { return kind_; }

    // Value of a number.
    double Number() const { return number_; }

    // The word, for a keyword.
    Word Keyword() const { return keyword_; }

    // Place of the token, from 0.
    zr_long Row() const { return row_; }
    zr_long Column() const { return static_cast<zr_long>(token_ - line_); }

private:
    void SkipBlanks();
    bool ReadName();
    bool ReadNumber();
    bool ReadRelation();
    bool ReadByScanner();
    bool End(zr_long kind, const char *next);

    const char *next_ = "";  // behind the token
    const char *token_ = ""; // where the token begins
    const char *line_ = "";  // where its line begins
    zr_long row_ = 0;
    zr_long kind_ = SCAN_KIND_VOID;
    Word keyword_ = Word::None;
    double number_ = 0;
    ScannerCore<TextSource, CalculatorKeywords> scanner_;
    ZrScanToken scanned_;
};

} // namespace zr::expressions

#endif
