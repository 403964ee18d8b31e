// JSON, as far as the tool needs it: a strict reader that gives one event at a time, and the writing of strings.
//
// The reader keeps the open brackets on a stack of its own and never calls itself, so nesting may go as deep as memory
// does. Texts come out as bytes in code page 1252; what that page cannot hold is a fault.
#ifndef ZRTOOL_JSON_H
#define ZRTOOL_JSON_H

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zrtool {

// A place in a text, counted from 1; columns count bytes.
struct Place {
    std::size_t line = 1;
    std::size_t column = 1;
};

// The place of the byte text[offset], or of the end.
Place PlaceAt(std::string_view text, std::size_t offset);

// What is wrong with a JSON text, and where the faulty item starts.
class JsonFault : public std::runtime_error {
public:
    JsonFault(std::size_t faultOffset, const std::string &text) : std::runtime_error(text), offset(faultOffset) {}

    std::size_t offset;
};

enum class JsonEvent {
    BeginObject,
    EndObject,
    BeginArray,
    EndArray,
    Key,
    String,
    Number,
    True,
    False,
    Null,
    End
};

class JsonReader {
public:
    // The text is borrowed.
    explicit JsonReader(std::string_view text) : m_text(text) {}

    // The next event; End once the text is over, and from then on. JsonFault on any departure from RFC 8259: trailing
    // commas, comments, text behind the value, a byte order mark, raw control characters, broken escapes or UTF-8.
    JsonEvent Next();

    // Text of the last key or string (code page 1252), or the last number as written.
    const std::string &Text() const { return m_value; }
    // Where the last event's item starts.
    std::size_t Offset() const { return m_start; }

private:
    enum class Want {
        Value,
        FirstItem,
        FirstKey,
        Key,
        Colon,
        CommaOrEnd,
        Nothing
    };

    JsonEvent Value();
    JsonEvent Open(char bracket);
    JsonEvent Close(char bracket);
    JsonEvent Word(std::string_view word, JsonEvent event);
    JsonEvent Number();
    JsonEvent Key();
    void String();
    void Escape();
    char32_t Hex4();
    void Append(char32_t point, std::size_t offset);
    void SkipBlanks();
    bool Digits();
    char Peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }
    void AfterValue() { m_want = m_open.empty() ? Want::Nothing : Want::CommaOrEnd; }
    [[noreturn]] void Unexpected(const char *wanted) const;

    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_start = 0;
    std::string m_value;
    std::vector<char> m_open; // '{' and '['
    Want m_want = Want::Value;
};

// Appends a text in code page 1252 as a JSON string: quoted, pure ASCII, control characters and letters outside ASCII
// as \u escapes.
void AppendJsonString(std::string &out, std::string_view text);

} // namespace zrtool

#endif
