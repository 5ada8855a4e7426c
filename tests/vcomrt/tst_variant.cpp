#include <QtTest>

#include <cstring>

#include <vcomrt/comptr.h>
#include <vcomrt/scopedvariant.h>

#include "comtesthelpers.h"

namespace {

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

} // namespace

Q_DECLARE_METATYPE(Kind)

class tst_Variant : public QObject {
    Q_OBJECT

private slots:
    void initAndNullArguments();
    void copyThenClear_data();
    void copyThenClear();
    void copyOntoHeldValues();
    void badType_data();
    void badType();
    void copyOutOfMemory();
    void scopedVariantOwnsItsObject();
    void comPtrCountsReferences();
};

void tst_Variant::initAndNullArguments()
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

void tst_Variant::copyThenClear_data()
{
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("refsWhileCopied");

    QTest::newRow("bstr_with_embedded_zero") << Kind::Bstr << 1;
    QTest::newRow("null_bstr") << Kind::NullBstr << 1;
    QTest::newRow("dispatch") << Kind::Dispatch << 3;
    QTest::newRow("null_dispatch") << Kind::NullDispatch << 1;
    QTest::newRow("byref_shares_pointer_and_is_not_followed") << Kind::ByRefI4 << 1;
}

void tst_Variant::copyThenClear()
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

void tst_Variant::copyOntoHeldValues()
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

void tst_Variant::badType_data()
{
    QTest::addColumn<VARTYPE>("badType");

    QTest::newRow("variant_without_byref") << VARTYPE(VT_VARIANT);
    QTest::newRow("empty_byref") << VARTYPE(VT_EMPTY | VT_BYREF);
    QTest::newRow("unassigned_type_15") << VARTYPE(15);
    QTest::newRow("array_unsupported") << VARTYPE(VT_ARRAY | VT_I4);
}

void tst_Variant::badType()
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

void tst_Variant::copyOutOfMemory()
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

void tst_Variant::scopedVariantOwnsItsObject()
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

void tst_Variant::comPtrCountsReferences()
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

QTEST_GUILESS_MAIN(tst_Variant)
#include "tst_variant.moc"
