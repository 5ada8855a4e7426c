#include <QtTest>

#include <functional>
#include <thread>

#include <vcomrt/com.h>

namespace {

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

Q_DECLARE_METATYPE(QVector<Step>)

class tst_Apartment : public QObject {
    Q_OBJECT

private slots:
    void sequence_data();
    void sequence();
};

void tst_Apartment::sequence_data()
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

void tst_Apartment::sequence()
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

QTEST_GUILESS_MAIN(tst_Apartment)
#include "tst_apartment.moc"
