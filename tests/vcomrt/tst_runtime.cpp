#include <QtTest>

#include <climits>
#include <cstring>
#include <functional>
#include <thread>

#include <vcomrt/comptr.h>
#include <vcomrt/scopedbstr.h>
#include <vcomrt/scopedvariant.h>

#include "comtesthelpers.h"

namespace {

uint32_t prefixOf(BSTR bstr)
{
    uint32_t prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const char *>(bstr) - sizeof(uint32_t), sizeof(prefix));
    return prefix;
}

const GUID Sample = {0x8E1F0A52, 0x3C4B, 0x4D6E, {0x9F, 0x70, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E, 0x6F}};

enum class Kind { Bstr, NullBstr, Dispatch, NullDispatch, Unknown, ByRefI4 };

void fill(VARIANT *v, Kind kind, CountingDispatch *object, LONG *referenced)
{
    VariantInit(v);
    v->llVal = 0;
    switch (kind) {
    case Kind::Bstr: v->vt = VT_BSTR; v->bstrVal = SysAllocStringLen(u"C:/a\0b.docx", 11); break;
    case Kind::NullBstr: v->vt = VT_BSTR; break;
    case Kind::NullDispatch: v->vt = VT_DISPATCH; break;
    case Kind::Dispatch:
    case Kind::Unknown:
        v->vt = kind == Kind::Dispatch ? VT_DISPATCH : VT_UNKNOWN;
        v->pdispVal = object;
        object->AddRef();
        break;
    case Kind::ByRefI4: v->vt = VT_BYREF | VT_I4; v->byref = referenced; break;
    }
}

// {0D9C1B7A-6E5F-4A3B-8C2D-1E0F9A8B7C6D}: never registered, so creating it tells apart a thread
// that may activate (REGDB_E_CLASSNOTREG) from one that may not (CO_E_NOTINITIALIZED).
const CLSID UnregisteredClass = {0x0D9C1B7A, 0x6E5F, 0x4A3B, {0x8C, 0x2D, 0x1E, 0x0F, 0x9A, 0x8B, 0x7C, 0x6D}};

HRESULT probe()
{
    void *object = reinterpret_cast<void *>(0x1);
    const HRESULT hr = CoCreateInstance(UnregisteredClass, nullptr, CLSCTX_ALL, IID_IDispatch, &object);
    return object ? E_UNEXPECTED : hr;
}

HRESULT onFreshThread(const std::function<HRESULT()> &work)
{
    HRESULT result = E_UNEXPECTED;
    std::thread thread([&] { result = work(); });
    thread.join();
    return result;
}

// The Other steps run on a thread of their own, which ends with the step.
enum Op { Sta, Mta, StaWithReserved, Uninit, Probe, OtherProbe, OtherSta };

struct Step {
    Op op;
    HRESULT expected;
};

HRESULT perform(Op op)
{
    static int reserved = 0;
    switch (op) {
    case Sta:
        return CoInitialize(nullptr);
    case Mta:
        return CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    case StaWithReserved:
        return CoInitialize(&reserved);
    case Uninit:
        CoUninitialize();
        return S_OK;
    case Probe:
        return probe();
    case OtherProbe:
        return onFreshThread(probe);
    case OtherSta:
        return onFreshThread([] {
            const HRESULT hr = CoInitialize(nullptr);
            CoUninitialize();
            return hr;
        });
    }
    return E_UNEXPECTED;
}

} // namespace

Q_DECLARE_METATYPE(GUID)
Q_DECLARE_METATYPE(Kind)
Q_DECLARE_METATYPE(QVector<Step>)

class tst_Runtime : public QObject {
    Q_OBJECT

private slots:
    void bstr_layout_data();
    void bstr_layout();
    void bstr_allocStringStopsAtTerminator();
    void bstr_oddByteLength();
    void bstr_nullUnfilledAndOversized();
    void scopedBstrMovesOwnership();
    void guid_parse_data();
    void guid_parse();
    void guid_nullArgumentsAndShortBuffers();
    void variant_initAndNullArguments();
    void variant_copyThenClear_data();
    void variant_copyThenClear();
    void variant_copyOntoHeldValues();
    void variant_badType_data();
    void variant_badType();
    void variant_copyOutOfMemory();
    void scopedVariantOwnsItsObject();
    void comPtrCountsReferences();
    void apartment_sequence_data();
    void apartment_sequence();
};

void tst_Runtime::bstr_layout_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << QString();
    QTest::newRow("embedded_zeros") << QString::fromUtf16(u"a\0b\0\0c", 6);
}

void tst_Runtime::bstr_layout()
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

void tst_Runtime::bstr_allocStringStopsAtTerminator()
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

void tst_Runtime::bstr_oddByteLength()
{
    BSTR bstr = SysAllocStringByteLen("abc", 3);
    QVERIFY(bstr);
    auto guard = qScopeGuard([bstr] { SysFreeString(bstr); });
    QCOMPARE(SysStringByteLen(bstr), UINT(3));
    QCOMPARE(SysStringLen(bstr), UINT(1));
    const char *raw = reinterpret_cast<const char *>(bstr);
    QCOMPARE(QByteArray(raw, 5), QByteArray("abc\0\0", 5));
}

void tst_Runtime::bstr_nullUnfilledAndOversized()
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

void tst_Runtime::scopedBstrMovesOwnership()
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

void tst_Runtime::guid_parse_data()
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

void tst_Runtime::guid_parse()
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

void tst_Runtime::guid_nullArgumentsAndShortBuffers()
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

void tst_Runtime::variant_initAndNullArguments()
{
    VARIANT v;
    std::memset(&v, 0xAB, sizeof(v));
    VariantInit(&v);
    QCOMPARE(v.vt, VARTYPE(VT_EMPTY));
    QCOMPARE(v.wReserved1, WORD(0));
    QCOMPARE(VariantClear(&v), S_OK);

    VariantInit(nullptr);
    QCOMPARE(VariantClear(nullptr), E_INVALIDARG);
    QCOMPARE(VariantCopy(nullptr, &v), E_INVALIDARG);
    QCOMPARE(VariantCopy(&v, nullptr), E_INVALIDARG);
}

void tst_Runtime::variant_copyThenClear_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("refsWhileCopied");

    QTest::newRow("bstr_with_embedded_zero") << Kind::Bstr << 1;
    QTest::newRow("null_bstr") << Kind::NullBstr << 1;
    QTest::newRow("dispatch") << Kind::Dispatch << 3;
    QTest::newRow("null_dispatch") << Kind::NullDispatch << 1;
    QTest::newRow("byref_shares_pointer_and_is_not_followed") << Kind::ByRefI4 << 1;
}

void tst_Runtime::variant_copyThenClear()
{
    QFETCH(Kind, kind);
    QFETCH(int, refsWhileCopied);

    CountingDispatch object;
    LONG referenced = 5;
    VARIANT source;
    fill(&source, kind, &object, &referenced);
    VARIANT dest;
    VariantInit(&dest);

    QCOMPARE(VariantCopy(&dest, &source), S_OK);
    QCOMPARE(dest.vt, source.vt);
    QCOMPARE(object.refs, refsWhileCopied);
    if (kind == Kind::Bstr) {
        QVERIFY(dest.bstrVal != source.bstrVal);
        QCOMPARE(SysStringByteLen(dest.bstrVal), SysStringByteLen(source.bstrVal));
        QCOMPARE(dest.bstrVal[SysStringLen(dest.bstrVal)], OLECHAR(0));
    } else {
        // Plain values, null pointers, shared objects and references are copied bit for bit.
        QCOMPARE(dest.llVal, source.llVal);
    }

    // Each copy owns what it holds: freeing one leaves the other intact.
    QCOMPARE(VariantClear(&source), S_OK);
    QCOMPARE(source.vt, VARTYPE(VT_EMPTY));
    if (kind == Kind::Bstr)
        QCOMPARE(QString::fromUtf16(dest.bstrVal, int(SysStringLen(dest.bstrVal))),
                 QString::fromUtf16(u"C:/a\0b.docx", 11));
    QCOMPARE(VariantClear(&dest), S_OK);
    QCOMPARE(dest.vt, VARTYPE(VT_EMPTY));
    QCOMPARE(object.refs, 1);
    QCOMPARE(referenced, LONG(5));
}

void tst_Runtime::variant_copyOntoHeldValues()
{
    CountingDispatch held;
    CountingDispatch incoming;
    VARIANT dest;
    fill(&dest, Kind::Dispatch, &held, nullptr);
    VARIANT source;
    fill(&source, Kind::Unknown, &incoming, nullptr);

    // Onto itself: nothing is released or taken.
    QCOMPARE(VariantCopy(&dest, &dest), S_OK);
    QCOMPARE(held.refs, 2);
    QVERIFY(dest.pdispVal == &held);
    // Onto another value: what the destination held is released first.
    QCOMPARE(VariantCopy(&dest, &source), S_OK);
    QCOMPARE(held.refs, 1);
    QCOMPARE(incoming.refs, 3);
    QCOMPARE(dest.vt, VARTYPE(VT_UNKNOWN));
    VariantClear(&dest);
    VariantClear(&source);
    QCOMPARE(incoming.refs, 1);
}

void tst_Runtime::variant_badType_data()
{
    QTest::addColumn<VARTYPE>("badType");

    QTest::newRow("variant_without_byref") << VARTYPE(VT_VARIANT);
    QTest::newRow("empty_byref") << VARTYPE(VT_EMPTY | VT_BYREF);
    QTest::newRow("unassigned_type_15") << VARTYPE(15);
    QTest::newRow("array_unsupported") << VARTYPE(VT_ARRAY | VT_I4);
}

void tst_Runtime::variant_badType()
{
    QFETCH(VARTYPE, badType);

    VARIANT bad;
    VariantInit(&bad);
    bad.vt = badType;
    bad.llVal = 0;
    QCOMPARE(VariantClear(&bad), DISP_E_BADVARTYPE);
    QCOMPARE(bad.vt, badType);

    // Copying it leaves the destination alone.
    CountingDispatch held;
    VARIANT dest;
    fill(&dest, Kind::Dispatch, &held, nullptr);
    QCOMPARE(VariantCopy(&dest, &bad), DISP_E_BADVARTYPE);
    QCOMPARE(dest.vt, VARTYPE(VT_DISPATCH));
    QVERIFY(dest.pdispVal == &held);
    QCOMPARE(held.refs, 2);
    VariantClear(&dest);
    QCOMPARE(held.refs, 1);
}

void tst_Runtime::variant_copyOutOfMemory()
{
    // A string whose length prefix claims more than any allocation may hold; it is never read.
    uint32_t forged[2] = {0xFFFFFFFCu, 0};
    VARIANT source;
    VariantInit(&source);
    source.vt = VT_BSTR;
    source.bstrVal = reinterpret_cast<BSTR>(&forged[1]);

    CountingDispatch held;
    VARIANT dest;
    fill(&dest, Kind::Dispatch, &held, nullptr);
    QCOMPARE(VariantCopy(&dest, &source), E_OUTOFMEMORY);
    // The destination was cleared before the copy was attempted and holds nothing now.
    QCOMPARE(dest.vt, VARTYPE(VT_EMPTY));
    QCOMPARE(held.refs, 1);
}

void tst_Runtime::scopedVariantOwnsItsObject()
{
    CountingDispatch object;
    {
        ScopedVariant outer;
        {
            ScopedVariant inner;
            VARIANT *slot = inner.receive();
            slot->vt = VT_DISPATCH;
            slot->pdispVal = &object;
            object.AddRef();
            outer = std::move(inner);
            QCOMPARE(inner.type(), VARTYPE(VT_EMPTY));
        }
        QCOMPARE(object.refs, 2);
        QCOMPARE(outer.type(), VARTYPE(VT_DISPATCH));

        VARIANT handedOver = outer.release();
        QCOMPARE(outer.type(), VARTYPE(VT_EMPTY));
        QCOMPARE(object.refs, 2);
        VariantClear(&handedOver);
    }
    QCOMPARE(object.refs, 1);

    ScopedVariant text(u"a\0b", 3);
    QCOMPARE(text.type(), VARTYPE(VT_BSTR));
    QCOMPARE(SysStringLen(text.get().bstrVal), UINT(3));
}

void tst_Runtime::comPtrCountsReferences()
{
    CountingDispatch object;
    {
        ComPtr<IDispatch> shared = ComPtr<IDispatch>::share(&object);
        QCOMPARE(object.refs, 2);
        ComPtr<IDispatch> copy = shared;
        QCOMPARE(object.refs, 3);
        ComPtr<IDispatch> moved = std::move(copy);
        QCOMPARE(object.refs, 3);
        QVERIFY(!copy);
        copy = moved;
        QCOMPARE(object.refs, 4);
        copy = copy; // self-assignment keeps the count
        QCOMPARE(object.refs, 4);
        IDispatch **slot = moved.receive(); // releases what it held before the callee fills it
        QCOMPARE(object.refs, 3);
        QVERIFY(!*slot);
        *slot = &object;
        object.AddRef();
        QCOMPARE(object.refs, 4);
    }
    QCOMPARE(object.refs, 1);
}

void tst_Runtime::apartment_sequence_data()
{
    QTest::addColumn<QVector<Step>>("steps");

    const HRESULT notInit = CO_E_NOTINITIALIZED;
    const HRESULT ready = REGDB_E_CLASSNOTREG;

    // Another thread's apartment neither lets a thread create nor makes its first call a repeat.
    QTest::newRow("sta_belongs_to_its_thread")
        << QVector<Step>{{Sta, S_OK}, {Probe, ready}, {OtherProbe, notInit}, {OtherSta, S_OK}, {Sta, S_FALSE}};
    QTest::newRow("mta_covers_other_threads")
        << QVector<Step>{{Mta, S_OK}, {OtherProbe, ready}, {OtherSta, S_OK}, {Uninit, S_OK}, {OtherProbe, notInit}};
    QTest::newRow("nested_needs_as_many_uninits")
        << QVector<Step>{{Sta, S_OK}, {Sta, S_FALSE}, {Sta, S_FALSE}, {Uninit, S_OK}, {Uninit, S_OK},
                         {Probe, ready}, {Uninit, S_OK}, {Probe, notInit}};
    QTest::newRow("extra_uninit_is_harmless")
        << QVector<Step>{{Uninit, S_OK}, {Sta, S_OK}, {Uninit, S_OK}, {Uninit, S_OK}, {Sta, S_OK}, {Probe, ready}};
    QTest::newRow("mta_then_sta_refused")
        << QVector<Step>{{Mta, S_OK}, {Sta, RPC_E_CHANGED_MODE}, {Mta, S_FALSE}, {Uninit, S_OK}, {Uninit, S_OK},
                         {Probe, notInit}};
    QTest::newRow("reserved_argument_refused")
        << QVector<Step>{{StaWithReserved, E_INVALIDARG}, {Probe, notInit}, {Sta, S_OK}};
}

void tst_Runtime::apartment_sequence()
{
    QFETCH(QVector<Step>, steps);

    QVector<HRESULT> results;
    onFreshThread([&] {
        for (const Step &step : steps)
            results.append(perform(step.op));
        // Leave nothing behind for later rows: a thread's end does not end its MTA membership.
        for (int i = 0; i < 8; ++i)
            CoUninitialize();
        return S_OK;
    });

    QVector<HRESULT> expected;
    for (const Step &step : steps)
        expected.append(step.expected);
    QCOMPARE(results, expected);
}

QTEST_GUILESS_MAIN(tst_Runtime)
#include "tst_runtime.moc"
