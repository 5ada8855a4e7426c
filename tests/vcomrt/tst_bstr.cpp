#include <QtTest>

#include <climits>
#include <cstring>

#include <vcomrt/com.h>
#include <vcomrt/scopedbstr.h>

namespace {

uint32_t prefixOf(BSTR bstr)
{
    uint32_t prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const char *>(bstr) - sizeof(uint32_t), sizeof(prefix));
    return prefix;
}

} // namespace

class tst_Bstr : public QObject {
    Q_OBJECT

private slots:
    void layout_data();
    void layout();
    void allocStringStopsAtTerminator();
    void oddByteLength();
    void nullUnfilledAndOversized();
    void scopedBstrMovesOwnership();
};

void tst_Bstr::layout_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << QString();
    QTest::newRow("embedded_zeros") << QString::fromUtf16(u"a\0b\0\0c", 6);
}

void tst_Bstr::layout()
{
    QFETCH(QString, text);
    const UINT length = UINT(text.size());

    BSTR bstr = SysAllocStringLen(reinterpret_cast<const OLECHAR *>(text.utf16()), length);
    QVERIFY(bstr);
    auto guard = qScopeGuard([bstr] { SysFreeString(bstr); });

    QCOMPARE(prefixOf(bstr), uint32_t(length * sizeof(OLECHAR)));
    QCOMPARE(SysStringLen(bstr), length);
    QCOMPARE(SysStringByteLen(bstr), UINT(length * sizeof(OLECHAR)));
    QCOMPARE(QString::fromUtf16(bstr, int(length)), text);
    QCOMPARE(bstr[length], OLECHAR(0));
    QCOMPARE(reinterpret_cast<quintptr>(bstr) % alignof(OLECHAR), quintptr(0));
}

void tst_Bstr::allocStringStopsAtTerminator()
{
    const std::u16string sources[] = {u"Open", std::u16string(u"Save\0As2", 8), u""};
    const QString expected[] = {"Open", "Save", ""};
    for (int i = 0; i < 3; ++i) {
        ScopedBstr bstr(sources[i].c_str());
        QVERIFY(bstr.get());
        QCOMPARE(bstr.length(), UINT(expected[i].size()));
        QCOMPARE(QString::fromStdU16String(bstr.toU16String()), expected[i]);
    }
}

void tst_Bstr::oddByteLength()
{
    BSTR bstr = SysAllocStringByteLen("abc", 3);
    QVERIFY(bstr);
    auto guard = qScopeGuard([bstr] { SysFreeString(bstr); });
    QCOMPARE(SysStringByteLen(bstr), UINT(3));
    QCOMPARE(SysStringLen(bstr), UINT(1));
    const char *raw = reinterpret_cast<const char *>(bstr);
    QCOMPARE(QByteArray(raw, 5), QByteArray("abc\0\0", 5));
}

void tst_Bstr::nullUnfilledAndOversized()
{
    QVERIFY(!SysAllocString(nullptr));
    QCOMPARE(SysStringLen(nullptr), UINT(0));
    QCOMPARE(SysStringByteLen(nullptr), UINT(0));
    SysFreeString(nullptr);

    // Without a source the storage is the caller's to fill, terminated already.
    BSTR blank = SysAllocStringLen(nullptr, 5);
    QVERIFY(blank);
    auto guard = qScopeGuard([blank] { SysFreeString(blank); });
    QCOMPARE(SysStringLen(blank), UINT(5));
    QCOMPARE(blank[5], OLECHAR(0));
    for (int i = 0; i < 5; ++i)
        blank[i] = OLECHAR(u'v' + i);
    QCOMPARE(QString::fromUtf16(blank), QStringLiteral("vwxyz"));

    QVERIFY(!SysAllocStringLen(nullptr, UINT_MAX / 2));
    QVERIFY(!SysAllocStringByteLen(nullptr, UINT_MAX));
}

void tst_Bstr::scopedBstrMovesOwnership()
{
    const std::u16string text(u"x\0y", 3);
    ScopedBstr first(text);
    QCOMPARE(first.length(), UINT(3));
    const BSTR raw = first.get();

    ScopedBstr second(std::move(first));
    QVERIFY(!first.get());
    QVERIFY(second.get() == raw);
    QVERIFY(second.toU16String() == text);

    ScopedBstr out;
    *out.receive() = second.release();
    QVERIFY(!second.get());
    QVERIFY(out.get() == raw);
    QVERIFY(first.toU16String().empty());
}

QTEST_GUILESS_MAIN(tst_Bstr)
#include "tst_bstr.moc"
