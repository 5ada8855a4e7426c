#include <QtTest>

#include <cstring>

#include "comtesthelpers.h"

namespace {

const GUID Sample = {0x8E1F0A52, 0x3C4B, 0x4D6E, {0x9F, 0x70, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F}};

} // namespace

Q_DECLARE_METATYPE(GUID)

class tst_Guid : public QObject {
    Q_OBJECT

private slots:
    void parse_data();
    void parse();
    void nullArgumentsAndShortBuffers();
};

void tst_Guid::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<HRESULT>("expected");
    QTest::addColumn<GUID>("guid");
    // Whether text is also what StringFromGUID2 writes for guid.
    QTest::addColumn<bool>("canonical");

    const auto good = [](const char *tag, REFGUID guid, const QString &text, bool canonical = true) {
        QTest::newRow(tag) << text << S_OK << guid << canonical;
    };
    const auto bad = [](const char *tag, const QString &text) {
        QTest::newRow(tag) << text << CO_E_CLASSSTRING << GUID_NULL << false;
    };
    good("mixed_bytes", Sample, "{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    good("lower_case", Sample, "{8e1f0a52-3c4b-4d6e-9f70-1a2b3c4d5e6f}", false);
    good("empty_is_null_guid", GUID_NULL, "", false);

    bad("missing_closing_brace", "{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F");
    bad("non_hex_digit", "{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6G}");
    bad("dash_moved", "{8E1F0A523-C4B-4D6E-9F70-1A2B3C4D5E6F}");
    bad("sign_in_number", "{+E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}");
    bad("unregistered_progid", "Nobody.Registered.This");
}

void tst_Guid::parse()
{
    QFETCH(QString, text);
    QFETCH(HRESULT, expected);
    QFETCH(GUID, guid);
    QFETCH(bool, canonical);

    if (canonical)
        QCOMPARE(guidText(guid), text);
    CLSID parsed;
    std::memset(&parsed, 0x5A, sizeof(parsed));
    QCOMPARE(CLSIDFromString(text.toStdU16String().c_str(), &parsed), expected);
    QVERIFY(IsEqualGUID(parsed, guid));
}

void tst_Guid::nullArgumentsAndShortBuffers()
{
    CLSID parsed = Sample;
    QCOMPARE(CLSIDFromString(nullptr, &parsed), S_OK);
    QVERIFY(parsed == GUID_NULL);
    QCOMPARE(CLSIDFromString(u"{8E1F0A52-3C4B-4D6E-9F70-1A2B3C4D5E6F}", nullptr), E_INVALIDARG);

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
