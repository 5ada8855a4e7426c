#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <unistd.h>

#include "fakezylserver.h"

// docmerge as a program, against the automation-server double.
class tst_DocMerge : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void count_data();
    void count();
    void countJson();
    void serverCannotBeStarted();
    void merge_data();
    void merge();
    void mergeJson();
    void existingOutputIsKept();
    void concurrentRunsKeepTheirFiles();
    void interrupt_data();
    void interrupt();

private:
    struct Run {
        int exitCode = -1;
        QString out;
        QString err;
    };
    Run run(const QStringList &arguments, const QProcessEnvironment &extra = QProcessEnvironment());
    QProcessEnvironment environment(const QProcessEnvironment &extra) const;
    // Starts docmerge with the double holding the call named by hold ("Open:2") until release().
    bool startHeld(QProcess &process, const QString &hold, const QStringList &arguments);
    void release() { QFile(path(QStringLiteral("gate"))).open(QIODevice::WriteOnly); }
    QString path(const QString &name) const { return m_dir.filePath(name); }
    // The working trees left in the user's private root.
    QStringList workTrees() const
    {
        return QDir(m_tmp.filePath(QStringLiteral("vdocumentmerger-%1").arg(::getuid())))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    }

    QTemporaryDir m_dir;
    QTemporaryDir m_tmp;
};

void tst_DocMerge::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(m_tmp.isValid());
    QVERIFY(QFileInfo(QStringLiteral(DOCMERGE_PROGRAM)).isExecutable());
    QVERIFY(!qEnvironmentVariableIsEmpty("VCOMRT_REGISTRY"));
}

void tst_DocMerge::init()
{
    const QStringList old = QDir(m_dir.path()).entryList(QDir::Files);
    for (const QString &name : old)
        QVERIFY(QFile::remove(path(name)));
    QVERIFY(FakeZylServer::writeDocument(path("a.docx"), {"A1", "A2", "A3"}));
    QVERIFY(FakeZylServer::writeDocument(path("b.doc"), {"B1", "B2"}));
    QVERIFY(FakeZylServer::writeDocument(path("c.zyl"), {"C1", "C2", "C3", "C4"}));
}

QProcessEnvironment tst_DocMerge::environment(const QProcessEnvironment &extra) const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TMPDIR"), m_tmp.path());
    for (const QString &key : extra.keys())
        env.insert(key, extra.value(key));
    return env;
}

bool tst_DocMerge::startHeld(QProcess &process, const QString &hold, const QStringList &arguments)
{
    const QString gate = path(QStringLiteral("gate"));
    QFile::remove(gate);
    QFile::remove(gate + QStringLiteral(".held"));
    QProcessEnvironment extra;
    extra.insert(QStringLiteral("FAKEZYL_HOLD"), QStringLiteral("%1:%2").arg(hold, gate));
    process.setProcessEnvironment(environment(extra));
    process.setWorkingDirectory(m_dir.path());
    process.start(QStringLiteral(DOCMERGE_PROGRAM), arguments);
    return QTest::qWaitFor([&] { return QFileInfo::exists(gate + QStringLiteral(".held")); }, 20000);
}

tst_DocMerge::Run tst_DocMerge::run(const QStringList &arguments, const QProcessEnvironment &extra)
{
    QProcess process;
    process.setProcessEnvironment(environment(extra));
    process.setWorkingDirectory(m_dir.path());
    process.start(QStringLiteral(DOCMERGE_PROGRAM), arguments);
    Run result;
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    // The working folders go with every run.
    if (!workTrees().isEmpty())
        result.exitCode = -2;
    return result;
}

void tst_DocMerge::count_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("out");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("all_counted") << QStringList{"a.docx", "b.doc", "c.zyl"} << "3\ta.docx\n2\tb.doc\n4\tc.zyl\n" << 0;
    QTest::newRow("one_missing") << QStringList{"a.docx", "gone.docx", "b.doc"} << "3\ta.docx\nfail\tgone.docx\n2\tb.doc\n" << 1;
    QTest::newRow("same_file_twice") << QStringList{"b.doc", "./b.doc"} << "2\tb.doc\n2\t./b.doc\n" << 0;
}

void tst_DocMerge::count()
{
    QFETCH(QStringList, files);
    QFETCH(QString, out);
    QFETCH(int, exitCode);
    const Run result = run(QStringList{"count"} + files);
    QCOMPARE(result.exitCode, exitCode);
    QCOMPARE(result.out, out);
}

void tst_DocMerge::countJson()
{
    const Run result = run({"count", "--json", "a.docx", "gone.doc"});
    QCOMPARE(result.exitCode, 1);
    QJsonParseError error;
    const QJsonObject root = QJsonDocument::fromJson(result.out.toUtf8(), &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(root.value("command").toString(), QStringLiteral("count"));
    QCOMPARE(root.value("success").toBool(), false);
    const QJsonArray files = root.value("files").toArray();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files.at(0).toObject().value("path").toString(), QStringLiteral("a.docx"));
    QCOMPARE(files.at(0).toObject().value("pages").toInt(), 3);
    QCOMPARE(files.at(1).toObject().value("success").toBool(), false);
    QVERIFY(files.at(1).toObject().value("pages").isNull());
}

void tst_DocMerge::serverCannotBeStarted()
{
    // A registration whose library is not there: the runtime cannot create the application.
    QTemporaryDir registry;
    QFile reg(registry.filePath(QStringLiteral("VZyl.Application.reg")));
    QVERIFY(reg.open(QIODevice::WriteOnly));
    reg.write("ProgID=VZyl.Application\nCLSID={3C0D6B2E-71A4-4E59-9B8F-5D2A61C7E904}\nLibrary=/nonexistent/libnothing.so\n");
    reg.close();
    QProcessEnvironment extra;
    extra.insert(QStringLiteral("VCOMRT_REGISTRY"), registry.path());

    const Run counted = run({"count", "a.docx", "b.doc"}, extra);
    QCOMPARE(counted.exitCode, 1);
    QCOMPARE(counted.out, QStringLiteral("fail\ta.docx\nfail\tb.doc\n"));
    QVERIFY2(counted.err.contains("cannot be started"), qPrintable(counted.err));

    const Run merged = run({"merge", "-o", "out.docx", "a.docx", "b.doc"}, extra);
    QCOMPARE(merged.exitCode, 1);
    QVERIFY2(merged.err.contains("cannot be started"), qPrintable(merged.err));
    QCOMPARE(merged.err.count(QLatin1Char('\n')), 1);
    QVERIFY(!QFile::exists(path("out.docx")));
}

void tst_DocMerge::merge_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("pages");
    QTest::addColumn<QString>("reason");

    QTest::newRow("ranges_in_the_given_order") << QStringList{"-o", "out.docx", "c.zyl:2-3", "a.docx:3-", "b.doc:1"}
                                               << 0 << QStringList{"C2", "C3", "A3", "B1"} << "";
    QTest::newRow("whole_documents") << QStringList{"-o", "out.doc", "b.doc", "a.docx"}
                                     << 0 << QStringList{"B1", "B2", "A1", "A2", "A3"} << "";
    QTest::newRow("past_the_end_is_cut") << QStringList{"-o", "out.zyl", "--format", "zyl", "a.docx:2-40", "b.doc:2-9"}
                                         << 0 << QStringList{"A2", "A3", "B2"} << "";
    QTest::newRow("into_a_new_folder") << QStringList{"-o", "sub/dir/out.docx", "a.docx:1", "b.doc:1"}
                                       << 0 << QStringList{"A1", "B1"} << "";
    QTest::newRow("from_past_the_end") << QStringList{"-o", "out.docx", "a.docx:1", "b.doc:3-4"}
                                       << 1 << QStringList() << "b.doc has 2 page(s)";
    QTest::newRow("to_below_from") << QStringList{"-o", "out.docx", "a.docx:3-2", "b.doc"}
                                   << 1 << QStringList() << "ends before it starts";
    QTest::newRow("missing_source") << QStringList{"-o", "out.docx", "a.docx", "gone.doc"}
                                    << 1 << QStringList() << "no such file: gone.doc";
    QTest::newRow("one_source") << QStringList{"-o", "out.docx", "a.docx"} << 2 << QStringList() << "Usage:";
    QTest::newRow("format_mismatch") << QStringList{"-o", "out.docx", "--format", "doc", "a.docx", "b.doc"}
                                     << 2 << QStringList() << "Usage:";
}

void tst_DocMerge::merge()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, pages);
    QFETCH(QString, reason);
    const QString output = path(arguments.at(arguments.indexOf("-o") + 1));

    const Run result = run(QStringList{"merge"} + arguments);
    QCOMPARE(result.exitCode, exitCode);
    if (exitCode == 0) {
        QCOMPARE(result.out, QFileInfo(output).absoluteFilePath() + QLatin1Char('\n'));
        QCOMPARE(FakeZylServer::readDocument(output), pages);
        QVERIFY2(result.err.isEmpty(), qPrintable(result.err));
    } else {
        QVERIFY(!QFileInfo::exists(output));
        QVERIFY2(result.err.contains(reason), qPrintable(result.err));
        if (exitCode == 1)
            QCOMPARE(result.err.count(QLatin1Char('\n')), 1);
    }
    QCOMPARE(FakeZylServer::readDocument(path("a.docx")), QStringList({"A1", "A2", "A3"}));
}

void tst_DocMerge::mergeJson()
{
    const Run result = run({"merge", "--json", "-o", "out.docx", "a.docx:2", "b.doc:2-"});
    QCOMPARE(result.exitCode, 0);
    const QJsonObject root = QJsonDocument::fromJson(result.out.toUtf8()).object();
    QCOMPARE(root.value("success").toBool(), true);
    QCOMPARE(root.value("result").toInt(), 0);
    QCOMPARE(root.value("output").toString(), QFileInfo(path("out.docx")).absoluteFilePath());
    const QJsonArray sources = root.value("sources").toArray();
    QCOMPARE(sources.size(), 2);
    QCOMPARE(sources.at(0).toObject().value("to").toInt(), 2);
    QVERIFY(sources.at(1).toObject().value("to").isNull());
}

void tst_DocMerge::existingOutputIsKept()
{
    QVERIFY(FakeZylServer::writeDocument(path("out.docx"), {"precious"}));
    const Run result = run({"merge", "-o", "out.docx", "a.docx", "b.doc"});
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.err.contains("already exists"));
    QCOMPARE(FakeZylServer::readDocument(path("out.docx")), QStringList{"precious"});
}

// A run that ends while another one waits with its working copy must leave that copy alone.
void tst_DocMerge::concurrentRunsKeepTheirFiles()
{
    // The second open is that of the first source's working copy, the target.
    QProcess held;
    QVERIFY(startHeld(held, QStringLiteral("Open:2"), {"merge", "-o", "first.docx", "a.docx", "b.doc"}));

    QProcess other;
    other.setProcessEnvironment(environment(QProcessEnvironment()));
    other.setWorkingDirectory(m_dir.path());
    other.start(QStringLiteral(DOCMERGE_PROGRAM), {"merge", "-o", "second.docx", "c.zyl:1", "b.doc:2"});
    QVERIFY(other.waitForFinished(30000));
    QCOMPARE(other.exitCode(), 0);
    QCOMPARE(FakeZylServer::readDocument(path("second.docx")), QStringList({"C1", "B2"}));
    QCOMPARE(workTrees(), QStringList{QString::number(held.processId())});

    release();
    QVERIFY(held.waitForFinished(30000));
    QCOMPARE(held.exitCode(), 0);
    QCOMPARE(FakeZylServer::readDocument(path("first.docx")), QStringList({"A1", "A2", "A3", "B1", "B2"}));
    QVERIFY(workTrees().isEmpty());
}

void tst_DocMerge::interrupt_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("hold");
    QTest::addColumn<int>("signalNumber");
    // Opens of a merge: the first copy, the target, the second copy, the third copy.
    QTest::newRow("merge_sigint_before_the_second_source") << "merge" << "Open:2" << int(SIGINT);
    QTest::newRow("merge_sigterm_before_the_second_source") << "merge" << "Open:2" << int(SIGTERM);
    // The merger no longer looks at the cancel here and saves: docmerge removes the file.
    QTest::newRow("merge_sigint_while_the_last_source_goes_in") << "merge" << "Open:4" << int(SIGINT);
    QTest::newRow("count_sigint_on_the_second_file") << "count" << "Open:2" << int(SIGINT);
}

void tst_DocMerge::interrupt()
{
    QFETCH(QString, command);
    QFETCH(QString, hold);
    QFETCH(int, signalNumber);
    const QStringList arguments = command == QLatin1String("merge")
        ? QStringList{"merge", "-o", "out.docx", "a.docx", "b.doc", "c.zyl:2"}
        : QStringList{"count", "a.docx", "b.doc", "c.zyl"};
    QProcess process;
    QVERIFY(startHeld(process, hold, arguments));

    QCOMPARE(::kill(pid_t(process.processId()), signalNumber), 0);
    // The signal is seen while the call still hangs; then the call goes on and the run winds down.
    QByteArray err;
    QTRY_VERIFY((err += process.readAllStandardError()).contains("interrupted"));
    release();
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signalNumber);
    QVERIFY(!QFileInfo::exists(path("out.docx")));
    QVERIFY(workTrees().isEmpty());
    if (command == QLatin1String("count"))
        QCOMPARE(QString::fromLocal8Bit(process.readAllStandardOutput()), QStringLiteral("3\ta.docx\n"));
}

QTEST_GUILESS_MAIN(tst_DocMerge)
#include "tst_docmerge.moc"
