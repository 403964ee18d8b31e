// The scanner itself: from characters to tokens, over any source.
//
// A source has `int Next()`, the next character, and `zr_long User()`, the user's field of a name or symbol; keywords have
// `zr_long Find(const char *name, std::size_t length)`, their position or -1. The core is a template over both so that a source in
// memory costs no call for each character. Inside loops over characters that are no line feeds the place is counted by their
// number; everywhere else by Advance. Such loops keep a copy of the source: a call of the caller's function can't change that.
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
        fresh_ = true;
        dot_owed_ = false;
        row_ = 0;
        column_ = before_first;
    }

    // The next token is a "." that was read already; it has no place of its own.
    bool OwesDot() const { return dot_owed_; }

    Source &GetSource() { return source_; }

private:
    static constexpr std::size_t text_size = ZR_SCAN_TEXT_SIZE;
    static constexpr std::uint32_t before_first = 0xFFFFFFFF; // one step in front of column 0

    // A text on its way into a token.
    struct Collector {
        char *text;
        std::size_t length = 0;

        // False if there is no room.
        bool Add(int c) {
            if (length >= text_size)
                return false;
            text[length++] = static_cast<char>(c);
            return true;
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

    // Past the end there is nothing.
    void Advance() {
        if (current_ == 0)
            return;
        const bool line_ends = current_ == '\n';
        current_ = Fetch();
        if (line_ends) {
            ++row_;
            column_ = 0;
        } else {
            ++column_;
        }
    }

    void Refresh() {
        if (fresh_)
            current_ = ' ';
        fresh_ = false;
    }

    std::size_t Collect(char *text, std::size_t length, unsigned classes);
    void SkipBlanks();
    void SkipLine();
    void SkipBlockComment();
    bool SkipComment();

    bool Dispatch(zr_long &kind, ZrScanToken &token);
    bool ReadUncommon(Start start, zr_long &kind, ZrScanToken &token);
    void ReadDot(zr_long &kind, ZrScanToken &token);
    void ReadSign(zr_long &kind, ZrScanToken &token);
    void ReadStar(zr_long &kind, ZrScanToken &token);
    bool ReadSlash(zr_long &kind, ZrScanToken &token);
    bool ReadBackslash(ZrScanToken &token);
    void ReadSymbol(zr_long &kind, ZrScanToken &token);
    void ReadRelation(zr_long &kind, ZrScanToken &token);
    void ReadName(zr_long &kind, ZrScanToken &token);
    bool ReadDigits(Collector &number);
    bool ReadExponent(Collector &number);
    void ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen);
    void ConvertNumber(zr_long &kind, ZrScanToken &token, const Collector &number, bool floating);
    void ReadCharacterLiteral(ZrScanToken &token);
    std::size_t ReadEscape(ZrScanToken &token);
    void ReadString(ZrScanToken &token);
    void ReadEscaped(Collector &text);
    void ReadStringPart(Collector &text);
    void ReadQuoted(ZrScanToken &token);
    void EndString(Collector &text, ZrScanToken &token);

    static void SetText(ZrScanToken &token, char c) {
        token.text[0] = c;
        token.text[1] = 0;
    }
    // The current character as a token.
    void TakeCharacter(zr_long &kind, ZrScanToken &token) {
        kind = CharacterTable::SymbolKind(current_);
        SetText(token, current_ < ' ' ? ' ' : static_cast<char>(current_));
        Advance();
    }

    Source source_;
    const CharacterTable &characters_;
    const Keywords &keywords_;
    const zr_long options_;
    int current_ = ' ';     // the character with which the next token starts
    bool fresh_ = false;    // after a reset: it starts with a blank instead
    bool dot_owed_ = false; // a "." was read behind a sign and is the next token
    std::uint32_t row_ = 0;
    std::uint32_t column_ = before_first;
    int error_ = 0;
};

// The usual case is one blank, and which character follows decides what is done next: it is looked at as it was read.
template <class Source, class Keywords>
inline void ScannerCore<Source, Keywords>::SkipBlanks() {
    Source source = source_;
    int c = current_;
    if (characters_.StartOf(c) != Start::Blank)
        return;
    std::uint32_t row = row_;
    std::uint32_t column = column_;
    int read = c;
    do {
        const bool line_ends = c == '\n';
        read = source.Next();
        c = characters_.Normalise(read);
        row += line_ends ? 1 : 0;
        column = line_ends ? 0 : column + 1;
    } while (characters_.StartOf(read) == Start::Blank);
    source_ = source;
    current_ = c;
    row_ = row;
    column_ = column;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipLine() {
    while (current_ != '\n' && current_ != 0)
        Advance();
}

// Stands on the star of the opening, which serves as that of the closing too. An open comment ends with the input.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipBlockComment() {
    int previous = 0;
    do {
        previous = current_;
        Advance();
    } while (!(previous == '*' && current_ == '/') && current_ != 0);
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
    Refresh();
    do {
        SkipBlanks();
        token.row = static_cast<zr_long>(row_);
        token.column = static_cast<zr_long>(column_);
    } while (!Dispatch(kind, token));
    return error_;
}

// Reads what begins at the current character. False for a comment or a joined line: the token is still to come.
template <class Source, class Keywords>
inline bool ScannerCore<Source, Keywords>::Dispatch(zr_long &kind, ZrScanToken &token) {
    const Start start = characters_.StartOf(current_);
    if (start == Start::Name)
        ReadName(kind, token);
    else if (start == Start::Symbol)
        ReadSymbol(kind, token);
    else if (start == Start::Number)
        ReadNumber(kind, token, false, false);
    else
        return ReadUncommon(start, kind, token);
    return true;
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadUncommon(Start start, zr_long &kind, ZrScanToken &token) {
    switch (start) {
    case Start::Relation:
        ReadRelation(kind, token);
        return true;
    case Start::Dot:
        ReadDot(kind, token);
        return true;
    case Start::Sign:
        ReadSign(kind, token);
        return true;
    case Start::Star:
        ReadStar(kind, token);
        return true;
    case Start::Slash:
        return ReadSlash(kind, token);
    case Start::LineComment:
        SkipLine();
        return false;
    case Start::Backslash:
        return ReadBackslash(token);
    case Start::Character:
        kind = SCAN_KIND_CHARACTER;
        ReadCharacterLiteral(token);
        return true;
    case Start::String:
        kind = SCAN_KIND_STRING;
        ReadString(token);
        return true;
    case Start::Quoted:
        kind = SCAN_KIND_QUOTED;
        ReadQuoted(token);
        return true;
    default:
        TakeCharacter(kind, token);
        return true;
    }
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadDot(zr_long &kind, ZrScanToken &token) {
    Advance();
    if (IsDigit())
        return ReadNumber(kind, token, false, true);
    kind = SCAN_KIND_DOT;
    SetText(token, '.');
}

// A sign, or the number that it belongs to.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadSign(zr_long &kind, ZrScanToken &token) {
    const int sign = current_;
    Advance();
    if (IsDigit())
        return ReadNumber(kind, token, sign == '-', false);
    if (current_ == '.') {
        Advance();
        if (IsDigit())
            return ReadNumber(kind, token, sign == '-', true);
        dot_owed_ = true;
    }
    kind = CharacterTable::SymbolKind(sign);
    SetText(token, static_cast<char>(sign));
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadStar(zr_long &kind, ZrScanToken &token) {
    TakeCharacter(kind, token);
    if (current_ != '*')
        return;
    Advance();
    kind = SCAN_KIND_POWER;
    SetText(token, '^');
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadSlash(zr_long &kind, ZrScanToken &token) {
    if (SkipComment())
        return false;
    kind = SCAN_KIND_SLASH;
    SetText(token, '/');
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
inline void ScannerCore<Source, Keywords>::ReadSymbol(zr_long &kind, ZrScanToken &token) {
    token.user = source_.User();
    TakeCharacter(kind, token);
}

// A symbol that composes with one of its like. "==", "<<" and ">>" keep the kind of their first character.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadRelation(zr_long &kind, ZrScanToken &token) {
    const int first = current_;
    ReadSymbol(kind, token);
    if (!Is(current_, CharacterTable::relation))
        return;
    if (first != current_) {
        if (first != '=' && current_ != '=')
            kind = SCAN_KIND_HASH;
        else
            kind = first == '<' || current_ == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    }
    token.text[1] = static_cast<char>(current_);
    token.text[2] = 0;
    Advance();
}

// Puts the characters of `classes` that come behind text[0..length-1], as far as there is room for them; the length they make
// together. Line feeds have no class.
template <class Source, class Keywords>
inline std::size_t ScannerCore<Source, Keywords>::Collect(char *text, std::size_t length, unsigned classes) {
    int c = current_;
    if (!Is(c, classes))
        return length;
    const std::size_t start = length;
    Source source = source_;
    do {
        if (length < text_size)
            text[length] = static_cast<char>(c);
        ++length;
    } while (characters_.Normalise(source.Next(), classes, c));
    source_ = source;
    current_ = c;
    column_ += static_cast<std::uint32_t>(length - start);
    return length;
}

template <class Source, class Keywords>
inline void ScannerCore<Source, Keywords>::ReadName(zr_long &kind, ZrScanToken &token) {
    const std::size_t length = Collect(token.text, 0, CharacterTable::name);
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

// False if there was no room for all.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadDigits(Collector &number) {
    const std::size_t length = Collect(number.text, number.length, CharacterTable::digit);
    number.length = length < text_size ? length : text_size;
    return length <= text_size;
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadExponent(Collector &number) {
    bool fits = number.Add('e');
    Advance();
    if (current_ == '+' || current_ == '-') {
        fits &= number.Add(current_);
        Advance();
    }
    if (!IsDigit())
        error_ = SCAN_ERROR_EXPONENT;
    return ReadDigits(number) && fits;
}

// Stands on a digit, or behind the point that `dot_seen` tells of.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen) {
    Collector number{token.text};
    if (negative)
        number.Add('-');
    if (dot_seen)
        number.Add('.');
    bool fits = ReadDigits(number);
    bool floating = dot_seen;
    if (!dot_seen && current_ == '.') {
        floating = true;
        fits &= number.Add('.');
        Advance();
        fits &= ReadDigits(number);
    }
    if (current_ == 'e' || current_ == 'E') {
        floating = true;
        fits &= ReadExponent(number);
    }
    if (!fits)
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
            ReadEscaped(text);
            continue;
        }
        if (!text.Add(current_))
            error_ = SCAN_ERROR_STRING_TOO_LONG;
        escaped = !escaped && current_ == '\\';
        Advance();
    }
    if (current_ == '"')
        Advance();
    else
        error_ = SCAN_ERROR_STRING_OPEN;
}

// Stands on a backslash that escapes; afterwards where the string goes on. A quote closes the string all the same. Only there and
// at a second backslash is want of room no error yet: it shows at the string's end. An escaped line feed counts as one for the place
// as well.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadEscaped(Collector &text) {
    Advance();
    bool fits = true;
    if (current_ == 'n') {
        current_ = '\n';
        fits = text.Add(current_);
    } else {
        text.Add('\\');
        fits = text.Add(current_);
        if (current_ == '"')
            return;
        fits |= current_ == '\\';
    }
    if (!fits)
        error_ = SCAN_ERROR_STRING_TOO_LONG;
    Advance();
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
    if (comments && current_ == '/') {
        SkipComment(); // a slash that opens none is lost
        fresh_ = false;
    }
    Refresh();
    c = static_cast<char>(current_);
    kind = characters_.CharacterKind(current_);
    Advance();
}

} // namespace zr::expressions

#endif
