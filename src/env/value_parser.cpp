// The value grammar in one pass: the alternatives of a number differ only in what follows its digits, so none of them
// has to be tried twice.
#include "env/value_parser.h"

#include "env/number_text.h"

namespace Zr {

namespace {

const char *SkipBlanks(const char *text) {
    while (*text == ' ' || *text == '\t')
        ++text;
    return text;
}

constexpr const char *MissedDigit = "bad_digit";
constexpr const char *MissedSymbol = "unexpected symbol";
constexpr const char *MissedEnd = "EOF expected";

} // namespace

// Blanks, one number, blanks. Null where there is no number.
const char *CZrEnvValueParser::LongItem(const char *text) {
    zr_long value = 0;
    const char *end = zr::env::ScanLong(SkipBlanks(text), value);
    if (end == nullptr)
        return nullptr;
    m_rSink.StoreLong(value);
    return SkipBlanks(end);
}

const char *CZrEnvValueParser::DoubleItem(const char *text) {
    zr::env::DecimalNumber number;
    const char *end = zr::env::ScanDecimal(SkipBlanks(text), number);
    if (end == nullptr)
        return nullptr;
    if (m_rSink.HasRoom(sizeof(double)))
        m_rSink.StoreDouble(zr::env::ToDouble(number));
    else
        m_rSink.SetOverflow();
    return SkipBlanks(end);
}

// Items with commas between them. A comma that no item follows is left to the caller, who expects the end there.
template <class Item>
const char *CZrEnvValueParser::List(Item item) {
    const char *text = (this->*item)(m_szCursor);
    while (text != nullptr && *text == ',') {
        const char *next = (this->*item)(text + 1);
        if (next == nullptr)
            break;
        text = next;
    }
    return text;
}

// Expects the end of the text or of its first line. Null stands for a missing number.
void CZrEnvValueParser::Finish(const char *text, const char *szMissedEnd) {
    if (text != nullptr && (*text == '\0' || *text == '\n' || *text == '\r')) {
        m_szCursor = *text == '\0' ? text : text + 1;
        m_eStatus = Matched;
        m_szMessage = nullptr;
        return;
    }
    m_eStatus = NoMatch;
    m_szMessage = text == nullptr ? MissedDigit : szMissedEnd;
}

void CZrEnvValueParser::ParseLong() {
    Finish(LongItem(m_szCursor), MissedEnd);
}

void CZrEnvValueParser::ParseDouble() {
    Finish(DoubleItem(m_szCursor), MissedSymbol);
}

void CZrEnvValueParser::ParseLongs() {
    Finish(List(&CZrEnvValueParser::LongItem), MissedSymbol);
}

void CZrEnvValueParser::ParseDoubles() {
    Finish(List(&CZrEnvValueParser::DoubleItem), MissedSymbol);
}

} // namespace Zr
