#include <QtTest>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "vappusagelog.h"

using Params = QHash<QString, QString>;
using Event = QPair<QString, Params>;
Q_DECLARE_METATYPE(Event)
Q_DECLARE_METATYPE(QVector<Event>)

namespace {

QList<QByteArray> readLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> lines = file.readAll().split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

class tst_VAppUsageLog : public QObject {
    Q_OBJECT
private slots:
    void eventsReadBack_data();
    void eventsReadBack();
    void appendsToExistingFileInNewFolders();
    void unwritablePathFailsCleanly();
    void defaultPathFollowsStateHome();
};

void tst_VAppUsageLog::eventsReadBack_data()
{
    QTest::addColumn<QVector<Event>>("events");

    QTest::newRow("several_events_in_order") << QVector<Event>{
        {"vas_wordmerge_click", {{"type", "start_up"}}},
        {"vas_wordmerge_popup", {{"type", "processing"}, {"action", "show"}}},
        {"vas_wordmerge_export", {{"count", "3"}, {"format", "docx"}}}};
    QTest::newRow("quotes_newlines_and_unicode") << QVector<Event>{
        {"vas_wordmerge_addfile", {{"name", "Bericht \"März\"\nÜbersicht 报告.docx"},
                                   {"path", "C:\\Users\\x\\a|b"}}}};
}

void tst_VAppUsageLog::eventsReadBack()
{
    QFETCH(QVector<Event>, events);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const VAppUsageLog log(dir.filePath("usage.jsonl"));
    for (const Event &e : events)
        QVERIFY(log.append(e.first, e.second));

    const QList<QByteArray> lines = readLines(log.filePath());
    QCOMPARE(lines.size(), events.size());
    for (int i = 0; i < events.size(); ++i) {
        QJsonParseError error;
        const QJsonDocument doc = QJsonDocument::fromJson(lines.at(i), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        const QJsonObject object = doc.object();
        QCOMPARE(object.keys(), (QStringList{"event", "params"}));
        QCOMPARE(object.value("event").toString(), events.at(i).first);
        const QJsonObject params = object.value("params").toObject();
        QCOMPARE(params.size(), events.at(i).second.size());
        for (auto it = events.at(i).second.cbegin(); it != events.at(i).second.cend(); ++it) {
            QVERIFY2(params.value(it.key()).isString(), qPrintable(it.key()));
            QCOMPARE(params.value(it.key()).toString(), it.value());
        }
    }
}

void tst_VAppUsageLog::appendsToExistingFileInNewFolders()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("state/vapphost/usage.jsonl");
    QVERIFY(VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "desk"}}));
    QVERIFY(VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "menu"}}));
    QCOMPARE(readLines(path), (QList<QByteArray>{"{\"event\":\"vas_wordmerge_show\",\"params\":{\"src\":\"desk\"}}",
                                                 "{\"event\":\"vas_wordmerge_show\",\"params\":{\"src\":\"menu\"}}"}));
}

void tst_VAppUsageLog::unwritablePathFailsCleanly()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir("folder"));
    QFile plain(dir.filePath("plainfile"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.write("not a folder");
    plain.close();
    // No path, a folder, a path under a plain file.
    for (const QString &path : {QString(), dir.filePath("folder"), dir.filePath("plainfile/usage.jsonl")})
        QVERIFY2(!VAppUsageLog(path).append("vas_wordmerge_show", {{"src", "desk"}}), qPrintable(path));
    QVERIFY(plain.open(QIODevice::ReadOnly));
    QCOMPARE(plain.readAll(), QByteArray("not a folder"));
}

void tst_VAppUsageLog::defaultPathFollowsStateHome()
{
    const QByteArray saved = qgetenv("XDG_STATE_HOME");
    const bool wasSet = qEnvironmentVariableIsSet("XDG_STATE_HOME");
    auto restore = qScopeGuard([&] {
        if (wasSet)
            qputenv("XDG_STATE_HOME", saved);
        else
            qunsetenv("XDG_STATE_HOME");
    });
    // Only an absolute state folder counts; without one the default is still absolute.
    for (const QByteArray &stateHome : {QByteArray("/tmp/vapphost-state-test"), QByteArray("relative/state"), QByteArray()}) {
        if (stateHome.isNull())
            qunsetenv("XDG_STATE_HOME");
        else
            qputenv("XDG_STATE_HOME", stateHome);
        const QString path = VAppUsageLog::defaultFilePath();
        QVERIFY(QDir::isAbsolutePath(path));
        QVERIFY(path.endsWith(QLatin1String("/usage.jsonl")));
        QCOMPARE(path.startsWith(QString::fromLocal8Bit(stateHome) + QLatin1String("/vapphost/")), stateHome.startsWith('/'));
    }
}

QTEST_GUILESS_MAIN(tst_VAppUsageLog)
#include "tst_vappusagelog.moc"
