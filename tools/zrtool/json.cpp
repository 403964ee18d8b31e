// A strict reader of JSON events, and the writing of strings.
//
//   value  = object | array | string | number | "true" | "false" | "null"
//   object = "{" [ string ":" value { "," string ":" value } ] "}"
//   array  = "[" [ value { "," value } ] "]"
#include "json.h"

#include <array>

#include "code_page.h"

namespace zrtool {

Place PlaceAt(std::string_view text, std::size_t offset) {
    Place place;
    const std::string_view before = text.substr(0, offset);
    for (const char c : before)
        place.line += c == '\n' ? 1 : 0;
    const std::size_t feed = before.rfind('\n');
    place.column = feed == std::string_view::npos ? before.size() + 1 : before.size() - feed;
    return place;
}

JsonEvent JsonReader::Next() {
    for (;;) {
        SkipBlanks();
        m_start = m_at;
        const char c = Peek();
        switch (m_want) {
        case Want::Nothing:
            if (m_at < m_text.size())
                Unexpected("the end");
            return JsonEvent::End;
        case Want::FirstItem:
            if (c == ']')
                return Close('[');
            return Value();
        case Want::Value:
            return Value();
        case Want::FirstKey:
            if (c == '}')
                return Close('{');
            return Key();
        case Want::Key:
            return Key();
        case Want::Colon:
            if (c != ':')
                Unexpected("':'");
            ++m_at;
            m_want = Want::Value;
            break;
        case Want::CommaOrEnd:
            if (c == '}' || c == ']')
                return Close(c == '}' ? '{' : '[');
            if (c != ',')
                Unexpected(m_open.back() == '{' ? "',' or '}'" : "',' or ']'");
            ++m_at;
            m_want = m_open.back() == '{' ? Want::Key : Want::Value;
            break;
        }
    }
}

JsonEvent JsonReader::Value() {
    switch (Peek()) {
    case '{':
    case '[':
        return Open(Peek());
    case '"':
        String();
        AfterValue();
        return JsonEvent::String;
    case 't':
        return Word("true", JsonEvent::True);
    case 'f':
        return Word("false", JsonEvent::False);
    case 'n':
        return Word("null", JsonEvent::Null);
    default:
        return Number();
    }
}

JsonEvent JsonReader::Open(char bracket) {
    ++m_at;
    m_open.push_back(bracket);
    m_want = bracket == '{' ? Want::FirstKey : Want::FirstItem;
    return bracket == '{' ? JsonEvent::BeginObject : JsonEvent::BeginArray;
}

JsonEvent JsonReader::Close(char bracket) {
    if (m_open.back() != bracket)
        Unexpected(m_open.back() == '{' ? "',' or '}'" : "',' or ']'");
    ++m_at;
    m_open.pop_back();
    AfterValue();
    return bracket == '{' ? JsonEvent::EndObject : JsonEvent::EndArray;
}

JsonEvent JsonReader::Key() {
    if (Peek() != '"')
        Unexpected("a name in quotes");
    String();
    m_want = Want::Colon;
    return JsonEvent::Key;
}

JsonEvent JsonReader::Word(std::string_view word, JsonEvent event) {
    if (m_text.substr(m_at, word.size()) != word)
        Unexpected("a value");
    m_at += word.size();
    AfterValue();
    return event;
}

bool JsonReader::Digits() {
    const std::size_t from = m_at;
    while (Peek() >= '0' && Peek() <= '9')
        ++m_at;
    return m_at > from;
}

JsonEvent JsonReader::Number() {
    const std::size_t from = m_at;
    if (Peek() == '-')
        ++m_at;
    const bool zero = Peek() == '0';
    const std::size_t whole = m_at;
    bool sound = Digits() && !(zero && m_at - whole > 1);
    if (sound && Peek() == '.') {
        ++m_at;
        sound = Digits();
    }
    if (sound && (Peek() == 'e' || Peek() == 'E')) {
        ++m_at;
        if (Peek() == '+' || Peek() == '-')
            ++m_at;
        sound = Digits();
    }
    if (!sound) {
        if (m_at == from)
            Unexpected("a value");
        throw JsonFault(from, "malformed number");
    }
    m_value = m_text.substr(from, m_at - from);
    AfterValue();
    return JsonEvent::Number;
}

void JsonReader::String() {
    m_value.clear();
    ++m_at;
    for (;;) {
        if (m_at >= m_text.size())
            throw JsonFault(m_start, "string without end");
        const char c = m_text[m_at];
        if (c == '"') {
            ++m_at;
            return;
        }
        if (static_cast<unsigned char>(c) < 0x20)
            throw JsonFault(m_at, "control character in a string");
        if (c == '\\') {
            Escape();
            continue;
        }
        const std::size_t offset = m_at;
        const char32_t point = DecodeUtf8(m_text, m_at);
        if (point == NoPoint)
            throw JsonFault(offset, "not UTF-8");
        Append(point, offset);
    }
}

void JsonReader::Escape() {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    const std::size_t offset = m_at++;
    const char c = Peek();
    if (m_at >= m_text.size())
        throw JsonFault(m_start, "string without end");
    ++m_at;
    if (c != 'u') {
        const std::size_t which = letters.find(c);
        if (which == std::string_view::npos)
            throw JsonFault(offset, "unknown escape");
        m_value += meanings[which];
        return;
    }
    char32_t point = Hex4();
    if (point == NoPoint)
        throw JsonFault(offset, "malformed \\u escape");
    if (point >= 0xD800 && point <= 0xDFFF) {
        const bool pair = point < 0xDC00 && m_text.substr(m_at, 2) == "\\u";
        m_at += pair ? 2u : 0u;
        const char32_t low = pair ? Hex4() : NoPoint;
        if (low == NoPoint || low < 0xDC00 || low > 0xDFFF)
            throw JsonFault(offset, "half of a surrogate pair");
        point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
    }
    Append(point, offset);
}

char32_t JsonReader::Hex4() {
    char32_t point = 0;
    for (int i = 0; i < 4; ++i, ++m_at) {
        const char c = Peek();
        const char lower = static_cast<char>(c | 0x20);
        if (c >= '0' && c <= '9')
            point = point * 16 + static_cast<char32_t>(c - '0');
        else if (lower >= 'a' && lower <= 'f')
            point = point * 16 + static_cast<char32_t>(lower - 'a' + 10);
        else
            return NoPoint;
    }
    return point;
}

void JsonReader::Append(char32_t point, std::size_t offset) {
    unsigned char byte = 0;
    if (point == 0)
        throw JsonFault(offset, "a text cannot hold the character zero");
    if (!ByteOfPoint(point, byte))
        throw JsonFault(offset, "a character that code page 1252 lacks");
    m_value += static_cast<char>(byte);
}

void JsonReader::SkipBlanks() {
    while (m_at < m_text.size() && std::string_view(" \t\r\n").find(m_text[m_at]) != std::string_view::npos)
        ++m_at;
}

void JsonReader::Unexpected(const char *wanted) const {
    const char *what = m_at < m_text.size() ? "unexpected character" : "text ends too early";
    throw JsonFault(m_at, std::string(what) + ", expected " + wanted);
}

void AppendJsonString(std::string &out, std::string_view text) {
    constexpr std::array<char, 16> digits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                             '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
    constexpr std::string_view special = "\"\\\b\f\n\r\t";
    constexpr std::string_view letters = "\"\\bfnrt";
    out += '"';
    for (const char c : text) {
        const std::size_t which = special.find(c);
        const char32_t point = PointOfByte(static_cast<unsigned char>(c));
        if (which != std::string_view::npos) {
            out += '\\';
            out += letters[which];
        } else if (point >= 0x20 && point < 0x7F) {
            out += c;
        } else {
            out += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                out += digits[(point >> shift) & 15];
        }
    }
    out += '"';
}

} // namespace zrtool
