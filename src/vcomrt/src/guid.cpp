#include "guid.h"

#include <cstring>

extern "C" {
const IID IID_NULL = {0x00000000, 0x0000, 0x0000, {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}};
const IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IDispatch = {0x00020400, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
const IID IID_IClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
}

namespace vcomrt {

namespace {

constexpr size_t GuidTextLength = 38;

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

bool readHex(const std::u16string &text, size_t pos, int digits, uint32_t *value)
{
    uint32_t v = 0;
    for (int i = 0; i < digits; ++i) {
        const int d = hexValue(text[pos + size_t(i)]);
        if (d < 0)
            return false;
        v = (v << 4) | uint32_t(d);
    }
    *value = v;
    return true;
}

void appendHex(std::u16string *out, uint32_t value, int digits)
{
    static const char16_t Digits[] = u"0123456789ABCDEF";
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        out->push_back(Digits[(value >> shift) & 0xF]);
}

} // namespace

bool parseGuid(const std::u16string &text, GUID *guid)
{
    std::memset(guid, 0, sizeof(GUID));
    if (text.size() != GuidTextLength || text[0] != u'{' || text[37] != u'}' || text[9] != u'-'
        || text[14] != u'-' || text[19] != u'-' || text[24] != u'-') {
        return false;
    }
    GUID result;
    uint32_t v = 0;
    if (!readHex(text, 1, 8, &v))
        return false;
    result.Data1 = v;
    if (!readHex(text, 10, 4, &v))
        return false;
    result.Data2 = uint16_t(v);
    if (!readHex(text, 15, 4, &v))
        return false;
    result.Data3 = uint16_t(v);
    // The fourth group holds the first two bytes of Data4, the fifth the other six.
    static const size_t BytePositions[8] = {20, 22, 25, 27, 29, 31, 33, 35};
    for (int i = 0; i < 8; ++i) {
        if (!readHex(text, BytePositions[i], 2, &v))
            return false;
        result.Data4[i] = uint8_t(v);
    }
    *guid = result;
    return true;
}

std::u16string formatGuid(const GUID &guid)
{
    std::u16string out;
    out.reserve(GuidTextLength);
    out.push_back(u'{');
    appendHex(&out, guid.Data1, 8);
    out.push_back(u'-');
    appendHex(&out, guid.Data2, 4);
    out.push_back(u'-');
    appendHex(&out, guid.Data3, 4);
    out.push_back(u'-');
    for (int i = 0; i < 8; ++i) {
        if (i == 2)
            out.push_back(u'-');
        appendHex(&out, guid.Data4[i], 2);
    }
    out.push_back(u'}');
    return out;
}

} // namespace vcomrt

extern "C" {

HRESULT CLSIDFromString(LPCOLESTR lpsz, CLSID *pclsid)
{
    if (!pclsid)
        return E_INVALIDARG;
    if (!lpsz || !*lpsz) {
        *pclsid = IID_NULL;
        return S_OK;
    }
    const std::u16string text(lpsz);
    if (vcomrt::parseGuid(text, pclsid))
        return S_OK;
    // A ProgID is accepted too, as the registry knows it.
    if (text[0] != u'{') {
        CLSID fromProgId;
        if (SUCCEEDED(CLSIDFromProgID(lpsz, &fromProgId))) {
            *pclsid = fromProgId;
            return S_OK;
        }
    }
    *pclsid = IID_NULL;
    return CO_E_CLASSSTRING;
}

int StringFromGUID2(REFGUID rguid, LPOLESTR lpsz, int cchMax)
{
    const std::u16string text = vcomrt::formatGuid(rguid);
    if (!lpsz || cchMax < int(text.size() + 1))
        return 0;
    std::memcpy(lpsz, text.data(), text.size() * sizeof(OLECHAR));
    lpsz[text.size()] = 0;
    return int(text.size() + 1);
}

} // extern "C"
