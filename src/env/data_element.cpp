// The leaf of the tree: one value, kept as text.
//
// Where a value's text lives: in an array of the element's own (flag OwnsData), or in memory that the element was made
// with. Either may be overwritten by a text that is not longer than the present one, except that a copy (flag View) first
// gets an array of its own, so that writing to it leaves its source alone.
#include <zrclb/env.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <limits>
#include <new>
#include <string>

#include <zrclb/report.h>

#include "env/node_store.h"
#include "env/number_text.h"
#include "env/value_binary.h"
#include "env/value_parser.h"
#include "env/value_sink.h"

namespace Zr {

using zr::env::F6TextSize;
using zr::env::FormatF6;
using zr::env::FormatG13;
using zr::env::FormatLong;
using zr::env::G13TextSize;
using zr::env::LongTextSize;

namespace {

constexpr const char *SourceTag = "ZrEnvDataElement";
constexpr char ListSeparator = ',';

EZrEnvError MessageOutOfMemory(int line) {
    zr_message("Out of memory", nullptr, nullptr, SourceTag, line);
    return ENV_ERROR;
}

// Whether a text has at least this many bytes; looks no further.
bool IsAtLeast(const char *text, std::size_t length) {
    return std::memchr(text, '\0', length) == nullptr;
}

zr_long CutToLong(std::size_t value) {
    constexpr std::size_t limit = std::numeric_limits<std::int32_t>::max();
    return static_cast<zr_long>(std::min(value, limit));
}

template <class Value>
std::size_t RangeOf(zr_long lCount) {
    return lCount > 0 ? static_cast<std::size_t>(lCount) * sizeof(Value) : 0;
}

// One end of the list item that starts at text: its separator, or the end of the list.
const char *EndOfItem(const char *text, const char *end) {
    const void *found = std::memchr(text, ListSeparator, static_cast<std::size_t>(end - text));
    return found != nullptr ? static_cast<const char *>(found) : end;
}

// The texts of all values with separators between them.
template <class Value, class Format>
std::string ListText(zr_long lCount, const Value *pValues, Format format) {
    std::string text;
    char piece[G13TextSize];
    for (zr_long i = 0; i < lCount; ++i) {
        if (i > 0)
            text += ListSeparator;
        text.append(piece, format(piece, pValues[i]));
    }
    return text;
}

EZrEnvError Outcome(int iParsed, const CZrEnvValueSink &sink) {
    if (iParsed != 0)
        return ENV_BAD_FORMAT;
    return sink.Overflowed() ? ENV_TOO_SMALL : ENV_OK;
}

} // namespace

// Life

CZrEnvDataElement::CZrEnvDataElement(const char *szName, const char *szValue) : CZrEnvElement(szName) {
    m_uFlags |= CZrEnvNodeStore::KindData;
    if (szValue != nullptr)
        SetString(szValue);
}

CZrEnvDataElement::CZrEnvDataElement(const char *szName, zr_long lValue) : CZrEnvElement(szName) {
    m_uFlags |= CZrEnvNodeStore::KindData;
    SetLong(lValue);
}

CZrEnvDataElement::CZrEnvDataElement(const char *szName, double dValue) : CZrEnvElement(szName) {
    m_uFlags |= CZrEnvNodeStore::KindData;
    SetDouble(dValue);
}

CZrEnvDataElement::CZrEnvDataElement(const char *szName, float fValue) : CZrEnvElement(szName) {
    m_uFlags |= CZrEnvNodeStore::KindData;
    SetFloat(fValue);
}

CZrEnvDataElement::CZrEnvDataElement(const CZrEnvDataElement &other) : CZrEnvElement(other), m_szData(other.m_szData) {
    m_uFlags = CZrEnvNodeStore::KindData | CZrEnvNodeStore::View;
}

CZrEnvDataElement &CZrEnvDataElement::operator=(const CZrEnvDataElement &other) {
    if (this == &other)
        return *this;
    PutData(nullptr);
    CZrEnvElement::operator=(other);
    m_szData = other.m_szData;
    m_uFlags =
        (m_uFlags & ~std::uint32_t{CZrEnvNodeStore::OwnsData}) | CZrEnvNodeStore::KindData | CZrEnvNodeStore::View;
    return *this;
}

CZrEnvDataElement::~CZrEnvDataElement() {
    PutData(nullptr);
}

CZrEnvDataElement *CZrEnvDataElement::ToEnvDataElement() {
    return this;
}

const CZrEnvDataElement *CZrEnvDataElement::ToEnvDataElement() const {
    return this;
}

// The stored text

bool CZrEnvDataElement::IsWritable() const {
    return m_szData != nullptr &&
           (m_uFlags & (CZrEnvNodeStore::OwnsData | CZrEnvNodeStore::View)) != CZrEnvNodeStore::View;
}

void CZrEnvDataElement::PutData(char *szData) {
    if ((m_uFlags & CZrEnvNodeStore::OwnsData) != 0)
        delete[] m_szData;
    m_szData = szData;
    m_uFlags &= ~std::uint32_t{CZrEnvNodeStore::OwnsData};
    if (szData != nullptr) {
        CZrEnvNodeStore::ScatterAround(*this);
        m_uFlags |= CZrEnvNodeStore::OwnsData;
    }
}

EZrEnvError CZrEnvDataElement::StoreText(std::string_view text) {
    if (IsWritable() && IsAtLeast(m_szData, text.size())) {
        std::memmove(m_szData, text.data(), text.size());
        m_szData[text.size()] = '\0';
        return ENV_OK;
    }
    char *szNew = new (std::nothrow) char[text.size() + 1];
    if (szNew == nullptr)
        return MessageOutOfMemory(__LINE__);
    std::memcpy(szNew, text.data(), text.size());
    szNew[text.size()] = '\0';
    PutData(szNew);
    return ENV_OK;
}

// Setters

EZrEnvError CZrEnvDataElement::SetLong(zr_long lValue) {
    char text[LongTextSize];
    return StoreText({text, FormatLong(text, lValue)});
}

EZrEnvError CZrEnvDataElement::SetDouble(double dValue) {
    char text[G13TextSize];
    return StoreText({text, FormatG13(text, dValue)});
}

EZrEnvError CZrEnvDataElement::SetFloat(float fValue) {
    char text[F6TextSize];
    return StoreText({text, FormatF6(text, static_cast<double>(fValue))});
}

EZrEnvError CZrEnvDataElement::SetString(const char *szValue) {
    if (szValue == nullptr)
        return ENV_ERROR;
    const EZrEnvError eResult = StoreText(szValue);
    if (eResult != ENV_OK)
        PutData(nullptr); // told: the old text is gone when there is no memory for a longer one
    return eResult;
}

EZrEnvError CZrEnvDataElement::SetBinary(zr_ulong ulLength, const char *pData) {
    constexpr zr_ulong limit = 0x7FFFFFFF;
    const zr_long lLength = ulLength <= limit ? static_cast<zr_long>(ulLength) : 0;
    if (lLength > 0 && pData == nullptr)
        return ENV_ERROR;
    // On 32 bits the text of a long value may not even have a size.
    const std::size_t length = zr::env::EncodedLength(pData, lLength);
    char *szNew = length >= static_cast<std::size_t>(lLength) ? new (std::nothrow) char[length + 1] : nullptr;
    if (szNew == nullptr)
        return MessageOutOfMemory(__LINE__);
    zr::env::EncodeBinary(pData, szNew, lLength);
    PutData(szNew);
    return ENV_OK;
}

EZrEnvError CZrEnvDataElement::SetLongs(zr_long lCount, const zr_long *plValues) {
    if (lCount < 1 || plValues == nullptr)
        return ENV_ERROR;
    try {
        return SetString(ListText(lCount, plValues, FormatLong).c_str());
    } catch (const std::exception &) {
        return MessageOutOfMemory(__LINE__);
    }
}

EZrEnvError CZrEnvDataElement::SetDoubles(zr_long lCount, const double *pdValues) {
    if (lCount < 1 || pdValues == nullptr)
        return ENV_ERROR;
    try {
        return SetString(ListText(lCount, pdValues, FormatG13).c_str());
    } catch (const std::exception &) {
        return MessageOutOfMemory(__LINE__);
    }
}

EZrEnvError CZrEnvDataElement::SetStrings(zr_long lCount, const char **pszValues) {
    if (lCount < 1 || pszValues == nullptr)
        return ENV_ERROR;
    const std::size_t present = m_szData != nullptr ? std::strlen(m_szData) + 1 : 0;
    std::size_t needed = 1;
    bool overlaps = false;
    for (zr_long i = 0; i < lCount; ++i) {
        const char *szValue = pszValues[i];
        if (szValue == nullptr)
            return ENV_ERROR;
        needed += std::strlen(szValue) + 1;
        overlaps = overlaps || (!std::less<>{}(szValue, static_cast<const char *>(m_szData)) &&
                                std::less<>{}(szValue, static_cast<const char *>(m_szData) + present));
    }
    const bool reuse = IsWritable() && present >= needed && !overlaps;
    char *szTarget = reuse ? m_szData : new (std::nothrow) char[needed];
    if (szTarget == nullptr) {
        zr_error("Out of memory", nullptr, nullptr, SourceTag, __LINE__);
        PutData(nullptr); // told: the old text is gone by then
        return ENV_ERROR;
    }
    char *out = szTarget;
    for (zr_long i = 0; i < lCount; ++i) {
        const std::size_t length = std::strlen(pszValues[i]);
        std::memcpy(out, pszValues[i], length);
        out += length;
        *out++ = ListSeparator;
    }
    out[-1] = '\0';
    if (!reuse)
        PutData(szTarget);
    return ENV_OK;
}

// Getters of one value

EZrEnvError CZrEnvDataElement::GetLong(zr_long &rlValue) const {
    if (m_szData == nullptr)
        return ENV_ERROR;
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(&rlValue, sizeof rlValue);
    return Outcome(CZrEnvValueParser(m_szData, sink).Run(&CZrEnvValueParser::ParseLong), sink);
}

zr_long CZrEnvDataElement::GetLong() const {
    zr_long lValue = 0;
    GetLong(lValue);
    return lValue;
}

EZrEnvError CZrEnvDataElement::GetDouble(double &rdValue) const {
    if (m_szData == nullptr)
        return ENV_ERROR;
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(&rdValue, sizeof rdValue);
    return Outcome(CZrEnvValueParser(m_szData, sink).Run(&CZrEnvValueParser::ParseDouble), sink);
}

double CZrEnvDataElement::GetDouble() const {
    double dValue = 0.0;
    GetDouble(dValue);
    return dValue;
}

EZrEnvError CZrEnvDataElement::GetFloat(float &rfValue) const {
    double dValue = 0.0;
    const EZrEnvError eResult = GetDouble(dValue);
    if (eResult == ENV_OK)
        rfValue = static_cast<float>(dValue);
    return eResult;
}

float CZrEnvDataElement::GetFloat() const {
    float fValue = 0.0F;
    GetFloat(fValue);
    return fValue;
}

EZrEnvError CZrEnvDataElement::GetString(zr_ulong ulSize, char *szBuffer) const {
    if (m_szData == nullptr || szBuffer == nullptr)
        return ENV_ERROR;
    const std::size_t length = std::strlen(m_szData);
    if (length >= ulSize)
        return ENV_TOO_SMALL;
    std::memmove(szBuffer, m_szData, length + 1);
    return ENV_OK;
}

EZrEnvError CZrEnvDataElement::GetBinary(zr_long *plLength, char *pBuffer) {
    if (m_szData == nullptr)
        return ENV_ERROR;
    return zr::env::DecodeBinary(m_szData, pBuffer, plLength);
}

zr_ulong CZrEnvDataElement::GetDataLength() const {
    if (m_szData == nullptr)
        return 0;
    constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max();
    return static_cast<zr_ulong>(std::min(std::strlen(m_szData), limit));
}

// Getters of lists

EZrEnvError CZrEnvDataElement::GetLongs(zr_long &rlCount, zr_long *plValues) {
    const std::size_t size = RangeOf<zr_long>(rlCount);
    rlCount = 0;
    if (m_szData == nullptr || plValues == nullptr)
        return ENV_ERROR;
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(plValues, size);
    const EZrEnvError eResult = Outcome(CZrEnvValueParser(m_szData, sink).Run(&CZrEnvValueParser::ParseLongs), sink);
    if (eResult == ENV_OK)
        rlCount = CutToLong(sink.BytesWritten() / sizeof *plValues);
    return eResult;
}

EZrEnvError CZrEnvDataElement::GetDoubles(zr_long &rlCount, double *pdValues) {
    const std::size_t size = RangeOf<double>(rlCount);
    rlCount = 0;
    if (m_szData == nullptr || pdValues == nullptr)
        return ENV_ERROR;
    CZrEnvValueSink sink = CZrEnvValueSink::ForWriting(pdValues, size);
    const EZrEnvError eResult = Outcome(CZrEnvValueParser(m_szData, sink).Run(&CZrEnvValueParser::ParseDoubles), sink);
    if (eResult == ENV_OK)
        rlCount = CutToLong(sink.BytesWritten() / sizeof *pdValues);
    return eResult;
}

EZrEnvError CZrEnvDataElement::GetStrings(zr_long &rlCount, zr_long lSize, char **pszValues) {
    if (m_szData == nullptr) {
        rlCount = 0;
        return ENV_ERROR;
    }
    if (pszValues == nullptr || rlCount < 1 || lSize < 1)
        return ENV_ERROR;
    const std::size_t room = static_cast<std::size_t>(lSize) - 1;
    const char *end = m_szData + std::strlen(m_szData);
    const char *item = m_szData;
    for (zr_long i = 0; i < rlCount; ++i) {
        if (pszValues[i] == nullptr)
            return ENV_ERROR;
        const char *itemEnd = EndOfItem(item, end);
        const std::size_t length = static_cast<std::size_t>(itemEnd - item);
        std::memcpy(pszValues[i], item, std::min(length, room));
        if (length > room)
            return ENV_TOO_SMALL;
        pszValues[i][length] = '\0';
        if (itemEnd == end) {
            rlCount = i + 1;
            return ENV_OK;
        }
        item = itemEnd + 1;
    }
    return ENV_TOO_SMALL;
}

EZrEnvError CZrEnvDataElement::GetArraySize(zr_long &rlCount, zr_long &rlMaxLength) const {
    rlCount = 0;
    rlMaxLength = 0;
    if (m_szData == nullptr)
        return ENV_ERROR;
    const char *end = m_szData + std::strlen(m_szData);
    std::size_t count = 0;
    std::size_t longest = 0;
    for (const char *item = m_szData;;) {
        const char *itemEnd = EndOfItem(item, end);
        ++count;
        longest = std::max(longest, static_cast<std::size_t>(itemEnd - item));
        if (itemEnd == end)
            break;
        item = itemEnd + 1;
    }
    rlCount = CutToLong(count);
    rlMaxLength = CutToLong(longest);
    return ENV_OK;
}

} // namespace Zr
