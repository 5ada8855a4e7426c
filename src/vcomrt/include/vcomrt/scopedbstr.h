// Owns one BSTR. Move-only.
#pragma once

#include <cassert>
#include <string>
#include <utility>

#include "com.h"

class ScopedBstr {
public:
    ScopedBstr() = default;
    explicit ScopedBstr(const OLECHAR *text) : m_bstr(SysAllocString(text)) {}
    explicit ScopedBstr(const std::u16string &text)
        : m_bstr(SysAllocStringLen(text.data(), UINT(text.size()))) {}
    ~ScopedBstr() { SysFreeString(m_bstr); }

    ScopedBstr(ScopedBstr &&other) noexcept : m_bstr(std::exchange(other.m_bstr, nullptr)) {}
    ScopedBstr &operator=(ScopedBstr &&other) noexcept
    {
        reset(std::exchange(other.m_bstr, nullptr));
        return *this;
    }
    ScopedBstr(const ScopedBstr &) = delete;
    ScopedBstr &operator=(const ScopedBstr &) = delete;

    BSTR get() const { return m_bstr; }
    UINT length() const { return SysStringLen(m_bstr); }
    std::u16string toU16String() const { return m_bstr ? std::u16string(m_bstr, length()) : std::u16string(); }

    void reset(BSTR bstr = nullptr)
    {
        if (bstr != m_bstr)
            SysFreeString(m_bstr);
        m_bstr = bstr;
    }
    BSTR release() { return std::exchange(m_bstr, nullptr); }

    // For out-parameters; the wrapper must be empty, or the old string would leak.
    BSTR *receive()
    {
        assert(!m_bstr && "ScopedBstr::receive on a non-empty string leaks it");
        return &m_bstr;
    }

private:
    BSTR m_bstr = nullptr;
};
