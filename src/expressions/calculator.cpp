// The calculator: class, plain function, and the record of its last error.
#include <zrclb/calc.hpp>

#include <cstddef>
#include <iterator>
#include <new>
#include <utility>

#include <zrclb/heap.h>
#include <zrclb/str.h>

#include "expressions/calculator_impl.h"

namespace {

constexpr const char *default_message = "Fehler innerhalb des Ausdrucks";

// Texts by type; null for those without one.
constexpr const char *messages[] = {
    nullptr,
    nullptr,
    "Linke Klammer fehlt",
    "Rechte Klammer fehlt",
    "Komma fehlt",
    "Parameter-Fehler",
    "Parameter-Fehler",
    "ELSE-Zweig fehlt",
    nullptr,
    nullptr,
    nullptr,
    "Unbekannte Variable",
    "Unbekannte Funktion",
    nullptr,
    "Negative Wurzel",
    "Wert zu gross",
    "Division durch Null",
    "Negative Wurzel",
};

} // namespace

CZrCalculatorError::CZrCalculatorError(CalculatorErrorType type, zr_long row, zr_long column) noexcept
    : m_type(type), m_row(row), m_column(column) {}

CalculatorErrorType CZrCalculatorError::GetErrorType() const noexcept {
    return m_type;
}

void CZrCalculatorError::SetErrorType(CalculatorErrorType type) noexcept {
    m_type = type;
}

zr_long CZrCalculatorError::GetErrorRow() const noexcept {
    return m_row;
}

void CZrCalculatorError::SetErrorRow(zr_long row) noexcept {
    m_row = row;
}

zr_long CZrCalculatorError::GetErrorColumn() const noexcept {
    return m_column;
}

void CZrCalculatorError::SetErrorColumn(zr_long column) noexcept {
    m_column = column;
}

void CZrCalculatorError::GetMessageString(char *buffer, zr_long size) const noexcept {
    if (buffer == nullptr || size < 1)
        return;
    buffer[0] = 0; // the copy leaves a buffer of one character alone
    const auto type = static_cast<std::size_t>(m_type);
    const char *message = type < std::size(messages) ? messages[type] : nullptr;
    str_ncpy(buffer, message != nullptr ? message : default_message, size - 1);
}

CZrCalculator::CZrCalculator() noexcept : m_impl(nullptr) {
    void *place = heap_malloc(sizeof(CZrCalculatorImpl));
    if (place != nullptr)
        m_impl = new (place) CZrCalculatorImpl;
}

CZrCalculator::CZrCalculator(const CZrCalculator &other) noexcept : m_impl(other.m_impl) {
    if (m_impl != nullptr)
        ++m_impl->owners;
}

CZrCalculator &CZrCalculator::operator=(const CZrCalculator &other) noexcept {
    CZrCalculator copy(other);
    std::swap(m_impl, copy.m_impl);
    return *this;
}

CZrCalculator::~CZrCalculator() {
    if (m_impl == nullptr || --m_impl->owners != 0)
        return;
    m_impl->~CZrCalculatorImpl();
    heap_free(m_impl);
}

bool CZrCalculator::Calculate(const char *text, double *result) noexcept {
    return m_impl != nullptr && m_impl->Calculate(text, result);
}

bool CZrCalculator::CalculateStringExpression(const char *text, char *out, zr_long size) noexcept {
    return m_impl != nullptr && m_impl->CalculateStringExpression(text, out, size);
}

void CZrCalculator::Init(zr_long digits) noexcept {
    calc_init(digits);
}

const CZrCalculatorError &CZrCalculator::GetLastError() const noexcept {
    static const CZrCalculatorError no_implementation(CALCULATOR_SYNTAX);
    return m_impl != nullptr ? m_impl->GetLastError() : no_implementation;
}

extern "C" {

void calc_expression(const char *text, double *result, char *ok) noexcept {
    CZrCalculatorImpl impl;
    const bool done = impl.Calculate(text, result);
    if (ok != nullptr)
        *ok = done ? 1 : 0;
}

void calc_string_expression(const char *text, char *out, zr_long size, char *ok) noexcept {
    CZrCalculatorImpl impl;
    const bool done = impl.CalculateStringExpression(text, out, size);
    if (ok != nullptr)
        *ok = done ? 1 : 0;
}

} // extern "C"
