// The scanner done slowly, one told step after the other, to hold the library's way against. Of the library it takes the names of
// kinds, options and errors only.
#ifndef TESTS_EXPRESSIONS_REFERENCE_SCANNER_H
#define TESTS_EXPRESSIONS_REFERENCE_SCANNER_H

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <zrclb/scan.h>

namespace scan_test {

class ReferenceScanner {
public:
    // What a call delivers. `text` is what stands in the token's text, without the terminator.
    struct Token {
        std::string text;
        bool terminated = true;
        double double_value = 0;
        zr_long long_value = 0;
        zr_long row = 0;
        zr_long column = 0;
        zr_long user = 0;
    };

    ReferenceScanner(std::function<int()> source, std::function<zr_long()> user, zr_long options,
                     std::vector<std::string> keywords)
        : source_(std::move(source)), user_(std::move(user)), options_(options), keywords_(std::move(keywords)) {
        SortKeywords();
    }

    int NextToken(zr_long &kind, Token &token) {
        error_ = 0;
        token.double_value = 0;
        token.long_value = 0;
        token.user = 0;
        token.text.clear();
        token.terminated = true;
        if (pending_dot_) {
            pending_dot_ = false;
            kind = 16;
            token.text = ".";
            return 0;
        }
        current_ = lookahead_;
        do {
            SkipBlanks();
            token.row = row_;
            token.column = column_;
        } while (Dispatch(kind, token) == again);
        lookahead_ = current_;
        return error_;
    }

    void NextCharacter(zr_long &kind, char &c, bool comments) {
        if (comments && current_ == '/') {
            Advance();
            if (current_ == '*' && Has(SCAN_BLOCK_COMMENT))
                SkipBlockComment();
            else if (current_ == '/' && Has(SCAN_LINE_COMMENT))
                SkipLine();
        } else {
            current_ = lookahead_;
        }
        c = static_cast<char>(current_);
        kind = ClassOf(current_);
        Advance();
        lookahead_ = current_;
    }

    void Reset() {
        lookahead_ = 32;
        pending_dot_ = false;
        row_ = 0;
        column_ = -1;
    }

private:
    enum Outcome {
        done,
        again
    };

    bool Has(zr_long option) const { return (options_ & option) != 0; }

    // --- characters

    static bool IsCapital(int c) { return c >= 'A' && c <= 'Z'; }
    static bool IsSmall(int c) { return c >= 'a' && c <= 'z'; }
    static bool IsDigit(int c) { return c >= '0' && c <= '9'; }
    static bool IsUmlaut(int c) {
        return c == 0x84 || c == 0x94 || c == 0x81 || c == 0x8E || c == 0x99 || c == 0x9A || c == 0xE1;
    }
    bool IsNameStart(int c) const {
        return IsCapital(c) || IsSmall(c) || c == '_' || (Has(SCAN_UMLAUTS) && IsUmlaut(c)) ||
               (Has(SCAN_APOSTROPHE_NAMES) && c == '\'');
    }
    bool IsNamePart(int c) const { return IsNameStart(c) || IsDigit(c); }

    zr_long ClassOf(int c) const {
        if (IsCapital(c) || IsSmall(c) || (Has(SCAN_UMLAUTS) && IsUmlaut(c)))
            return 1;
        if (IsDigit(c))
            return 2;
        if (c == 32)
            return 4;
        if (c == 10)
            return 43;
        if (c == 0)
            return 44;
        return c < 32 ? 0 : 3;
    }

    int Lower(int c) const {
        if (Has(SCAN_UMLAUTS) && IsUmlaut(c))
            return c == 0x8E ? 0x84 : c == 0x99 ? 0x94 : c == 0x9A ? 0x81 : c;
        return IsCapital(c) ? c + 32 : c;
    }
    int Upper(int c) const {
        if (Has(SCAN_UMLAUTS) && IsUmlaut(c))
            return c == 0x84 ? 0x8E : c == 0x94 ? 0x99 : c == 0x81 ? 0x9A : c;
        return IsSmall(c) ? c - 32 : c;
    }

    void Advance() {
        previous_ = current_;
        if (current_ == 0)
            return;
        current_ = source_();
        if (previous_ == 10) {
            ++row_;
            column_ = 0;
        } else {
            ++column_;
        }
        if (current_ == -1)
            current_ = 0;
        else if (current_ >= 1 && current_ <= 31 && current_ != 10)
            current_ = 32;
        if (Has(SCAN_LOWER))
            current_ = Lower(current_);
        else if (Has(SCAN_UPPER))
            current_ = Upper(current_);
    }

    // --- what is passed over

    void SkipBlanks() {
        while (current_ == 32 || (current_ == 10 && !Has(SCAN_KEEP_EOL)))
            Advance();
    }
    void SkipBlockComment() {
        do
            Advance();
        while (current_ != 0 && !(previous_ == '*' && current_ == '/'));
        if (current_ != 0)
            Advance();
    }
    void SkipLine() {
        while (current_ != 10 && current_ != 0)
            Advance();
    }

    // --- tokens

    static void Put(Token &token, int c) { token.text.assign(1, static_cast<char>(c)); }
    static void Set(zr_long &kind, Token &token, zr_long value, char text) {
        kind = value;
        Put(token, text);
    }

    Outcome Dispatch(zr_long &kind, Token &token) {
        if (IsNameStart(current_)) {
            ReadName(token);
            kind = error_ == 0 && FindKeyword(token) ? 5 : 6;
            token.user = user_ ? user_() : 0;
            return done;
        }
        if (IsDigit(current_)) {
            ReadNumber(kind, token, false, false);
            return done;
        }
        switch (current_) {
        case '.':
            Advance();
            if (IsDigit(current_))
                ReadNumber(kind, token, false, true);
            else
                Set(kind, token, 16, '.');
            return done;
        case '+':
        case '-':
            ReadSign(kind, token);
            return done;
        case '\'':
            ReadCharLiteral(token);
            kind = 9;
            return done;
        case '"':
            if (Has(SCAN_HASH_STYLE)) {
                Set(kind, token, 42, '"');
                Advance();
            } else {
                ReadString(token);
                kind = 10;
            }
            return done;
        case '/':
            Advance();
            if (current_ == '*' && Has(SCAN_BLOCK_COMMENT)) {
                SkipBlockComment();
                return again;
            }
            if (current_ == '/' && Has(SCAN_LINE_COMMENT)) {
                SkipLine();
                return again;
            }
            Set(kind, token, 21, '/');
            return done;
        case '*':
            Advance();
            if (current_ == '*' && Has(SCAN_STAR_POWER)) {
                Set(kind, token, 22, '^');
                Advance();
            } else {
                Set(kind, token, 20, '*');
            }
            return done;
        case '!':
            Advance();
            if (Has(SCAN_BANG_COMMENT)) {
                SkipLine();
                return again;
            }
            Set(kind, token, 38, '!');
            return done;
        case '\\':
            Advance();
            while (current_ == 32)
                Advance();
            if (current_ == 10 && Has(SCAN_BACKSLASH_JOIN)) {
                Advance();
                return again;
            }
            Put(token, '\\');
            return done;
        default:
            break;
        }
        if (current_ == '#' && Has(SCAN_HASH_STYLE)) {
            Advance();
            SkipLine();
            return again;
        }
        if (current_ == '`' && Has(SCAN_HASH_STYLE)) {
            ReadQuoted(token);
            kind = 11;
            return done;
        }
        ReadSymbol(kind, token);
        return done;
    }

    void ReadSign(zr_long &kind, Token &token) {
        const int sign = current_;
        Advance();
        if (Has(SCAN_SIGNED_NUMBERS)) {
            if (IsDigit(current_))
                return ReadNumber(kind, token, sign == '-', false);
            if (current_ == '.') {
                Advance();
                if (IsDigit(current_))
                    return ReadNumber(kind, token, sign == '-', true);
                pending_dot_ = true;
            }
        }
        Set(kind, token, sign == '+' ? 18 : 19, static_cast<char>(sign));
    }

    static zr_long KindOf(int c) {
        static const std::vector<std::pair<int, zr_long>> kinds = {
            {'=', 12}, {'#', 13}, {',', 14}, {';', 15}, {':', 17}, {'^', 22}, {'<', 23}, {'>', 24},
            {'(', 27}, {')', 28}, {'{', 29}, {'}', 30}, {'[', 31}, {']', 32}, {'$', 33}, {'@', 34},
            {'%', 35}, {'&', 36}, {'?', 37}, {'|', 39}, {'~', 41}, {10, 43},  {0, 44}};
        for (const auto &[character, kind] : kinds) {
            if (c == character)
                return kind;
        }
        return 0;
    }

    void ReadSymbol(zr_long &kind, Token &token) {
        kind = KindOf(current_);
        Put(token, current_ < 32 ? 32 : current_);
        token.user = user_ ? user_() : 0;
        Advance();
        const auto relation = [](int c) { return c == '<' || c == '>' || c == '='; };
        if (!Has(SCAN_COMPOSE_RELATIONS) || !relation(previous_) || !relation(current_))
            return;
        static const std::vector<std::pair<std::string, zr_long>> composed = {
            {"><", 13}, {"<<", 23}, {"=<", 25}, {">>", 24}, {"<>", 13}, {"=>", 26}, {">=", 26}, {"<=", 25}, {"==", 12}};
        token.text += static_cast<char>(current_);
        for (const auto &[text, value] : composed) {
            if (token.text == text)
                kind = value;
        }
        Advance();
    }

    // --- names

    void ReadName(Token &token) {
        while (IsNamePart(current_)) {
            if (!Store(token))
                error_ = 1;
            Advance();
        }
        if (token.text.size() >= 4096)
            error_ = 1;
        End(token, 1);
    }

    // Stores the current character if there is room for it.
    bool Store(Token &token) const { return Store(token, current_); }
    static bool Store(Token &token, int c) {
        if (token.text.size() >= 4096)
            return false;
        token.text += static_cast<char>(c);
        return true;
    }
    void End(Token &token, int error_if_full) {
        token.terminated = token.text.size() < 4096;
        if (!token.terminated)
            error_ = error_if_full;
        else
            token.long_value = static_cast<zr_long>(token.text.size());
    }

    int Compare(const std::string &left, const std::string &right) const {
        const auto folded = [this](const std::string &text) {
            std::vector<int> bytes;
            for (const char c : text) {
                const int byte = static_cast<unsigned char>(c);
                bytes.push_back(Has(SCAN_KEYWORDS_NOCASE) && IsCapital(byte) ? byte + 32 : byte);
            }
            return bytes;
        };
        const std::vector<int> a = folded(left);
        const std::vector<int> b = folded(right);
        return a < b ? -1 : a == b ? 0 : 1;
    }

    void SortKeywords() {
        std::vector<std::size_t> left(keywords_.size());
        for (std::size_t i = 0; i < left.size(); ++i)
            left[i] = i;
        while (!left.empty()) {
            std::size_t smallest = 0;
            for (std::size_t i = 1; i < left.size(); ++i) {
                if (Compare(keywords_[left[i]], keywords_[left[smallest]]) < 0)
                    smallest = i;
            }
            index_.push_back(left[smallest]);
            left.erase(left.begin() + static_cast<std::ptrdiff_t>(smallest));
        }
    }

    bool FindKeyword(Token &token) const {
        const auto matches = [&](std::size_t place) {
            if (Compare(token.text, keywords_[index_[place]]) != 0)
                return false;
            token.long_value = static_cast<zr_long>(index_[place]);
            return true;
        };
        if (index_.empty())
            return false;
        if (matches(0) || matches(index_.size() - 1))
            return true;
        if (index_.size() < 3)
            return false;
        std::size_t low = 0;
        std::size_t high = index_.size() - 1;
        while (low < high - 1) {
            const std::size_t mid = low + (high - low) / 2;
            if (matches(mid))
                return true;
            if (Compare(token.text, keywords_[index_[mid]]) < 0)
                high = mid;
            else
                low = mid;
        }
        return false;
    }

    // --- numbers

    void ReadNumber(zr_long &kind, Token &token, bool negative, bool dot_seen) {
        bool fits = true;
        bool is_float = false;
        const auto add = [&](int c) { fits = Store(token, c) && fits; };
        const auto add_digits = [&] {
            for (; IsDigit(current_); Advance())
                add(current_);
        };
        if (negative)
            add('-');
        if (dot_seen) {
            add('.');
            if (!IsDigit(current_))
                error_ = 5;
        }
        add_digits();
        if (!dot_seen && current_ == '.') {
            is_float = true;
            add('.');
            Advance();
            add_digits();
        }
        if (current_ == 'e' || current_ == 'E') {
            is_float = true;
            add('e');
            Advance();
            if (current_ == '+' || current_ == '-') {
                add(current_);
                Advance();
            }
            if (!IsDigit(current_))
                error_ = 6;
            add_digits();
        }
        if (!fits)
            error_ = 10;
        token.terminated = token.text.size() < 4096;
        if (error_ != 0)
            return;
        if (dot_seen || is_float)
            ConvertDouble(kind, token);
        else
            ConvertLong(kind, token);
    }

    void ConvertLong(zr_long &kind, Token &token) {
        char *stop = nullptr;
        errno = 0;
        const long long value = std::strtoll(token.text.c_str(), &stop, 10);
        if (*stop != 0) {
            error_ = 5;
            return;
        }
        if (errno == ERANGE || value > INT32_MAX || value < INT32_MIN) {
            ConvertDouble(kind, token);
            if (error_ == 10 || error_ == 11)
                error_ = 9;
            return;
        }
        kind = 7;
        token.long_value = static_cast<zr_long>(value);
    }

    void ConvertDouble(zr_long &kind, Token &token) {
        char *stop = nullptr;
        errno = 0;
        const double value = std::strtod(token.text.c_str(), &stop);
        if (*stop != 0) {
            error_ = 5;
        } else if (std::isinf(value) && errno == ERANGE) {
            error_ = 10;
        } else if (value == 0 && errno == ERANGE) {
            error_ = 11;
        } else {
            kind = 8;
            token.double_value = value;
        }
    }

    // --- literals

    void ReadCharLiteral(Token &token) {
        Advance();
        Put(token, current_);
        token.long_value = current_;
        bool advance = true;
        if (current_ == '\\') {
            Advance();
            if (IsDigit(current_)) {
                token.long_value = 0;
                for (; token.text.size() < 4 && IsDigit(current_); Advance()) {
                    Store(token);
                    token.long_value = 8 * token.long_value + (current_ - '0');
                }
                advance = false;
            } else if (current_ == 'x' || current_ == 'X') {
                Store(token);
                Advance();
                token.long_value = 0;
                for (; token.text.size() < 5 && HexValue(current_) >= 0; Advance()) {
                    Store(token);
                    token.long_value = 16 * token.long_value + HexValue(current_);
                }
                advance = false;
            } else {
                Store(token);
                token.long_value = Escaped(current_);
                if (token.long_value == 32)
                    error_ = 7;
            }
        }
        if (advance)
            Advance();
        if (current_ != '\'')
            error_ = 3;
        else
            Advance();
    }

    static int HexValue(int c) {
        constexpr std::string_view small = "0123456789abcdef";
        constexpr std::string_view capital = "0123456789ABCDEF";
        for (int i = 0; i < 16; ++i) {
            if (c == small[static_cast<std::size_t>(i)] || c == capital[static_cast<std::size_t>(i)])
                return i;
        }
        return -1;
    }

    static zr_long Escaped(int c) {
        static const std::vector<std::pair<int, zr_long>> values = {{'a', 7},  {'b', 8},  {'f', 12}, {'n', 10},
                                                                    {'r', 13}, {'t', 9},  {'v', 11}, {'\'', 39},
                                                                    {'"', 34}, {'\\', 92}};
        for (const auto &[character, value] : values) {
            if (c == character)
                return value;
        }
        return 32;
    }

    void ReadString(Token &token) {
        bool escaped = false;
        Advance();
        while (current_ != 10 && current_ != 0 && !(current_ == '"' && !escaped)) {
            bool fits = true;
            if (Has(SCAN_STRING_ESCAPES) && current_ == '\\') {
                Advance();
                if (current_ == 'n') {
                    current_ = 10;
                    fits = Store(token);
                } else {
                    fits = Store(token, '\\');
                    fits = Store(token) && fits;
                    if (current_ == '\\') {
                        escaped = false;
                        Advance();
                        continue;
                    }
                    if (current_ == '"')
                        continue;
                }
            } else {
                fits = Store(token);
            }
            if (!fits)
                error_ = 2;
            escaped = !escaped && current_ == '\\';
            Advance();
        }
        if (current_ == '"')
            Advance();
        else
            error_ = 4;
        if (error_ == 0 && current_ == '\\' && Has(SCAN_STRING_JOIN)) {
            Advance();
            SkipBlanks();
            ReadString(token);
            return;
        }
        End(token, 2);
    }

    void ReadQuoted(Token &token) {
        bool escaped = false;
        Advance();
        while (current_ != 10 && current_ != 0 && !(current_ == '\'' && !escaped)) {
            if (!Store(token))
                error_ = 2;
            escaped = !escaped && current_ == '\\';
            Advance();
        }
        if (current_ == '\'')
            Advance();
        else
            error_ = 4;
        End(token, 2);
    }

    std::function<int()> source_;
    std::function<zr_long()> user_;
    zr_long options_;
    std::vector<std::string> keywords_;
    std::vector<std::size_t> index_;
    int lookahead_ = 32;
    int current_ = 32;
    int previous_ = 32;
    bool pending_dot_ = false;
    zr_long row_ = 0;
    zr_long column_ = -1;
    int error_ = 0;
};

} // namespace scan_test

#endif
