// Owns one VARIANT and whatever it holds. Move-only.
#pragma once

#include <cassert>
#include <cstring>
#include <utility>

#include "com.h"

class ScopedVariant {
public:
    ScopedVariant() { VariantInit(&m_var); }
    explicit ScopedVariant(LONG value)
    {
        VariantInit(&m_var);
        m_var.vt = VT_I4;
        m_var.lVal = value;
    }
    // Takes a copy of the text into a new BSTR.
    explicit ScopedVariant(const OLECHAR *text, UINT length)
    {
        VariantInit(&m_var);
        m_var.vt = VT_BSTR;
        m_var.bstrVal = SysAllocStringLen(text, length);
    }
    ~ScopedVariant() { VariantClear(&m_var); }

    ScopedVariant(ScopedVariant &&other) noexcept
    {
        m_var = other.m_var;
        VariantInit(&other.m_var);
    }
    ScopedVariant &operator=(ScopedVariant &&other) noexcept
    {
        if (this != &other) {
            VariantClear(&m_var);
            m_var = other.m_var;
            VariantInit(&other.m_var);
        }
        return *this;
    }
    ScopedVariant(const ScopedVariant &) = delete;
    ScopedVariant &operator=(const ScopedVariant &) = delete;

    VARTYPE type() const { return m_var.vt; }
    const VARIANT &get() const { return m_var; }
    VARIANT *ptr() { return &m_var; }

    void reset()
    {
        VariantClear(&m_var);
    }
    // Hands the value over; this wrapper is left empty.
    VARIANT release()
    {
        VARIANT v = m_var;
        VariantInit(&m_var);
        return v;
    }
    // For out-parameters; the wrapper must be empty, or its value would leak.
    VARIANT *receive()
    {
        assert(m_var.vt == VT_EMPTY && "ScopedVariant::receive on a non-empty variant leaks it");
        return &m_var;
    }

private:
    VARIANT m_var;
};
