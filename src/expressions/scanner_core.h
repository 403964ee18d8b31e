// The scanner itself: from characters to tokens, over any source.
//
// A source has `int Next()`, the next character, and `zr_long User()`, the user's field of a name or symbol; keywords have
// `zr_long Find(const char *name, std::size_t length)`, their position or -1. The core is a template over both so that a source in
// memory costs no call for each character. Inside loops over characters that are no line feeds the place is counted by their
// number; everywhere else by Advance.
#ifndef ZR_EXPRESSIONS_SCANNER_CORE_H
#define ZR_EXPRESSIONS_SCANNER_CORE_H

#include <cstddef>
#include <cstdint>

#include <zrclb/scan.h>

#include "expressions/character_table.h"
#include "expressions/number_scan.h"

namespace zr::expressions {

template <class Source, class Keywords>
class ScannerCore {
public:
    // `characters`, made for the same options, and `keywords` are borrowed.
    ScannerCore(const Source &source, zr_long options, const CharacterTable &characters, const Keywords &keywords)
        : source_(source), characters_(characters), keywords_(keywords), options_(options) {}

    // Answers the error; contract of scan_token.
    int NextToken(zr_long &kind, ZrScanToken &token);

    // Contract of scan_character and scan_character_ex.
    void NextCharacter(zr_long &kind, char &c, bool comments);

    void Reset() {
        lookahead_ = ' ';
        dot_owed_ = false;
        row_ = 0;
        column_ = before_first;
    }

    Source &GetSource() { return source_; }

private:
    static constexpr std::size_t text_size = ZR_SCAN_TEXT_SIZE;
    static constexpr std::uint32_t before_first = 0xFFFFFFFF; // one step in front of column 0

    // A text on its way into a token.
    struct Collector {
        char *text;
        std::size_t length = 0;
        bool full = false; // something did not fit

        void Add(int c) {
            if (length < text_size)
                text[length++] = static_cast<char>(c);
            else
                full = true;
        }
        // Ends the text if there is room for it.
        bool Terminate() {
            if (length < text_size)
                text[length] = 0;
            return length < text_size;
        }
    };

    bool Has(zr_long option) const { return (options_ & option) != 0; }
    bool Is(int c, unsigned classes) const { return characters_.Is(c, classes); }
    bool IsDigit() const { return Is(current_, CharacterTable::digit); }

    // The next character of the source, normalised. The place is not counted.
    int Fetch() { return characters_.Normalise(source_.Next()); }

    void Advance() {
        previous_ = current_;
        if (current_ == 0)
            return;
        current_ = Fetch();
        CountLine();
    }
    // Counts the character behind `previous_`.
    void CountLine() {
        if (previous_ == '\n') {
            ++row_;
            column_ = 0;
        } else {
            ++column_;
        }
    }

    void SkipBlanks();
    void SkipLine();
    void SkipBlockComment();
    bool SkipComment();

    bool Dispatch(zr_long &kind, ZrScanToken &token);
    void ReadDot(zr_long &kind, ZrScanToken &token);
    void ReadSign(zr_long sign_kind, zr_long &kind, ZrScanToken &token);
    void ReadStar(zr_long &kind, ZrScanToken &token);
    bool ReadSlash(zr_long &kind, ZrScanToken &token);
    bool ReadExclamation(zr_long &kind, ZrScanToken &token);
    bool ReadBackslash(ZrScanToken &token);
    void ReadSymbol(zr_long &kind, ZrScanToken &token);
    void Compose(zr_long &kind, ZrScanToken &token);
    void ReadName(zr_long &kind, ZrScanToken &token);
    void ReadDigits(Collector &number);
    void ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen);
    void ConvertNumber(zr_long &kind, ZrScanToken &token, const Collector &number, bool floating);
    void ReadCharacterLiteral(ZrScanToken &token);
    std::size_t ReadEscape(ZrScanToken &token);
    void ReadString(ZrScanToken &token);
    bool ReadEscaped(Collector &text);
    void ReadStringPart(Collector &text);
    void ReadQuoted(ZrScanToken &token);
    void EndString(Collector &text, ZrScanToken &token);

    static void SetText(ZrScanToken &token, char c) {
        token.text[0] = c;
        token.text[1] = 0;
    }
    void TakeSymbol(zr_long symbol_kind, char c, zr_long &kind, ZrScanToken &token) {
        Advance();
        kind = symbol_kind;
        SetText(token, c);
    }

    Source source_;
    const CharacterTable &characters_;
    const Keywords &keywords_;
    const zr_long options_;
    int lookahead_ = ' '; // the character with which the next token starts
    int current_ = ' ';
    int previous_ = ' ';
    bool dot_owed_ = false; // a "." was read behind a sign and is the next token
    std::uint32_t row_ = 0;
    std::uint32_t column_ = before_first;
    int error_ = 0;
};

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipBlanks() {
    const bool keep_lines = Has(SCAN_KEEP_EOL);
    while (current_ == ' ' || (current_ == '\n' && !keep_lines))
        Advance();
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipLine() {
    while (current_ != '\n' && current_ != 0)
        Advance();
}

// Stands on the star of the opening, which serves as that of the closing too. An open comment ends with the input.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipBlockComment() {
    do
        Advance();
    while (!(previous_ == '*' && current_ == '/') && current_ != 0);
    Advance();
}

template <class Source, class Keywords>
int ScannerCore<Source, Keywords>::NextToken(zr_long &kind, ZrScanToken &token) {
    error_ = SCAN_ERROR_NONE;
    token.doubleValue = 0.0;
    token.longValue = 0;
    token.user = 0;
    token.text[0] = 0;
    if (dot_owed_) {
        dot_owed_ = false;
        kind = SCAN_KIND_DOT;
        SetText(token, '.');
        return error_;
    }
    current_ = lookahead_;
    do {
        SkipBlanks();
        token.row = static_cast<zr_long>(row_);
        token.column = static_cast<zr_long>(column_);
    } while (!Dispatch(kind, token));
    lookahead_ = current_;
    return error_;
}

// Reads what begins at the current character. False for a comment or a joined line: the token is still to come.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::Dispatch(zr_long &kind, ZrScanToken &token) {
    if (Is(current_, CharacterTable::name_start)) {
        ReadName(kind, token);
        return true;
    }
    if (IsDigit()) {
        ReadNumber(kind, token, false, false);
        return true;
    }
    switch (current_) {
    case '.':
        ReadDot(kind, token);
        return true;
    case '+':
        ReadSign(SCAN_KIND_PLUS, kind, token);
        return true;
    case '-':
        ReadSign(SCAN_KIND_MINUS, kind, token);
        return true;
    case '*':
        ReadStar(kind, token);
        return true;
    case '/':
        return ReadSlash(kind, token);
    case '!':
        return ReadExclamation(kind, token);
    case '\\':
        return ReadBackslash(token);
    case '\'':
        kind = SCAN_KIND_CHARACTER;
        ReadCharacterLiteral(token);
        return true;
    case '"':
        if (Has(SCAN_HASH_STYLE)) {
            TakeSymbol(SCAN_KIND_QUOTE, '"', kind, token);
        } else {
            kind = SCAN_KIND_STRING;
            ReadString(token);
        }
        return true;
    case '`':
        if (!Has(SCAN_HASH_STYLE))
            break;
        kind = SCAN_KIND_QUOTED;
        ReadQuoted(token);
        return true;
    case '#':
        if (!Has(SCAN_HASH_STYLE))
            break;
        SkipLine();
        return false;
    default:
        break;
    }
    ReadSymbol(kind, token);
    return true;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadDot(zr_long &kind, ZrScanToken &token) {
    TakeSymbol(SCAN_KIND_DOT, '.', kind, token);
    if (IsDigit())
        ReadNumber(kind, token, false, true);
}

// A sign, or the number that it belongs to.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadSign(zr_long sign_kind, zr_long &kind, ZrScanToken &token) {
    const auto sign = static_cast<char>(current_);
    Advance();
    if (Has(SCAN_SIGNED_NUMBERS)) {
        if (IsDigit())
            return ReadNumber(kind, token, sign == '-', false);
        if (current_ == '.') {
            Advance();
            if (IsDigit())
                return ReadNumber(kind, token, sign == '-', true);
            dot_owed_ = true;
        }
    }
    kind = sign_kind;
    SetText(token, sign);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadStar(zr_long &kind, ZrScanToken &token) {
    TakeSymbol(SCAN_KIND_STAR, '*', kind, token);
    if (current_ == '*' && Has(SCAN_STAR_POWER))
        TakeSymbol(SCAN_KIND_POWER, '^', kind, token);
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadSlash(zr_long &kind, ZrScanToken &token) {
    if (SkipComment())
        return false;
    kind = SCAN_KIND_SLASH;
    SetText(token, '/');
    return true;
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadExclamation(zr_long &kind, ZrScanToken &token) {
    if (Has(SCAN_BANG_COMMENT)) {
        SkipLine();
        return false;
    }
    TakeSymbol(SCAN_KIND_EXCLAMATION, '!', kind, token);
    return true;
}

// A backslash that joins no lines is a text without a kind of its own.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadBackslash(ZrScanToken &token) {
    do
        Advance();
    while (current_ == ' ');
    if (current_ == '\n' && Has(SCAN_BACKSLASH_JOIN)) {
        Advance();
        return false;
    }
    SetText(token, '\\');
    return true;
}

// Passes over a slash, and over the comment that it opens; false if it opens none.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::SkipComment() {
    Advance();
    if (current_ == '*' && Has(SCAN_BLOCK_COMMENT)) {
        SkipBlockComment();
        return true;
    }
    if (current_ == '/' && Has(SCAN_LINE_COMMENT)) {
        SkipLine();
        return true;
    }
    return false;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadSymbol(zr_long &kind, ZrScanToken &token) {
    kind = CharacterTable::SymbolKind(current_);
    SetText(token, current_ < ' ' ? ' ' : static_cast<char>(current_));
    token.user = source_.User();
    Advance();
    if (Has(SCAN_COMPOSE_RELATIONS) && Is(previous_, CharacterTable::relation) &&
        Is(current_, CharacterTable::relation))
        Compose(kind, token);
}

// "==", "<<" and ">>" keep the kind of their first character.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::Compose(zr_long &kind, ZrScanToken &token) {
    if (previous_ != current_) {
        if (previous_ != '=' && current_ != '=')
            kind = SCAN_KIND_HASH;
        else
            kind = previous_ == '<' || current_ == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    }
    token.text[1] = static_cast<char>(current_);
    token.text[2] = 0;
    Advance();
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadName(zr_long &kind, ZrScanToken &token) {
    std::size_t length = 0;
    int c = current_;
    do {
        if (length < text_size)
            token.text[length] = static_cast<char>(c);
        ++length;
        previous_ = c;
        c = Fetch();
    } while (Is(c, CharacterTable::name));
    current_ = c;
    column_ += static_cast<std::uint32_t>(length);
    token.user = source_.User();
    kind = SCAN_KIND_IDENTIFIER;
    if (length >= text_size) {
        error_ = SCAN_ERROR_NAME_TOO_LONG;
        return;
    }
    token.text[length] = 0;
    const zr_long keyword = keywords_.Find(token.text, length);
    if (keyword >= 0)
        kind = SCAN_KIND_KEYWORD;
    token.longValue = keyword >= 0 ? keyword : static_cast<zr_long>(length);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadDigits(Collector &number) {
    std::uint32_t count = 0;
    int c = current_;
    for (; Is(c, CharacterTable::digit); ++count) {
        number.Add(c);
        previous_ = c;
        c = Fetch();
    }
    current_ = c;
    column_ += count;
}

// Stands on a digit, or behind the point that `dot_seen` tells of.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen) {
    Collector number{token.text};
    if (negative)
        number.Add('-');
    if (dot_seen)
        number.Add('.');
    ReadDigits(number);
    bool floating = dot_seen;
    if (!dot_seen && current_ == '.') {
        floating = true;
        number.Add('.');
        Advance();
        ReadDigits(number);
    }
    if (current_ == 'e' || current_ == 'E') {
        floating = true;
        number.Add('e');
        Advance();
        if (current_ == '+' || current_ == '-') {
            number.Add(current_);
            Advance();
        }
        if (!IsDigit())
            error_ = SCAN_ERROR_EXPONENT;
        ReadDigits(number);
    }
    if (number.full)
        error_ = SCAN_ERROR_DOUBLE_TOO_LARGE;
    number.Terminate();
    if (error_ == SCAN_ERROR_NONE)
        ConvertNumber(kind, token, number, floating);
}

// An integer that is too large for its kind is a double, unless it is too large for that as well.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ConvertNumber(zr_long &kind, ZrScanToken &token, const Collector &number,
                                                  bool floating) {
    if (!floating && ToLong(number.text, number.length, token.longValue)) {
        kind = SCAN_KIND_LONG;
        return;
    }
    switch (ToDouble(number.text, number.length, token.doubleValue)) {
    case NumberFit::fits:
        kind = SCAN_KIND_DOUBLE;
        break;
    case NumberFit::too_large:
        error_ = floating ? SCAN_ERROR_DOUBLE_TOO_LARGE : SCAN_ERROR_LONG_TOO_LARGE;
        break;
    case NumberFit::too_small:
        error_ = SCAN_ERROR_DOUBLE_TOO_SMALL;
        break;
    }
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadCharacterLiteral(ZrScanToken &token) {
    Advance();
    token.text[0] = static_cast<char>(current_);
    token.longValue = current_;
    std::size_t length = 1;
    if (current_ == '\\')
        length = ReadEscape(token);
    else
        Advance();
    if (current_ == '\'')
        Advance();
    else
        error_ = SCAN_ERROR_CHARACTER_OPEN;
    token.text[length] = 0;
}

// Stands on the backslash of a literal. Answers the length of the text; the current character is behind the escape then.
template <class Source, class Keywords>
std::size_t ScannerCore<Source, Keywords>::ReadEscape(ZrScanToken &token) {
    std::size_t length = 1;
    Advance();
    if (IsDigit()) { // eights and nines count as digits too
        token.longValue = 0;
        for (; length < 4 && IsDigit(); Advance()) {
            token.text[length++] = static_cast<char>(current_);
            token.longValue = token.longValue * 8 + (current_ - '0');
        }
        return length;
    }
    token.text[length++] = static_cast<char>(current_);
    if (current_ == 'x' || current_ == 'X') {
        token.longValue = 0;
        for (Advance(); length < 5 && Is(current_, CharacterTable::hexadecimal); Advance()) {
            token.text[length++] = static_cast<char>(current_);
            token.longValue = token.longValue * 16 + CharacterTable::HexadecimalValue(current_);
        }
        return length;
    }
    token.longValue = CharacterTable::EscapeValue(current_);
    if (token.longValue == ' ')
        error_ = SCAN_ERROR_ESCAPE;
    Advance();
    return length;
}

// Stands on the opening quote. Strings that are joined are read one behind the other into one text.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadString(ZrScanToken &token) {
    Collector text{token.text};
    for (;;) {
        ReadStringPart(text);
        if (error_ != SCAN_ERROR_NONE || current_ != '\\' || !Has(SCAN_STRING_JOIN))
            break;
        Advance();
        SkipBlanks(); // the opening quote of the next part follows
    }
    EndString(text, token);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadStringPart(Collector &text) {
    bool escaped = false;
    Advance();
    while (current_ != '\n' && current_ != 0 && (current_ != '"' || escaped)) {
        if (current_ == '\\' && Has(SCAN_STRING_ESCAPES)) {
            if (!ReadEscaped(text))
                continue;
        } else {
            text.Add(current_);
        }
        escaped = !escaped && current_ == '\\';
        Advance();
    }
    if (text.full)
        error_ = SCAN_ERROR_STRING_TOO_LONG;
    if (current_ == '"')
        Advance();
    else
        error_ = SCAN_ERROR_STRING_OPEN;
}

// Stands on a backslash that escapes. False if the string goes on at the current character, true if behind it. An escaped line feed
// counts as one for the place as well.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadEscaped(Collector &text) {
    Advance();
    if (current_ == 'n') {
        current_ = '\n';
        text.Add(current_);
        return true;
    }
    text.Add('\\');
    text.Add(current_);
    if (current_ == '\\')
        Advance();
    else if (current_ != '"') // a quote closes the string all the same
        return true;
    return false;
}

// Stands on the opening backquote.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadQuoted(ZrScanToken &token) {
    Collector text{token.text};
    bool escaped = false;
    Advance();
    while (current_ != '\n' && current_ != 0 && (current_ != '\'' || escaped)) {
        text.Add(current_);
        escaped = !escaped && current_ == '\\';
        Advance();
    }
    if (current_ == '\'')
        Advance();
    else
        error_ = SCAN_ERROR_STRING_OPEN;
    EndString(text, token);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::EndString(Collector &text, ZrScanToken &token) {
    if (text.Terminate())
        token.longValue = static_cast<zr_long>(text.length);
    else
        error_ = SCAN_ERROR_STRING_TOO_LONG;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::NextCharacter(zr_long &kind, char &c, bool comments) {
    if (comments && current_ == '/')
        SkipComment(); // a slash that opens none is lost
    else
        current_ = lookahead_;
    c = static_cast<char>(current_);
    kind = characters_.CharacterKind(current_);
    Advance();
    lookahead_ = current_;
}

} // namespace zr::expressions

#endif
