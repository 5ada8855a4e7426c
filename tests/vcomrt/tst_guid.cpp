#include <QtTest>

#include <cstring>

#include <vcomrt/com.h>

namespace {

QString guidText(REFGUID guid)
{
    OLECHAR buffer[39];
    const int written = StringFromGUID2(guid, buffer, 39);
    return written == 39 ? QString::fromUtf16(buffer) : QString();
}

std::u16string utf16(const QString &text)
{
    return text.toStdU16String();
}

const GUID Sample = {0x8E1F0A52, 0x3C4B, 0x4D6E, {0x9F, 0x70, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F}};
const GUID AllOnes = {0xFFFFFFFF, 0xFFFF, 0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}};

} // namespace

Q_DECLARE_METATYPE(GUID)

class tst_Guid : public QObject {
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void lowerCaseAccepted();
    void malformed_data();
    void malformed();
    void nullOrEmptyIsNullGuid();
    void bufferTooSmall();
};

void tst_Guid::roundTrip_data()
{
    QTest::addColumn<GUID>("guid");
    QTest::addColumn<QString>("text");

    QTest::newRow("IID_NULL") << IID_NULL << QStringLiteral("{00000000-0000-0000-0000-000000000000}");
    QTest::newRow("IID_IUnknown") << IID_IUnknown << QStringLiteral("{00000000-0000-0000-C000-000000000046}");
    QTest::newRow("IID_IDispatch") << IID_IDispatch << QStringLiteral("{00020400-0000-0000-C000-000000000046}");
    QTest::newRow("IID_IClassFactory") << IID_IClassFactory << QStringLiteral("{00000001-0000-0000-C000-000000000046}");
    QTest::newRow("mixed_bytes") << Sample << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    QTest::newRow("all_ones") << AllOnes << QStringLiteral("{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}");
}

void tst_Guid::roundTrip()
{
    QFETCH(GUID, guid);
    QFETCH(QString, text);

    QCOMPARE(guidText(guid), text);
    CLSID parsed;
    std::memset(&parsed, 0x5A, sizeof(parsed));
    QCOMPARE(CLSIDFromString(utf16(text).c_str(), &parsed), S_OK);
    QVERIFY(IsEqualGUID(parsed, guid));
}

void tst_Guid::lowerCaseAccepted()
{
    CLSID parsed;
    QCOMPARE(CLSIDFromString(u"{8e1f0a52-3c4b-4d6e-9f70-1a2b3c4d5e6f}", &parsed), S_OK);
    QVERIFY(parsed == Sample);
}

void tst_Guid::malformed_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("no_braces") << QStringLiteral("8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F");
    QTest::newRow("missing_closing_brace") << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F");
    QTest::newRow("one_digit_short") << QStringLiteral("{8E1F0A5-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    QTest::newRow("one_digit_long") << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F0}");
    QTest::newRow("non_hex_digit") << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6G}");
    QTest::newRow("dash_moved") << QStringLiteral("{8E1F0A523-C4B-4D6E-9F70-1A2B3C4D5E6F}");
    QTest::newRow("dash_in_last_group") << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B-3C4D5E6F}");
    QTest::newRow("blank_inside") << QStringLiteral("{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6 }");
    QTest::newRow("leading_blank") << QStringLiteral(" {8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    QTest::newRow("sign_in_number") << QStringLiteral("{+E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    QTest::newRow("parentheses") << QStringLiteral("(8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F)");
    QTest::newRow("unregistered_progid") << QStringLiteral("Nobody.Registered.This");
    QTest::newRow("full_width_digit") << QString::fromUtf16(u"{\uFF18E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
}

void tst_Guid::malformed()
{
    QFETCH(QString, text);

    CLSID parsed;
    std::memset(&parsed, 0x5A, sizeof(parsed));
    QCOMPARE(CLSIDFromString(utf16(text).c_str(), &parsed), CO_E_CLASSSTRING);
    QVERIFY(parsed == CLSID_NULL);
}

void tst_Guid::nullOrEmptyIsNullGuid()
{
    CLSID parsed = Sample;
    QCOMPARE(CLSIDFromString(nullptr, &parsed), S_OK);
    QVERIFY(parsed == GUID_NULL);
    parsed = Sample;
    QCOMPARE(CLSIDFromString(u"", &parsed), S_OK);
    QVERIFY(parsed == GUID_NULL);
    QCOMPARE(CLSIDFromString(u"{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}", nullptr), E_INVALIDARG);
}

void tst_Guid::bufferTooSmall()
{
    OLECHAR buffer[40];
    std::fill(std::begin(buffer), std::end(buffer), OLECHAR(u'#'));
    QCOMPARE(StringFromGUID2(Sample, buffer, 38), 0);
    QCOMPARE(buffer[0], OLECHAR(u'#'));
    QCOMPARE(StringFromGUID2(Sample, nullptr, 39), 0);
    QCOMPARE(StringFromGUID2(Sample, buffer, 40), 39);
    QCOMPARE(buffer[38], OLECHAR(0));
    QCOMPARE(buffer[39], OLECHAR(u'#'));
}

QTEST_GUILESS_MAIN(tst_Guid)
#include "tst_guid.moc"
