// Any bytes as a binary value, and any text read as one: against a plain coder with the table of pairs, and round.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/value_binary.h"

namespace {

using fuzz::Require;
using Zr::CZrEnvDataElement;
using Zr::EZrEnvError;

constexpr char Separator = '\xD0';

// Payload bytes and their letters. The first pair is known from version 2 on.
const std::vector<std::pair<char, char>> Pairs = {
    {'\x1A', 'A'}, {'\0', '0'}, {'\n', 'n'}, {'\r', 'r'}, {' ', 'p'}, {',', 'm'}, {';', 's'},    {'=', 'e'},
    {'[', 'O'},    {'\\', 'b'}, {']', 'C'},  {'_', '_'},  {'{', 'o'}, {'}', 'c'}, {'\xFF', 'F'},
};

std::string Encoded(const std::string &bytes) {
    std::string text = {'2', Separator};
    for (const char byte : bytes) {
        const auto pair =
            std::find_if(Pairs.begin(), Pairs.end(), [byte](const auto &known) { return known.first == byte; });
        text += pair != Pairs.end() ? std::string{'_', pair->second} : std::string(1, byte);
    }
    return text;
}

// The decoder, byte by byte, into a buffer of which all bytes are compared.
class Decoder {
public:
    Decoder(const std::string &text, std::string &target, zr_long capacity)
        : m_text(text), m_target(target), m_capacity(capacity) {}

    EZrEnvError Run(zr_long &size) {
        const long long version = TakeVersion();
        if (At(m_at) != Separator)
            return m_capacity < 1 ? SmallBuffer() : Plain(size);
        if (version != 1 && version != 2) {
            Tell("Incorrect version of ENV_BIN");
            return Zr::ENV_ERROR;
        }
        if (m_capacity < 1)
            return SmallBuffer();
        m_pairs = Pairs;
        if (version == 1)
            m_pairs.erase(m_pairs.begin());
        return Body(size);
    }

    fuzz::Reports reports;

private:
    char At(std::size_t at) const { return at < m_text.size() ? m_text[at] : '\0'; }
    void Tell(const char *text) { reports.push_back(std::string("message ZrEnvDataConvert|") + text); }
    EZrEnvError SmallBuffer() {
        Tell("Small buffer");
        return Zr::ENV_TOO_SMALL;
    }

    // White space, a sign, digits; nothing is taken where there is no digit. Large numbers stay large.
    long long TakeVersion() {
        std::size_t at = 0;
        while (At(at) != '\0' && std::strchr(" \t\n\v\f\r", At(at)) != nullptr)
            ++at;
        const bool negative = At(at) == '-';
        at += At(at) == '-' || At(at) == '+' ? 1 : 0;
        long long value = 0;
        for (; At(at) >= '0' && At(at) <= '9'; m_at = ++at)
            value = std::min<long long>(value * 10 + (At(at) - '0'), std::numeric_limits<std::int32_t>::max());
        return negative ? -value : value;
    }

    // A text of another kind stands for its own bytes, with its terminator where there is room.
    EZrEnvError Plain(zr_long &size) {
        const std::size_t capacity = static_cast<std::size_t>(m_capacity);
        for (std::size_t i = 0; i <= m_text.size() && i < capacity; ++i)
            m_target[i] = At(i);
        if (m_text.size() > capacity)
            return SmallBuffer();
        size = static_cast<zr_long>(m_text.size());
        return Zr::ENV_OK;
    }

    EZrEnvError Body(zr_long &size) {
        zr_long count = 0;
        for (++m_at; m_at < m_text.size(); ++m_at) {
            if (At(m_at) != '_')
                m_target[static_cast<std::size_t>(count)] = At(m_at);
            else
                TakePair(m_target[static_cast<std::size_t>(count)]);
            if (++count == m_capacity)
                return SmallBuffer();
        }
        size = count;
        return Zr::ENV_OK;
    }

    void TakePair(char &out) {
        const char letter = At(++m_at);
        const auto pair = std::find_if(m_pairs.begin(), m_pairs.end(),
                                       [letter](const auto &known) { return known.second == letter; });
        if (pair != m_pairs.end() && letter != '\0')
            out = pair->first;
        else
            Tell("Unknown '_'-symbol");
    }

    const std::string &m_text;
    std::string &m_target;
    zr_long m_capacity;
    std::vector<std::pair<char, char>> m_pairs;
    std::size_t m_at = 0;
};

void CheckDecode(CZrEnvDataElement &leaf, const std::string &text, zr_long capacity) {
    std::string target(static_cast<std::size_t>(std::max<zr_long>(capacity, 0)) + 1, '#');
    std::string expected = target;
    zr_long size = capacity;
    zr_long expectedSize = capacity;
    Decoder decoder(text, expected, capacity);
    const EZrEnvError expectedResult = decoder.Run(expectedSize);
    Require(leaf.GetBinary(&size, target.data()) == expectedResult, "result of decoding");
    Require(fuzz::TakeReports() == decoder.reports, "reports of decoding");
    Require(size == expectedSize, "size of what is decoded");
    Require(target == expected, "decoded bytes");
}

void CheckEncode(CZrEnvDataElement &leaf, const std::string &bytes) {
    const std::string text = Encoded(bytes);
    Require(leaf.SetBinary(static_cast<zr_ulong>(bytes.size()), bytes.data()) == Zr::ENV_OK, "encoding");
    Require(leaf.GetString() == text, "encoded text");
    Require(text.find_first_of("\n\r\x1A ,;=[\\]{}\xFF") == std::string::npos, "bytes that a text must not hold");
    std::string target(2 * bytes.size() + 11, '#');
    Require(zr::env::EncodeBinary(bytes.data(), target.data(), static_cast<zr_long>(bytes.size())) == 0, "coder");
    Require(target.c_str() == text, "text of the coder");
    Require(zr::env::EncodedLength(bytes.data(), static_cast<zr_long>(bytes.size())) == text.size(), "its length");

    std::string back(bytes.size() + 1, '#');
    auto size = static_cast<zr_long>(back.size());
    Require(leaf.GetBinary(&size, back.data()) == Zr::ENV_OK, "decoding what was encoded");
    Require(size == static_cast<zr_long>(bytes.size()) && back == bytes + "#", "round");
    CheckDecode(leaf, text, static_cast<zr_long>(bytes.size()));
}

} // namespace

// A byte of capacity, then the bytes: as they are, and up to the first zero byte as a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::TakeReports();
    const std::string bytes(reinterpret_cast<const char *>(data) + (size > 0 ? 1 : 0), size > 0 ? size - 1 : 0);
    const std::string text = bytes.c_str();
    const int choice = size > 0 ? data[0] : 0;
    Zr::CZrEnvBlock block("block");
    auto *leaf = new CZrEnvDataElement("leaf", text.c_str());
    block.InsertElement(leaf);
    const auto length = static_cast<zr_long>(text.size());
    CheckDecode(*leaf, text, choice < 32 ? choice - 1 : length + 16 - choice % 32);
    CheckDecode(*leaf, text, length + 1);
    CheckEncode(*leaf, bytes);
    CheckEncode(*leaf, text); // mostly shorter than the one before
    return 0;
}
