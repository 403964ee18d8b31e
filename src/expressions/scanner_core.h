// The scanner itself: from characters to tokens, over any source.
//
// A source has `int Next()`, the next character; `bool HasUser()` and `zr_long User()`, the user's field of a name or symbol; and
// `void Follow(const Source &)`, by which it goes on where a copy of it has come to. Keywords have what KeywordIndex tells of Find.
// The core is a template over both so that a source in memory costs no call for each character. Loops over many characters keep the
// current one, the place and a copy of the source in registers: a call of the caller's function can't change these. Everywhere else
// Advance reads.
#ifndef ZR_EXPRESSIONS_SCANNER_CORE_H
#define ZR_EXPRESSIONS_SCANNER_CORE_H

#include <cfloat>
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
        : m_source(source), m_characters(characters), m_keywords(keywords), m_options(options) {}

    // Answers the error; contract of scan_token.
    int NextToken(zr_long &kind, ZrScanToken &token) noexcept;

    // Contract of scan_character and scan_character_ex.
    void NextCharacter(zr_long &kind, char &c, bool comments);

    void Reset() {
        m_pending = Pending::Blank;
        m_row = 0;
        m_column = before_first;
    }

    // The next token is a "." that was read already; it has no place of its own.
    bool OwesDot() const { return m_pending == Pending::Dot; }

    Source &GetSource() { return m_source; }

private:
    static constexpr std::size_t text_size = ZR_SCAN_TEXT_SIZE;
    static constexpr std::uint32_t before_first = 0xFFFFFFFF; // one step in front of column 0

    // What comes in front of the current character.
    enum class Pending : std::uint8_t {
        Nothing,
        Blank, // in its place, after a reset
        Dot    // read behind a sign, and the next token
    };

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

    struct Number {
        Collector text;
        bool negative;
        bool has_point;
        bool has_exponent = false;
        std::size_t decimals_begin = 0; // in the text
        std::uint64_t digits = 0;       // all in a row, if they are few
    };
    // As many characters hold so few digits that `Number::digits` is right, and exact as a double if one of them is a point.
    static constexpr std::size_t most_characters = 16;

    bool Has(zr_long option) const { return (m_options & option) != 0; }

    // Past the end there is nothing.
    void Advance() {
        if (m_current.Value() == 0)
            return;
        const bool line_ends = m_current.Value() == '\n';
        Step();
        if (line_ends) {
            ++m_row;
            m_column = 0;
        }
    }

    // The same where the current character is neither the end nor a line feed.
    void Step() {
        m_current = m_characters.Classify(m_source.Next());
        ++m_column;
    }

    template <class IsTaken>
    bool Take(Collector &text, IsTaken is_taken);
    void SkipBlanks();
    void SkipLine();
    void SkipBlockComment();
    bool SkipComment();

    bool GivePending(zr_long &kind, ZrScanToken &token);
    bool Dispatch(zr_long &kind, ZrScanToken &token);
    bool ReadUncommon(Start start, zr_long &kind, ZrScanToken &token);
    void ReadDot(zr_long &kind, ZrScanToken &token);
    void ReadSign(zr_long &kind, ZrScanToken &token);
    void ReadStar(zr_long &kind, ZrScanToken &token);
    bool ReadSlash(zr_long &kind, ZrScanToken &token);
    bool ReadBackslash(ZrScanToken &token);
    void ReadSymbol(zr_long &kind, ZrScanToken &token);
    void ReadSpecial(zr_long &kind, ZrScanToken &token);
    void ReadRelation(zr_long &kind, ZrScanToken &token);
    void ReadName(zr_long &kind, ZrScanToken &token);
    bool ReadDigits(Number &number);
    bool ReadExponent(Number &number);
    void ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen);
    bool SetNumber(zr_long &kind, ZrScanToken &token, const Number &number);
    void ConvertNumber(zr_long &kind, ZrScanToken &token, const Number &number);
    void ReadCharacterLiteral(ZrScanToken &token);
    std::size_t ReadEscape(ZrScanToken &token);
    void TakePlain(Collector &text, int quote, bool &escaped);
    void ReadString(ZrScanToken &token);
    void ReadEscaped(Collector &text);
    void ReadStringPart(Collector &text);
    void ReadQuoted(ZrScanToken &token);
    void EndString(Collector &text, ZrScanToken &token);

    static void SetText(ZrScanToken &token, char c) {
        token.text[0] = c;
        token.text[1] = 0;
    }

    Source m_source;
    const CharacterTable &m_characters;
    const Keywords &m_keywords;
    const zr_long m_options;
    Character m_current{' ', Start::Blank}; // the one with which the next token starts
    Pending m_pending = Pending::Nothing;
    std::uint32_t m_row = 0;
    std::uint32_t m_column = before_first;
    int m_error = 0;
};

template <class Source, class Keywords>
inline void ScannerCore<Source, Keywords>::SkipBlanks() {
    Character c = m_current;
    if (!c.IsBlank())
        return;
    Source source = m_source;
    const CharacterTable &characters = m_characters;
    std::uint32_t row = m_row;
    std::uint32_t column = m_column;
    do {
        const bool line_ends = c.Value() == '\n';
        c = characters.Classify(source.Next());
        row += line_ends ? 1 : 0;
        column = line_ends ? 0 : column + 1;
    } while (c.IsBlank());
    m_source.Follow(source);
    m_current = c;
    m_row = row;
    m_column = column;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipLine() {
    Character c = m_current;
    Source source = m_source;
    const CharacterTable &characters = m_characters;
    std::uint32_t column = m_column;
    for (; c.Value() != '\n' && c.Value() != 0; ++column)
        c = characters.Classify(source.Next());
    m_source.Follow(source);
    m_current = c;
    m_column = column;
}

// Stands on the star of the opening, which serves as that of the closing too. An open comment ends with the input.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::SkipBlockComment() {
    Character c = m_current;
    Source source = m_source;
    const CharacterTable &characters = m_characters;
    std::uint32_t row = m_row;
    std::uint32_t column = m_column;
    int previous = 0;
    do {
        previous = c.Value();
        c = characters.Classify(source.Next());
        row += previous == '\n' ? 1 : 0;
        column = previous == '\n' ? 0 : column + 1;
    } while (!(previous == '*' && c.Value() == '/') && c.Value() != 0);
    m_source.Follow(source);
    m_current = c;
    m_row = row;
    m_column = column;
    Advance();
}

template <class Source, class Keywords>
int ScannerCore<Source, Keywords>::NextToken(zr_long &kind, ZrScanToken &token) noexcept {
    m_error = SCAN_ERROR_NONE;
    token.doubleValue = 0.0;
    token.longValue = 0;
    token.user = 0;
    if (m_pending != Pending::Nothing && GivePending(kind, token))
        return m_error;
    do {
        SkipBlanks();
        token.row = static_cast<zr_long>(m_row);
        token.column = static_cast<zr_long>(m_column);
    } while (!Dispatch(kind, token));
    return m_error;
}

// True if what comes in front of the current character is a token.
template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::GivePending(zr_long &kind, ZrScanToken &token) {
    const bool is_dot = m_pending == Pending::Dot;
    m_pending = Pending::Nothing;
    if (is_dot) {
        kind = SCAN_KIND_DOT;
        SetText(token, '.');
    } else {
        m_current = {' ', Start::Blank};
    }
    return is_dot;
}

// Reads what begins at the current character. False for a comment or a joined line: the token is still to come.
template <class Source, class Keywords>
inline bool ScannerCore<Source, Keywords>::Dispatch(zr_long &kind, ZrScanToken &token) {
    const Start start = m_current.GetStart();
    if (start == Start::Name) {
        ReadName(kind, token);
    } else if (start >= Start::Symbol) {
        if (m_source.HasUser() && start == Start::Symbol)
            token.user = m_source.User();
        ReadSymbol(kind, token);
    } else if (start == Start::Number) {
        ReadNumber(kind, token, false, false);
    } else {
        return ReadUncommon(start, kind, token);
    }
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
        token.user = m_source.User();
        ReadSpecial(kind, token);
        return true;
    }
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadDot(zr_long &kind, ZrScanToken &token) {
    Advance();
    if (m_current.IsDigit())
        return ReadNumber(kind, token, false, true);
    kind = SCAN_KIND_DOT;
    SetText(token, '.');
}

// A sign, or the number that it belongs to.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadSign(zr_long &kind, ZrScanToken &token) {
    const int sign = m_current.Value();
    Advance();
    if (m_current.IsDigit())
        return ReadNumber(kind, token, sign == '-', false);
    if (m_current.Value() == '.') {
        Advance();
        if (m_current.IsDigit())
            return ReadNumber(kind, token, sign == '-', true);
        m_pending = Pending::Dot;
    }
    kind = CharacterTable::SymbolKind(sign);
    SetText(token, static_cast<char>(sign));
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadStar(zr_long &kind, ZrScanToken &token) {
    ReadSymbol(kind, token);
    if (m_current.Value() != '*')
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
    while (m_current.Value() == ' ');
    if (m_current.Value() == '\n' && Has(SCAN_BACKSLASH_JOIN)) {
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
    if (m_current.Value() == '*' && Has(SCAN_BLOCK_COMMENT)) {
        SkipBlockComment();
        return true;
    }
    if (m_current.Value() == '/' && Has(SCAN_LINE_COMMENT)) {
        SkipLine();
        return true;
    }
    return false;
}

template <class Source, class Keywords>
inline void ScannerCore<Source, Keywords>::ReadSymbol(zr_long &kind, ZrScanToken &token) {
    const int c = m_current.Value();
    kind = CharacterTable::SymbolKind(c);
    SetText(token, static_cast<char>(c));
    Step();
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadSpecial(zr_long &kind, ZrScanToken &token) {
    const int c = m_current.Value();
    kind = CharacterTable::SymbolKind(c);
    SetText(token, c < ' ' ? ' ' : static_cast<char>(c));
    Advance();
}

// A symbol that composes with one of its like. "==", "<<" and ">>" keep the kind of their first character.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadRelation(zr_long &kind, ZrScanToken &token) {
    const int first = m_current.Value();
    token.user = m_source.User();
    ReadSymbol(kind, token);
    const int second = m_current.Value();
    if (!CharacterTable::IsRelation(second))
        return;
    if (first != second) {
        if (first != '=' && second != '=')
            kind = SCAN_KIND_HASH;
        else
            kind = first == '<' || second == '<' ? SCAN_KIND_LESS_EQUAL : SCAN_KIND_GREATER_EQUAL;
    }
    token.text[1] = static_cast<char>(second);
    token.text[2] = 0;
    Step();
}

// Takes the current character and those behind it, as long as `is_taken` says so and there is room. False if there was no room for
// one that is to be taken; that is the current character then. Line feeds are never to be taken.
template <class Source, class Keywords>
template <class IsTaken>
inline bool ScannerCore<Source, Keywords>::Take(Collector &text, IsTaken is_taken) {
    Character c = m_current;
    Source source = m_source;
    const CharacterTable &characters = m_characters;
    char *const start = text.text + text.length;
    char *const end = text.text + text_size;
    char *next = start;
    while (is_taken(c) && next != end) {
        *next++ = static_cast<char>(c.Value());
        c = characters.Classify(source.Next());
    }
    m_source.Follow(source);
    m_current = c;
    m_column += static_cast<std::uint32_t>(next - start);
    text.length = static_cast<std::size_t>(next - text.text);
    return next != end || !is_taken(c);
}

template <class Source, class Keywords>
inline void ScannerCore<Source, Keywords>::ReadName(zr_long &kind, ZrScanToken &token) {
    Collector name{token.text};
    std::uint64_t packed = 0;
    Take(name, [&packed](Character c) {
        if (!c.IsOfName())
            return false;
        packed = packed << 8 | static_cast<unsigned char>(c.Value());
        return true;
    });
    kind = SCAN_KIND_IDENTIFIER;
    if (!name.Terminate()) {
        m_error = SCAN_ERROR_NAME_TOO_LONG;
        while (m_current.IsOfName())
            Advance();
    } else {
        const zr_long keyword = m_keywords.Find(token.text, name.length, packed);
        if (keyword >= 0)
            kind = SCAN_KIND_KEYWORD;
        token.longValue = keyword >= 0 ? keyword : static_cast<zr_long>(name.length);
    }
    token.user = m_source.User();
}

// Takes digits and reckons on by them. False if there was no room for all.
template <class Source, class Keywords>
inline bool ScannerCore<Source, Keywords>::ReadDigits(Number &number) {
    std::uint64_t digits = number.digits;
    const bool fits = Take(number.text, [&digits](Character c) {
        if (!c.IsDigit())
            return false;
        digits = digits * 10 + static_cast<unsigned>(c.Value() - '0');
        return true;
    });
    number.digits = digits;
    while (m_current.IsDigit())
        Advance();
    return fits;
}

template <class Source, class Keywords>
bool ScannerCore<Source, Keywords>::ReadExponent(Number &number) {
    number.has_exponent = true;
    bool fits = number.text.Add('e');
    Advance();
    if (m_current.Value() == '+' || m_current.Value() == '-') {
        fits &= number.text.Add(m_current.Value());
        Advance();
    }
    if (!m_current.IsDigit())
        m_error = SCAN_ERROR_EXPONENT;
    return ReadDigits(number) && fits;
}

// Stands on a digit, or behind the point that `dot_seen` tells of.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadNumber(zr_long &kind, ZrScanToken &token, bool negative, bool dot_seen) {
    Number number{{token.text}, negative, dot_seen};
    if (negative)
        number.text.Add('-');
    if (dot_seen)
        number.text.Add('.');
    number.decimals_begin = number.text.length;
    bool fits = ReadDigits(number);
    if (!dot_seen && m_current.Value() == '.') {
        number.has_point = true;
        fits &= number.text.Add('.');
        number.decimals_begin = number.text.length;
        Advance();
        fits &= ReadDigits(number);
    }
    if (m_current.Value() == 'e' || m_current.Value() == 'E')
        fits &= ReadExponent(number);
    if (!fits)
        m_error = SCAN_ERROR_DOUBLE_TOO_LARGE;
    number.text.Terminate();
    if (m_error == SCAN_ERROR_NONE && !SetNumber(kind, token, number))
        ConvertNumber(kind, token, number);
}

// The value of a number that its digits alone give: of few, without an exponent. One division of exact doubles is rounded once, hence
// right, where the machine computes in doubles. False for other numbers.
template <class Source, class Keywords>
inline bool ScannerCore<Source, Keywords>::SetNumber(zr_long &kind, ZrScanToken &token, const Number &number) {
    if (number.text.length > most_characters || number.has_exponent)
        return false;
    const auto size = static_cast<std::int64_t>(number.digits);
    const std::int64_t value = number.negative ? -size : size;
    if (number.has_point) {
        if (FLT_EVAL_METHOD != 0)
            return false;
        const double fraction = static_cast<double>(size) / exact_powers[number.text.length - number.decimals_begin];
        kind = SCAN_KIND_DOUBLE;
        token.doubleValue = number.negative ? -fraction : fraction;
    } else if (value == static_cast<zr_long>(value)) {
        kind = SCAN_KIND_LONG;
        token.longValue = static_cast<zr_long>(value);
    } else {
        kind = SCAN_KIND_DOUBLE;
        token.doubleValue = static_cast<double>(value);
    }
    return true;
}

// An integer that is too large for its kind is a double, unless it is too large for that as well.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ConvertNumber(zr_long &kind, ZrScanToken &token, const Number &number) {
    const bool floating = number.has_point || number.has_exponent;
    const auto &[text, length] = number.text;
    if (!floating && ToLong(text, length, token.longValue)) {
        kind = SCAN_KIND_LONG;
        return;
    }
    switch (ToDouble(text, length, token.doubleValue)) {
    case NumberFit::fits:
        kind = SCAN_KIND_DOUBLE;
        break;
    case NumberFit::too_large:
        m_error = floating ? SCAN_ERROR_DOUBLE_TOO_LARGE : SCAN_ERROR_LONG_TOO_LARGE;
        break;
    case NumberFit::too_small:
        m_error = SCAN_ERROR_DOUBLE_TOO_SMALL;
        break;
    }
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadCharacterLiteral(ZrScanToken &token) {
    Advance();
    token.text[0] = static_cast<char>(m_current.Value());
    token.longValue = m_current.Value();
    std::size_t length = 1;
    if (m_current.Value() == '\\')
        length = ReadEscape(token);
    else
        Advance();
    if (m_current.Value() == '\'')
        Advance();
    else
        m_error = SCAN_ERROR_CHARACTER_OPEN;
    token.text[length] = 0;
}

// Stands on the backslash of a literal. Answers the length of the text; the current character is behind the escape then.
template <class Source, class Keywords>
std::size_t ScannerCore<Source, Keywords>::ReadEscape(ZrScanToken &token) {
    std::size_t length = 1;
    Advance();
    if (m_current.IsDigit()) { // eights and nines count as digits too
        token.longValue = 0;
        for (; length < 4 && m_current.IsDigit(); Advance()) {
            token.text[length++] = static_cast<char>(m_current.Value());
            token.longValue = token.longValue * 8 + (m_current.Value() - '0');
        }
        return length;
    }
    token.text[length++] = static_cast<char>(m_current.Value());
    if (m_current.Value() == 'x' || m_current.Value() == 'X') {
        token.longValue = 0;
        for (Advance(); length < 5 && CharacterTable::IsHexadecimal(m_current.Value()); Advance()) {
            token.text[length++] = static_cast<char>(m_current.Value());
            token.longValue = token.longValue * 16 + CharacterTable::HexadecimalValue(m_current.Value());
        }
        return length;
    }
    token.longValue = CharacterTable::EscapeValue(m_current.Value());
    if (token.longValue == ' ')
        m_error = SCAN_ERROR_ESCAPE;
    Advance();
    return length;
}

// Stands on the opening quote. Strings that are joined are read one behind the other into one text.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadString(ZrScanToken &token) {
    Collector text{token.text};
    for (;;) {
        ReadStringPart(text);
        if (m_error != SCAN_ERROR_NONE || m_current.Value() != '\\' || !Has(SCAN_STRING_JOIN))
            break;
        Advance();
        SkipBlanks(); // the opening quote of the next part follows
    }
    EndString(text, token);
}

// Takes what has no meaning in a text up to `quote`, as far as there is room. After such a character nothing is escaped.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::TakePlain(Collector &text, int quote, bool &escaped) {
    const auto is_plain = [quote](Character c) {
        return c.Value() != quote && c.Value() != '\\' && c.Value() != '\n' && c.Value() != 0;
    };
    if (!is_plain(m_current))
        return;
    escaped = false;
    Take(text, is_plain);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadStringPart(Collector &text) {
    bool escaped = false;
    Advance();
    for (;;) {
        TakePlain(text, '"', escaped);
        if (m_current.Value() == '\\' && Has(SCAN_STRING_ESCAPES)) {
            ReadEscaped(text);
            continue;
        }
        if (m_current.Value() == '\n' || m_current.Value() == 0 || (m_current.Value() == '"' && !escaped))
            break;
        if (!text.Add(m_current.Value()))
            m_error = SCAN_ERROR_STRING_TOO_LONG;
        escaped = !escaped && m_current.Value() == '\\';
        Advance();
    }
    if (m_current.Value() == '"')
        Advance();
    else
        m_error = SCAN_ERROR_STRING_OPEN;
}

// Stands on a backslash that escapes; afterwards where the string goes on. A quote closes the string all the same. Only there and
// at a second backslash is want of room no error yet: it shows at the string's end. An escaped line feed counts as one for the place
// as well.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadEscaped(Collector &text) {
    Advance();
    bool fits = true;
    if (m_current.Value() == 'n') {
        m_current = m_characters.Classify('\n');
        fits = text.Add(m_current.Value());
    } else {
        text.Add('\\');
        fits = text.Add(m_current.Value());
        if (m_current.Value() == '"')
            return;
        fits |= m_current.Value() == '\\';
    }
    if (!fits)
        m_error = SCAN_ERROR_STRING_TOO_LONG;
    Advance();
}

// Stands on the opening backquote.
template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::ReadQuoted(ZrScanToken &token) {
    Collector text{token.text};
    bool escaped = false;
    Advance();
    for (;;) {
        TakePlain(text, '\'', escaped);
        if (m_current.Value() == '\n' || m_current.Value() == 0 || (m_current.Value() == '\'' && !escaped))
            break;
        text.Add(m_current.Value());
        escaped = !escaped && m_current.Value() == '\\';
        Advance();
    }
    if (m_current.Value() == '\'')
        Advance();
    else
        m_error = SCAN_ERROR_STRING_OPEN;
    EndString(text, token);
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::EndString(Collector &text, ZrScanToken &token) {
    if (text.Terminate())
        token.longValue = static_cast<zr_long>(text.length);
    else
        m_error = SCAN_ERROR_STRING_TOO_LONG;
}

template <class Source, class Keywords>
void ScannerCore<Source, Keywords>::NextCharacter(zr_long &kind, char &c, bool comments) {
    if (comments && m_current.Value() == '/') {
        SkipComment(); // a slash that opens none is lost
        if (m_pending == Pending::Blank)
            m_pending = Pending::Nothing;
    } else if (m_pending == Pending::Blank) {
        m_pending = Pending::Nothing;
        m_current = {' ', Start::Blank};
    }
    c = static_cast<char>(m_current.Value());
    kind = CharacterTable::CharacterKind(m_current);
    Advance();
}

} // namespace zr::expressions

#endif
