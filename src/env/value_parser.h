// Reads the text of a value as numbers, strictly: what the grammar does not accept to its end is refused.
//
//   long     =  blanks integer blanks (line end | end)
//   double   =  blanks number blanks (line end | end)
//   longs    =  blanks integer blanks { "," blanks integer blanks } (line end | end)
//   doubles  =  blanks number blanks { "," blanks number blanks } (line end | end)
//   blanks   =  { " " | tab }
//   line end =  line feed | carriage return            what stands behind it is not looked at
//   integer  =  [ "+" | "-" ] digit { digit }
//   number   =  [ "+" | "-" ] ( digit { digit } [ "." { digit } ] | "." digit { digit } ) [ letter exponent ]
//   letter   =  "E" | "e" | "D" | "d"
//   exponent =  [ [ "+" | "-" ] digit { digit } ]      a sign without digits is not part of it
//
// A number is taken as far as it goes and is then in the sink, whether or not the text behind it matches. The text is
// only read. Nothing allocates. One parser belongs to one thread; a text may be read by several at once.
#ifndef ZR_ENV_VALUE_PARSER_H
#define ZR_ENV_VALUE_PARSER_H

#include "env/value_sink.h"

namespace Zr {

class CZrEnvValueParser {
public:
    using Rule = void (CZrEnvValueParser::*)();

    enum Status : int {
        Matched = 0,
        NoMatch = 1
    };

    // Over a zero-terminated text (null counts as empty) and a sink, both borrowed for the parser's life.
    CZrEnvValueParser(const char *text, CZrEnvValueSink &sink)
        : m_szCursor(text != nullptr ? text : ""), m_rSink(sink) {}

    // Applies a rule at the cursor: 0 if it matched, else -1. A match leaves the cursor behind what was matched, a failure
    // leaves it where it was.
    int Run(Rule rule) {
        (this->*rule)();
        return m_eStatus == Matched ? 0 : -1;
    }

    // The rules. Numbers that do not fit the sink are checked for form and dropped; the sink then tells of the overflow.
    void ParseLong();
    void ParseDouble();
    void ParseLongs();
    void ParseDoubles();

    Status GetStatus() const { return m_eStatus; }

    // What the last failed rule missed, or null after a match.
    const char *GetMessage() const { return m_szMessage; }

private:
    const char *LongItem(const char *text);
    const char *DoubleItem(const char *text);
    template <class Item>
    const char *List(Item item);
    void Finish(const char *text, const char *szMissedEnd);

    const char *m_szCursor;
    CZrEnvValueSink &m_rSink;
    Status m_eStatus = Matched;
    const char *m_szMessage = nullptr;
};

} // namespace Zr

#endif
