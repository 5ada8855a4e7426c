#include <QtTest>

#include "cloud/vmcloudhelper.h"
#include "cloudargs_types.h"
#include "fakemainwindow.h"
#include "host/daloipc.h"
#include "shell/cappcontroller.h"

using namespace zyl::dalo;

namespace {

// What the add-on handed to the IPC library in one call.
struct SentCall {
    QString method;
    QString recordType;
    QPointer<QObject> receiver;
    QString slotName;
    UploadFilesToCloudArg upload;
    OpenVirtualCloudDiskArg open;
    GetCloudFileCachePathArg cache;
};

QList<SentCall> &sentCalls()
{
    static QList<SentCall> calls;
    return calls;
}

} // namespace

// Stands in for the IPC library: keeps a copy of the record, as the library keeps its bytes.
QString DaloIpcAsynCallEx(const QString &method, const QGenericArgument &argument, QObject *receiver,
                          const QString &slotName)
{
    SentCall call{method, QString::fromLatin1(argument.name()), receiver, slotName, {}, {}, {}};
    if (call.recordType == QLatin1String("UploadFilesToCloudArg"))
        call.upload = *static_cast<const UploadFilesToCloudArg *>(argument.data());
    else if (call.recordType == QLatin1String("OpenVirtualCloudDiskArg"))
        call.open = *static_cast<const OpenVirtualCloudDiskArg *>(argument.data());
    else
        call.cache = *static_cast<const GetCloudFileCachePathArg *>(argument.data());
    sentCalls().append(call);
    return QStringLiteral("id-%1").arg(sentCalls().size());
}

namespace {

// Calls a reply slot by name the way the IPC library does.
template <class Result>
void invokeReply(QObject *receiver, const QString &slotName, bool ok, const QString &id, const Result &result,
                 const char *resultType)
{
    QVERIFY(receiver);
    QVERIFY(QMetaObject::invokeMethod(receiver, slotName.toLatin1().constData(), Qt::DirectConnection,
                                      Q_ARG(bool, ok), Q_ARG(QString, id), QGenericArgument(resultType, &result)));
}

// Answers the index-th sent call.
template <class Result>
void reply(int index, bool ok, const Result &result, const char *resultType)
{
    const SentCall &call = sentCalls().at(index);
    invokeReply(call.receiver.data(), call.slotName, ok, QStringLiteral("id-%1").arg(index + 1), result,
                resultType);
}

} // namespace

class tst_VMCloudHelper : public QObject {
    Q_OBJECT

private slots:
    void init();
    void nothingSentWhenSignedOut();
    void uploadAndOpen_data();
    void uploadAndOpen();
    void cachePathReplies();

private:
    InitializedHost m_host;
};

void tst_VMCloudHelper::init()
{
    sentCalls().clear();
    m_host.account.setLoggedIn(true);
    m_host.account.setUserId(QString::fromUtf8("u-\xc3\xa4"));
}

void tst_VMCloudHelper::nothingSentWhenSignedOut()
{
    m_host.account.setLoggedIn(false);
    VMCloudHelper *helper = VMCloudHelper::instance();
    QCOMPARE(helper->parent(), CAppController::instance());
    QSignalSpy cache(helper, &VMCloudHelper::getCachePathFinished);
    QVERIFY(helper->uploadFilesToCloud("/tmp/a.docx", VMCloudHelper::cloudFolderPath()).isEmpty());
    QVERIFY(helper->openVirtualCloudDisk(VMCloudHelper::cloudFolderPath(), true).isEmpty());
    QVERIFY(helper->getCloudFileCachePath(VMCloudHelper::cloudFolderPath(), "a.docx").isEmpty());
    QVERIFY(sentCalls().isEmpty());

    // Without a sent request the waiting flag stays clear, so a stray reply says nothing.
    GetCloudFileCachePathResult result;
    result.resultCode = 0;
    result.cacheFolder = "/cache";
    invokeReply(helper, "onGetCachePathFinished", true, "stray", result, "zyl::dalo::GetCloudFileCachePathResult");
    QVERIFY(cache.isEmpty());
}

void tst_VMCloudHelper::uploadAndOpen_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("create");
    QTest::addColumn<bool>("bOk");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("resultSuccess");
    QTest::newRow("succeeded") << "D:/out/a.docx" << true << true << 0 << true;
    QTest::newRow("internal_error_9") << QString::fromUtf8("/home/u/\xc3\xa4 b.docx") << false << true << 9 << false;
    QTest::newRow("ipc_failed") << "/tmp/a.docx" << true << false << 1 << false;
}

void tst_VMCloudHelper::uploadAndOpen()
{
    QFETCH(QString, file);
    QFETCH(bool, create);
    QFETCH(bool, bOk);
    QFETCH(int, code);
    QFETCH(bool, resultSuccess);

    VMCloudHelper *helper = VMCloudHelper::instance();
    QSignalSpy uploaded(helper, &VMCloudHelper::uploadFileFinished);
    QSignalSpy opened(helper, &VMCloudHelper::openFolderFinished);
    QVERIFY(uploaded.isValid() && opened.isValid());
    QCOMPARE(helper->uploadFilesToCloud(file, VMCloudHelper::cloudFolderPath()), "id-1");
    QCOMPARE(helper->openVirtualCloudDisk("cloudapp/x", create), "id-2");

    // Receivers and reply slots are exercised by the replies below.
    QCOMPARE(sentCalls().size(), 2);
    QCOMPARE(sentCalls().at(0).method, "uploadFilesToCloud");
    QCOMPARE(sentCalls().at(0).recordType, "UploadFilesToCloudArg");
    QCOMPARE(sentCalls().at(1).method, "openVirtualCloudDisk");
    QCOMPARE(sentCalls().at(1).recordType, "OpenVirtualCloudDiskArg");
    UploadFilesToCloudArg upload;
    upload.__set_userId("u-\xc3\xa4");
    upload.__set_cloudPath("cloudapp/documentmerger");
    upload.__set_srcFiles({QDir::toNativeSeparators(file).toStdString()});
    upload.__set_userData(file.toStdString());
    QVERIFY(sentCalls().at(0).upload == upload);
    QVERIFY(!sentCalls().at(0).upload.__isset.extraParam);
    OpenVirtualCloudDiskArg open;
    open.__set_userId("u-\xc3\xa4");
    open.__set_cloudPath("cloudapp/x");
    open.__set_createWhenNoExists(create);
    QVERIFY(sentCalls().at(1).open == open);
    QVERIFY(!sentCalls().at(1).open.__isset.entryIdentifier);

    UploadFilesToCloudResult uploadResult;
    uploadResult.resultCode = code;
    reply(0, bOk, uploadResult, "zyl::dalo::UploadFilesToCloudResult");
    OpenVirtualCloudDiskResult openResult;
    openResult.resultCode = code;
    reply(1, bOk, openResult, "zyl::dalo::OpenVirtualCloudDiskResult");
    QCOMPARE(uploaded.size(), 1);
    QCOMPARE(uploaded.first(), (QVariantList{"id-1", bOk, resultSuccess}));
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened.first(), (QVariantList{"id-2", bOk, resultSuccess}));
}

void tst_VMCloudHelper::cachePathReplies()
{
    VMCloudHelper *helper = VMCloudHelper::instance();
    QSignalSpy spy(helper, &VMCloudHelper::getCachePathFinished);
    QVERIFY(spy.isValid());
    const char *type = "zyl::dalo::GetCloudFileCachePathResult";
    GetCloudFileCachePathResult found;
    found.resultCode = 0;
    found.cacheFolder = "/cache/\xc3\xa4";

    // Two requests before either reply: the first reply carries the second name, the other is dropped.
    helper->getCloudFileCachePath(VMCloudHelper::cloudFolderPath(), "first.docx");
    helper->getCloudFileCachePath(VMCloudHelper::cloudFolderPath(), "second.docx");
    QCOMPARE(sentCalls().at(1).cache.cloudPath, "cloudapp/documentmerger");
    reply(1, true, found, type);
    reply(0, true, found, type);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.takeFirst(), (QVariantList{"id-2", true, true, QString::fromUtf8("/cache/\xc3\xa4/second.docx")}));

    // An empty folder gives no file, even on success; a failed task is still reported.
    GetCloudFileCachePathResult empty;
    empty.resultCode = 0;
    helper->getCloudFileCachePath(VMCloudHelper::cloudFolderPath(), "third.docx");
    reply(2, true, empty, type);
    GetCloudFileCachePathResult failed;
    failed.resultCode = 9;
    failed.cacheFolder = "/cache";
    helper->getCloudFileCachePath(VMCloudHelper::cloudFolderPath(), "fourth.docx");
    reply(3, false, failed, type);
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy.at(0), (QVariantList{"id-3", true, true, QString()}));
    QCOMPARE(spy.at(1), (QVariantList{"id-4", false, false, "/cache/fourth.docx"}));
}

QTEST_MAIN(tst_VMCloudHelper)
#include "tst_vmcloudhelper.moc"
