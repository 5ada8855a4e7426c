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
    void allocStringStopsAtTerminator_data();
    void allocStringStopsAtTerminator();
    void nullSourceGivesTerminatedStorage();
    void byteLengthMayBeOdd();
    void nullHandling();
    void oversizedLengthRefused();
    void scopedBstrMovesOwnership();
};

void tst_Bstr::layout_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("ascii") << QStringLiteral("Documents");
    QTest::newRow("empty") << QString();
    QTest::newRow("embedded_zeros") << QString::fromUtf16(u"a\0b\0\0c", 6);
    QTest::newRow("leading_zero") << QString::fromUtf16(u"\0xyz", 4);
    QTest::newRow("surrogate_pair") << QString::fromUtf16(u"\U0001F600 face", 7);
    QTest::newRow("path_with_backslashes") << QStringLiteral("C:\\Users\\me\\Report.docx");
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

void tst_Bstr::allocStringStopsAtTerminator_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain") << QStringLiteral("Open") << QStringLiteral("Open");
    QTest::newRow("zero_in_middle") << QString::fromUtf16(u"Save\0As2", 8) << QStringLiteral("Save");
    QTest::newRow("only_terminator") << QString() << QString();
}

void tst_Bstr::allocStringStopsAtTerminator()
{
    QFETCH(QString, source);
    QFETCH(QString, expected);

    std::u16string buffer(reinterpret_cast<const char16_t *>(source.utf16()), size_t(source.size()));
    ScopedBstr bstr(buffer.c_str());
    QVERIFY(bstr.get());
    QCOMPARE(bstr.length(), UINT(expected.size()));
    QCOMPARE(QString::fromStdU16String(bstr.toU16String()), expected);
}

void tst_Bstr::nullSourceGivesTerminatedStorage()
{
    BSTR bstr = SysAllocStringLen(nullptr, 5);
    QVERIFY(bstr);
    auto guard = qScopeGuard([bstr] { SysFreeString(bstr); });
    QCOMPARE(SysStringLen(bstr), UINT(5));
    QCOMPARE(bstr[5], OLECHAR(0));
    for (int i = 0; i < 5; ++i)
        bstr[i] = OLECHAR(u'v' + i); // the storage is the caller's to fill
    QCOMPARE(QString::fromUtf16(bstr), QStringLiteral("vwxyz"));
}

void tst_Bstr::byteLengthMayBeOdd()
{
    const char bytes[] = {'a', 'b', 'c'};
    BSTR bstr = SysAllocStringByteLen(bytes, 3);
    QVERIFY(bstr);
    auto guard = qScopeGuard([bstr] { SysFreeString(bstr); });
    QCOMPARE(SysStringByteLen(bstr), UINT(3));
    QCOMPARE(SysStringLen(bstr), UINT(1));
    const char *raw = reinterpret_cast<const char *>(bstr);
    QCOMPARE(QByteArray(raw, 3), QByteArray("abc"));
    QCOMPARE(raw[3], '\0');
    QCOMPARE(raw[4], '\0');
}

void tst_Bstr::nullHandling()
{
    QVERIFY(!SysAllocString(nullptr));
    QCOMPARE(SysStringLen(nullptr), UINT(0));
    QCOMPARE(SysStringByteLen(nullptr), UINT(0));
    SysFreeString(nullptr);

    BSTR empty = SysAllocStringLen(nullptr, 0);
    QVERIFY(empty); // an empty string is not a null one
    QCOMPARE(SysStringLen(empty), UINT(0));
    QCOMPARE(empty[0], OLECHAR(0));
    SysFreeString(empty);
}

void tst_Bstr::oversizedLengthRefused()
{
    QVERIFY(!SysAllocStringLen(nullptr, UINT_MAX));
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
