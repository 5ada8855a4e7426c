#include <QtTest>

#include <dlfcn.h>

#include <atomic>
#include <thread>
#include <vector>

#include <vcomrt/com.h>
#include <vcomrt/comptr.h>

#include "comtesthelpers.h"
#include "testserverids.h"

namespace {

const CLSID CLSID_Missing = {0x7A000001, 0x0000, 0x4000, {0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01}};
const CLSID CLSID_NoExport = {0x7A000002, 0x0000, 0x4000, {0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02}};
const CLSID CLSID_NotALibrary = {0x7A000003, 0x0000, 0x4000, {0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03}};
const CLSID CLSID_Unregistered = {0x7A000004, 0x0000, 0x4000, {0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x04}};

using ServerCounter = int (*)();

// -1 while the runtime has not loaded the test server; never loads it itself.
int serverCounter(const char *name)
{
    void *handle = dlopen(VCOMRT_TEST_SERVER_PATH, RTLD_NOW | RTLD_NOLOAD);
    if (!handle)
        return -1;
    auto counter = reinterpret_cast<ServerCounter>(dlsym(handle, name));
    const int value = counter ? counter() : -2;
    dlclose(handle);
    return value;
}

int liveServerObjects()
{
    return serverCounter("vcomrtTestServerLiveObjects");
}

int factoriesCreated()
{
    return serverCounter("vcomrtTestServerFactoriesCreated");
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray registration(const QString &progId, REFCLSID clsid, const QString &library)
{
    return QStringLiteral("ProgID=%1\nCLSID=%2\nLibrary=%3\n").arg(progId, guidText(clsid), library).toUtf8();
}

HRESULT clsidOf(const QString &progId, CLSID *clsid)
{
    const std::u16string text = progId.toStdU16String();
    return CLSIDFromProgID(text.c_str(), clsid);
}

// Points VCOMRT_REGISTRY elsewhere until the returned guard goes; initTestCase always sets it.
auto overrideRegistry(const QByteArray &value)
{
    const QByteArray old = qgetenv("VCOMRT_REGISTRY");
    qputenv("VCOMRT_REGISTRY", value);
    return qScopeGuard([old] { qputenv("VCOMRT_REGISTRY", old); });
}

} // namespace

Q_DECLARE_METATYPE(GUID)

class tst_Activation : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void concurrentActivation();
    void clsidFromProgId_data();
    void clsidFromProgId();
    void createInstance_data();
    void createInstance();
    void classObject();
    void refusedCalls();
    void registrationFormat_data();
    void registrationFormat();
    void searchOrder();
    void defaultFolderBesideRuntime();

private:
    QTemporaryDir m_extraRegistry;
    QByteArray m_buildRegistry;
};

void tst_Activation::initTestCase()
{
    m_buildRegistry = qgetenv("VCOMRT_REGISTRY");
    QVERIFY2(!m_buildRegistry.isEmpty(), "run through ctest, which names the test registry");
    QVERIFY(QFileInfo::exists(QStringLiteral(VCOMRT_TEST_SERVER_PATH)));
    QVERIFY(m_extraRegistry.isValid());

    const QString dir = m_extraRegistry.path();
    const QString server = QStringLiteral(VCOMRT_TEST_SERVER_PATH);
    QVERIFY(writeFile(dir + "/missing.reg",
                      registration("VComRt.Missing", CLSID_Missing, dir + "/no/such/libserver.so")));
    QVERIFY(writeFile(dir + "/noexport.reg",
                      registration("VComRt.NoExport", CLSID_NoExport, QStringLiteral(VCOMRT_NOEXPORT_PATH))));
    QVERIFY(writeFile(dir + "/garbage.so", QByteArray("this is not a shared library\n")));
    QVERIFY(writeFile(dir + "/notalibrary.reg", registration("VComRt.NotALibrary", CLSID_NotALibrary, "garbage.so")));
    QVERIFY(writeFile(dir + "/unserved.reg", registration("VComRt.Unserved", CLSID_VComRtUnservedObject, server)));
    QVERIFY(writeFile(dir + "/throwing.reg", registration("VComRt.Throwing", CLSID_VComRtThrowingObject, server)));
    qputenv("VCOMRT_REGISTRY", dir.toLocal8Bit() + ':' + m_buildRegistry);
}

void tst_Activation::init()
{
    QCOMPARE(CoInitialize(nullptr), S_OK);
}

void tst_Activation::cleanup()
{
    CoUninitialize();
    QCOMPARE(qMax(0, liveServerObjects()), 0);
}

void tst_Activation::concurrentActivation()
{
    // First in the run, so that the threads also race for the first load of the server.
    QCOMPARE(liveServerObjects(), -1);
    constexpr int Threads = 6;
    constexpr int PerThread = 25;
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < Threads; ++t) {
        threads.emplace_back([&] {
            if (CoInitialize(nullptr) != S_OK) {
                ++failures;
                return;
            }
            for (int i = 0; i < PerThread; ++i) {
                IDispatch *object = nullptr;
                const HRESULT hr = CoCreateInstance(CLSID_VComRtTestObject, nullptr, 0x17, IID_IDispatch,
                                                    reinterpret_cast<void **>(&object));
                if (FAILED(hr) || !object) {
                    ++failures;
                    continue;
                }
                object->Release();
            }
            CoUninitialize();
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
    QCOMPARE(liveServerObjects(), 0);
    QCOMPARE(factoriesCreated(), Threads * PerThread);
}

void tst_Activation::clsidFromProgId_data()
{
    QTest::addColumn<QString>("progId");
    QTest::addColumn<HRESULT>("expected");
    QTest::addColumn<GUID>("clsid");

    QTest::newRow("any_ascii_case") << "vcomrt.TESTSERVER" << S_OK << CLSID_VComRtTestObject;
    QTest::newRow("registered_at_run_time") << "VComRt.NoExport" << S_OK << CLSID_NoExport;
    QTest::newRow("prefix_of_registered") << "VComRt.Test" << CO_E_CLASSSTRING << CLSID_NULL;
    QTest::newRow("empty") << "" << CO_E_CLASSSTRING << CLSID_NULL;
}

void tst_Activation::clsidFromProgId()
{
    QFETCH(QString, progId);
    QFETCH(HRESULT, expected);
    QFETCH(GUID, clsid);

    // Works without an apartment, on a thread that never entered one.
    HRESULT hr = E_UNEXPECTED;
    CLSID found = CLSID_Unregistered;
    std::thread([&] { hr = clsidOf(progId, &found); }).join();
    QCOMPARE(hr, expected);
    QCOMPARE(guidText(found), guidText(clsid));
}

void tst_Activation::createInstance_data()
{
    QTest::addColumn<GUID>("clsid");
    QTest::addColumn<bool>("aggregate");
    QTest::addColumn<uint>("context");
    QTest::addColumn<GUID>("iid");
    QTest::addColumn<HRESULT>("expected");

    QTest::newRow("unknown_inproc_only") << CLSID_VComRtTestObject << false << uint(CLSCTX_INPROC_SERVER) << IID_IUnknown << S_OK;
    QTest::newRow("wrong_interface") << CLSID_VComRtTestObject << false << 0x17u << IID_IClassFactory << E_NOINTERFACE;
    QTest::newRow("aggregation_refused") << CLSID_VComRtTestObject << true << 0x17u << IID_IUnknown << CLASS_E_NOAGGREGATION;
    QTest::newRow("local_server_only") << CLSID_VComRtTestObject << false << uint(CLSCTX_LOCAL_SERVER) << IID_IDispatch << REGDB_E_CLASSNOTREG;
    QTest::newRow("unregistered_class") << CLSID_Unregistered << false << 0x17u << IID_IDispatch << REGDB_E_CLASSNOTREG;
    QTest::newRow("library_missing") << CLSID_Missing << false << 0x17u << IID_IDispatch << CO_E_DLLNOTFOUND;
    QTest::newRow("file_not_a_library") << CLSID_NotALibrary << false << 0x17u << IID_IDispatch << CO_E_DLLNOTFOUND;
    QTest::newRow("library_without_entry_point") << CLSID_NoExport << false << 0x17u << IID_IDispatch << CO_E_ERRORINDLL;
    QTest::newRow("server_does_not_serve_class") << CLSID_VComRtUnservedObject << false << 0x17u << IID_IDispatch << CLASS_E_CLASSNOTAVAILABLE;
    QTest::newRow("server_throws") << CLSID_VComRtThrowingObject << false << 0x17u << IID_IDispatch << RPC_E_SERVERFAULT;
}

void tst_Activation::createInstance()
{
    QFETCH(GUID, clsid);
    QFETCH(bool, aggregate);
    QFETCH(uint, context);
    QFETCH(GUID, iid);
    QFETCH(HRESULT, expected);

    CountingDispatch outer;
    void *object = reinterpret_cast<void *>(0x1);
    const HRESULT hr = CoCreateInstance(clsid, aggregate ? &outer : nullptr, context, iid, &object);
    QCOMPARE(hr, expected);
    QCOMPARE(outer.refs, 1);
    if (FAILED(hr)) {
        QVERIFY(!object);
        // Whatever the runtime took from the server on the way, it gave back.
        QCOMPARE(qMax(0, liveServerObjects()), 0);
        return;
    }
    QVERIFY(object);
    // Only the object itself is left: the class factory is gone.
    QCOMPARE(liveServerObjects(), 1);
    QCOMPARE(static_cast<IUnknown *>(object)->Release(), ULONG(0));
    QCOMPARE(liveServerObjects(), 0);
}

void tst_Activation::classObject()
{
    ComPtr<IClassFactory> factory;
    QCOMPARE(CoGetClassObject(CLSID_VComRtTestObject, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                              reinterpret_cast<void **>(factory.receive())),
             S_OK);
    QVERIFY(factory);
    // The caller holds the factory's only reference.
    QCOMPARE(liveServerObjects(), 1);
    QCOMPARE(factory.detach()->Release(), ULONG(0));

    void *wrong = reinterpret_cast<void *>(0x1);
    QCOMPARE(CoGetClassObject(CLSID_VComRtTestObject, CLSCTX_INPROC_SERVER, nullptr, IID_IDispatch, &wrong),
             E_NOINTERFACE);
    QVERIFY(!wrong);
}

void tst_Activation::refusedCalls()
{
    // A thread outside any apartment is refused before the server is even asked for a factory.
    const int before = factoriesCreated();
    HRESULT hr = E_UNEXPECTED;
    void *object = reinterpret_cast<void *>(0x1);
    std::thread([&] { hr = CoCreateInstance(CLSID_VComRtTestObject, nullptr, 0x17, IID_IDispatch, &object); }).join();
    QCOMPARE(hr, CO_E_NOTINITIALIZED);
    QVERIFY(!object);
    QCOMPARE(factoriesCreated(), before);

    QCOMPARE(CoCreateInstance(CLSID_VComRtTestObject, nullptr, 0x17, IID_IDispatch, nullptr), E_POINTER);
    QCOMPARE(CoGetClassObject(CLSID_VComRtTestObject, 0x17, nullptr, IID_IClassFactory, nullptr), E_INVALIDARG);
    CLSID clsid;
    QCOMPARE(CLSIDFromProgID(nullptr, &clsid), E_INVALIDARG);
    QCOMPARE(CLSIDFromProgID(u"VComRt.TestServer", nullptr), E_INVALIDARG);
    // A registered ProgID is also a valid class string.
    QCOMPARE(CLSIDFromString(u"VComRt.TestServer", &clsid), S_OK);
    QVERIFY(clsid == CLSID_VComRtTestObject);
}

void tst_Activation::registrationFormat_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("registered");

    // %C% stands for the class id, %LIB% and %REL% for the server's absolute and relative paths.
    const QByteArray plain = "ProgID=VComRt.Format\nCLSID=%C%\nLibrary=%LIB%\n";
    const auto row = [](const char *tag, const QByteArray &content, bool registered, const char *file = "a.reg") {
        QTest::newRow(tag) << file << content << registered;
    };
    row("plain", plain, true);
    row("comments_blanks_crlf_key_case_unknown_key",
        "# server\r\n\n progid =  VComRt.Format \r\nThreadingModel=Apartment\n\t ClsId\t= %C%\nLIBRARY = %LIB%  \r\n", true);
    row("relative_library_path", "ProgID=VComRt.Format\nCLSID=%C%\nLibrary=%REL%\n", true);
    row("other_extension_ignored", plain, false, "a.txt");
    row("hidden_file_ignored", plain, false, ".a.reg");
    row("library_missing", "ProgID=VComRt.Format\nCLSID=%C%\n", false);
    row("clsid_without_braces", "ProgID=VComRt.Format\nCLSID=%B%\nLibrary=%LIB%\n", false);
    row("line_without_equals", "ProgID=VComRt.Format\nCLSID=%C%\nLibrary %LIB%\n", false);
    row("key_given_twice", "ProgID=VComRt.Format\nProgID=VComRt.Other\nCLSID=%C%\nLibrary=%LIB%\n", false);
    row("empty_value", "ProgID=VComRt.Format\nCLSID=%C%\nLibrary=\n", false);
}

void tst_Activation::registrationFormat()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, content);
    QFETCH(bool, registered);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString folder = dir.filePath(QStringLiteral("servers"));
    QVERIFY(QDir().mkpath(folder));
    const QString server = QStringLiteral(VCOMRT_TEST_SERVER_PATH);
    const QByteArray clsid = guidText(CLSID_VComRtTestObject).toLatin1();
    content.replace("%C%", clsid).replace("%B%", clsid.mid(1, 36));
    content.replace("%LIB%", server.toLocal8Bit());
    content.replace("%REL%", QDir(folder).relativeFilePath(server).toLocal8Bit());
    QVERIFY(writeFile(folder + '/' + fileName, content));
    const auto onlyThisFolder = overrideRegistry(folder.toLocal8Bit());

    CLSID found;
    QCOMPARE(clsidOf(QStringLiteral("VComRt.Format"), &found), registered ? S_OK : CO_E_CLASSSTRING);
    if (!registered)
        return;
    QVERIFY(found == CLSID_VComRtTestObject);
    ComPtr<IDispatch> object;
    QCOMPARE(CoCreateInstance(found, nullptr, 0x17, IID_IDispatch, reinterpret_cast<void **>(object.receive())), S_OK);
}

void tst_Activation::searchOrder()
{
    QTemporaryDir first;
    QTemporaryDir second;
    QVERIFY(first.isValid() && second.isValid());
    const QString server = QStringLiteral(VCOMRT_TEST_SERVER_PATH);
    QVERIFY(writeFile(first.filePath("shadow.reg"), registration("VComRt.Shadowed", CLSID_Missing, server)));
    QVERIFY(writeFile(second.filePath("shadow.reg"), registration("VComRt.Shadowed", CLSID_NoExport, server)));
    // Within one folder the file names decide.
    QVERIFY(writeFile(first.filePath("b.reg"), registration("VComRt.Twice", CLSID_NoExport, server)));
    QVERIFY(writeFile(first.filePath("a.reg"), registration("VComRt.Twice", CLSID_NotALibrary, server)));

    CLSID clsid;
    {
        const auto order = overrideRegistry(first.path().toLocal8Bit() + ':' + second.path().toLocal8Bit());
        QCOMPARE(clsidOf("VComRt.Shadowed", &clsid), S_OK);
        QCOMPARE(guidText(clsid), guidText(CLSID_Missing));
        QCOMPARE(clsidOf("VComRt.Twice", &clsid), S_OK);
        QCOMPARE(guidText(clsid), guidText(CLSID_NotALibrary));
    }
    {
        // Empty entries and a missing folder are passed over.
        const auto order = overrideRegistry("::" + first.filePath("nothing-here").toLocal8Bit() + ':'
                                            + second.path().toLocal8Bit() + "::" + first.path().toLocal8Bit() + ':');
        QCOMPARE(clsidOf("VComRt.Shadowed", &clsid), S_OK);
        QCOMPARE(guidText(clsid), guidText(CLSID_NoExport));
    }
    // Registrations are read afresh: a removed file no longer counts.
    QVERIFY(QFile::remove(second.filePath("shadow.reg")));
    const auto onlySecond = overrideRegistry(second.path().toLocal8Bit());
    QCOMPARE(clsidOf("VComRt.Shadowed", &clsid), CO_E_CLASSSTRING);
}

void tst_Activation::defaultFolderBesideRuntime()
{
    const auto none = overrideRegistry(QByteArray(""));
    // The build's test doubles never reach the runtime's own folder.
    CLSID clsid;
    QCOMPARE(clsidOf("VComRt.TestServer", &clsid), CO_E_CLASSSTRING);

    Dl_info info;
    QVERIFY(dladdr(reinterpret_cast<void *>(&CoCreateInstance), &info) && info.dli_fname);
    const QDir folder(QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath() + QStringLiteral("/vcomrt.d"));
    const QStringList files = folder.entryList({QStringLiteral("*.reg")}, QDir::Files, QDir::Name);
    if (files.isEmpty())
        QSKIP("no server of the product is registered in this build");
    // The build names each registration after its ProgID.
    for (const QString &name : files)
        QCOMPARE(clsidOf(QFileInfo(name).completeBaseName(), &clsid), S_OK);
}

QTEST_GUILESS_MAIN(tst_Activation)
#include "tst_activation.moc"
