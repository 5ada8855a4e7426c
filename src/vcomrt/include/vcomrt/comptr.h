// An owning reference to a COM interface: one reference count held, released on destruction.
#pragma once

#include <utility>

#include "com.h"

template <typename T>
class ComPtr {
public:
    ComPtr() = default;
    // Takes over a reference the caller already owns.
    static ComPtr adopt(T *p)
    {
        ComPtr r;
        r.m_p = p;
        return r;
    }
    // Takes a new reference of its own.
    static ComPtr share(T *p)
    {
        if (p)
            p->AddRef();
        return adopt(p);
    }
    ~ComPtr() { reset(); }

    ComPtr(const ComPtr &other) : m_p(other.m_p)
    {
        if (m_p)
            m_p->AddRef();
    }
    ComPtr &operator=(const ComPtr &other)
    {
        if (this != &other) {
            if (other.m_p)
                other.m_p->AddRef();
            reset();
            m_p = other.m_p;
        }
        return *this;
    }
    ComPtr(ComPtr &&other) noexcept : m_p(std::exchange(other.m_p, nullptr)) {}
    ComPtr &operator=(ComPtr &&other) noexcept
    {
        if (this != &other) {
            reset();
            m_p = std::exchange(other.m_p, nullptr);
        }
        return *this;
    }

    T *get() const { return m_p; }
    T *operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }

    void reset()
    {
        if (T *p = std::exchange(m_p, nullptr))
            p->Release();
    }
    T *detach() { return std::exchange(m_p, nullptr); }
    // For out-parameters: releases what is held first.
    T **receive()
    {
        reset();
        return &m_p;
    }

private:
    T *m_p = nullptr;
};
