#include "utf.h"

namespace vcomrt {

namespace {

void appendUtf8(std::string *out, char32_t cp)
{
    if (cp < 0x80) {
        out->push_back(char(cp));
    } else if (cp < 0x800) {
        out->push_back(char(0xC0 | (cp >> 6)));
        out->push_back(char(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out->push_back(char(0xE0 | (cp >> 12)));
        out->push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out->push_back(char(0x80 | (cp & 0x3F)));
    } else {
        out->push_back(char(0xF0 | (cp >> 18)));
        out->push_back(char(0x80 | ((cp >> 12) & 0x3F)));
        out->push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out->push_back(char(0x80 | (cp & 0x3F)));
    }
}

void appendUtf16(std::u16string *out, char32_t cp)
{
    if (cp < 0x10000) {
        out->push_back(char16_t(cp));
    } else {
        cp -= 0x10000;
        out->push_back(char16_t(0xD800 + (cp >> 10)));
        out->push_back(char16_t(0xDC00 + (cp & 0x3FF)));
    }
}

} // namespace

std::string toUtf8(const char16_t *text)
{
    std::string out;
    if (!text)
        return out;
    for (size_t i = 0; text[i]; ++i) {
        char32_t cp = text[i];
        if (cp >= 0xD800 && cp < 0xDC00 && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp < 0xE000) {
            cp = 0xFFFD;
        }
        appendUtf8(&out, cp);
    }
    return out;
}

std::u16string toUtf16(const std::string &text)
{
    std::u16string out;
    size_t i = 0;
    while (i < text.size()) {
        const unsigned char lead = static_cast<unsigned char>(text[i]);
        int extra = 0;
        char32_t cp = 0;
        if (lead < 0x80) {
            cp = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            extra = 1;
            cp = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            extra = 2;
            cp = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            extra = 3;
            cp = lead & 0x07;
        } else {
            appendUtf16(&out, 0xFFFD);
            ++i;
            continue;
        }
        bool valid = i + size_t(extra) < text.size();
        for (int k = 1; valid && k <= extra; ++k) {
            const unsigned char c = static_cast<unsigned char>(text[i + size_t(k)]);
            if ((c & 0xC0) != 0x80)
                valid = false;
            else
                cp = (cp << 6) | (c & 0x3F);
        }
        static const char32_t Minimum[4] = {0, 0x80, 0x800, 0x10000};
        if (!valid || cp < Minimum[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp < 0xE000)) {
            appendUtf16(&out, 0xFFFD);
            ++i;
            continue;
        }
        appendUtf16(&out, cp);
        i += size_t(extra) + 1;
    }
    return out;
}

} // namespace vcomrt
