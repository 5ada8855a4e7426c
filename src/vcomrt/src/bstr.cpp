// A BSTR points just past a 4-byte byte count and is followed by a 16-bit terminator, so that
// servers and clients may read the length from the prefix as they do on Windows.
#include "vcomrt/com.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t PrefixSize = sizeof(uint32_t);

uint32_t *prefixOf(BSTR bstr)
{
    return reinterpret_cast<uint32_t *>(reinterpret_cast<char *>(bstr) - PrefixSize);
}

// byteLen is the payload; two terminating zero bytes follow it (a whole OLECHAR even for odd counts).
BSTR allocate(UINT byteLen)
{
    if (byteLen > UINT32_MAX - PrefixSize - 2 * sizeof(OLECHAR))
        return nullptr;
    const size_t total = PrefixSize + size_t(byteLen) + 2 * sizeof(OLECHAR);
    char *block = static_cast<char *>(std::malloc(total));
    if (!block)
        return nullptr;
    const uint32_t prefix = byteLen;
    std::memcpy(block, &prefix, PrefixSize);
    char *payload = block + PrefixSize;
    std::memset(payload + byteLen, 0, 2 * sizeof(OLECHAR));
    return reinterpret_cast<BSTR>(payload);
}

} // namespace

extern "C" {

BSTR SysAllocString(const OLECHAR *psz)
{
    if (!psz)
        return nullptr;
    size_t len = 0;
    while (psz[len])
        ++len;
    if (len > UINT_MAX)
        return nullptr;
    return SysAllocStringLen(psz, UINT(len));
}

BSTR SysAllocStringLen(const OLECHAR *strIn, UINT ui)
{
    if (ui > (UINT32_MAX - PrefixSize) / sizeof(OLECHAR))
        return nullptr;
    BSTR bstr = allocate(UINT(ui * sizeof(OLECHAR)));
    if (bstr && strIn)
        std::memcpy(bstr, strIn, ui * sizeof(OLECHAR));
    return bstr;
}

BSTR SysAllocStringByteLen(const char *psz, UINT len)
{
    BSTR bstr = allocate(len);
    if (bstr && psz)
        std::memcpy(bstr, psz, len);
    return bstr;
}

void SysFreeString(BSTR bstrString)
{
    if (bstrString)
        std::free(prefixOf(bstrString));
}

UINT SysStringLen(BSTR pbstr)
{
    return pbstr ? UINT(*prefixOf(pbstr) / sizeof(OLECHAR)) : 0;
}

UINT SysStringByteLen(BSTR bstr)
{
    return bstr ? UINT(*prefixOf(bstr)) : 0;
}

} // extern "C"
