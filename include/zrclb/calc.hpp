// The calculator as a class, with the place and kind of its last error. C++20.
#ifndef ZRCLB_CALC_HPP
#define ZRCLB_CALC_HPP

#include <zrclb/calc.h>

class CZrCalculatorImpl;

// What went wrong, and where: row and column, from 0, of the token at which reading stopped. A plain value; an object belongs to one
// thread at a time.
class ZR_API CZrCalculatorError {
public:
    CZrCalculatorError(CalculatorErrorType type = CALCULATOR_OK, zr_long row = 0, zr_long column = 0) noexcept;

    CalculatorErrorType GetErrorType() const noexcept;
    void SetErrorType(CalculatorErrorType type) noexcept;
    zr_long GetErrorRow() const noexcept;
    void SetErrorRow(zr_long row) noexcept;
    zr_long GetErrorColumn() const noexcept;
    void SetErrorColumn(zr_long column) noexcept;

    // The error's text in German, at most size - 1 characters of it; "Fehler innerhalb des Ausdrucks" for a type without a
    // text of its own. A null buffer or a size below 1 does nothing.
    void GetMessageString(char *buffer, zr_long size) const noexcept;

private:
    CalculatorErrorType m_type;
    zr_long m_row;
    zr_long m_column;
};

// A calculator. Copies share one implementation, and so the last error; the last of them frees it. An object and its copies belong to
// one thread at a time. If memory ran out at construction, every operation fails.
class ZR_API CZrCalculator {
public:
    CZrCalculator() noexcept;
    CZrCalculator(const CZrCalculator &other) noexcept;
    CZrCalculator &operator=(const CZrCalculator &other) noexcept;
    ~CZrCalculator();

    // As calc_expression; true on success.
    bool Calculate(const char *text, double *result) noexcept;

    // As calc_string_expression; true on success. The last error is that of the place computed last.
    bool CalculateStringExpression(const char *text, char *out, zr_long size) noexcept;

    // Of the last calculation; on success its place is the end of the text. The record belongs to the calculator and its copies,
    // and stays as it is until one of them is asked again. Without an implementation it is of type 1.
    const CZrCalculatorError &GetLastError() const noexcept;

    // As calc_init, for the whole process.
    static void Init(zr_long digits) noexcept;

private:
    CZrCalculatorImpl *m_impl;
};

#endif
