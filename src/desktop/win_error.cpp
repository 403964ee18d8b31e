// Error codes of the operating system with their texts.
#include <new>

#include <zrclb/window_utilities.hpp>

#include "platform/system_text.h"

CZrWinError::CZrWinError(zr_ulong code) noexcept : m_code(code) {}

CZrWinError &CZrWinError::operator=(zr_ulong code) noexcept {
    m_code = code;
    return *this;
}

CZrWinError::operator zr_ulong() const noexcept {
    return m_code;
}

zr_ulong CZrWinError::GetCode() const noexcept {
    return m_code;
}

void CZrWinError::SetCode(zr_ulong code) noexcept {
    m_code = code;
}

std::string CZrWinError::GetFormattedMsg() const noexcept {
    return GetFormattedMsg(m_code);
}

std::string CZrWinError::GetFormattedMsg(zr_ulong code) noexcept {
    const zr::platform::SystemText text(code);
    if (text.Get() == nullptr)
        return {};
    try {
        return text.Get();
    } catch (const std::bad_alloc &) {
        return {};
    }
}
