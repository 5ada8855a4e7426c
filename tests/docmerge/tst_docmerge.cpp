#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <climits>
#include <csignal>
#include <unistd.h>

#include "consoleprogress.h"
#include "docmergeoptions.h"
#include "docmergerun.h"
#include "docmergerunner.h"
#include "fakezylserver.h"
#include "mergesource.h"

using Command = DocMergeOptions::Command;
Q_DECLARE_METATYPE(DocMergeOptions::Command)

// docmerge: its command line, then the program itself against the automation-server double.
class tst_DocMerge : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void mergeSource_data();
    void mergeSource();
    void fileNameWithColon();
    void parse_data();
    void parse();
    void buildTask_data();
    void buildTask();
    void progress();

    void printed_data();
    void printed();
    void serverCannotBeStarted();
    void merge_data();
    void merge();
    void existingOutputIsKept();
    void concurrentRunsKeepTheirFiles();
    void interrupt_data();
    void interrupt();

private:
    DocMergeRun run(const QStringList &arguments, const QProcessEnvironment &extra = QProcessEnvironment());
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

void tst_DocMerge::mergeSource_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");

    QTest::newRow("no_range_is_whole_document") << "a.docx" << true << "a.docx" << 1 << INT_MAX;
    QTest::newRow("from_to") << "a.docx:2-9" << true << "a.docx" << 2 << 9;
    QTest::newRow("from_to_the_end") << "a.docx:3-" << true << "a.docx" << 3 << INT_MAX;
    QTest::newRow("one_page") << "dir/a.doc:7" << true << "dir/a.doc" << 7 << 7;
    QTest::newRow("last_colon_counts") << "x:y/a.docx:2" << true << "x:y/a.docx" << 2 << 2;
    QTest::newRow("colon_without_range_is_part_of_the_name") << "notes:draft.docx" << true << "notes:draft.docx" << 1 << INT_MAX;
    QTest::newRow("from_0") << "a.docx:0-3" << false << "" << 0 << 0;
    QTest::newRow("to_0") << "a.docx:2-0" << false << "" << 0 << 0;
    QTest::newRow("open_start") << "a.docx:-3" << false << "" << 0 << 0;
    QTest::newRow("beyond_int") << "a.docx:99999999999" << false << "" << 0 << 0;
    QTest::newRow("range_without_file") << ":2-3" << false << "" << 0 << 0;
    QTest::newRow("empty") << "" << false << "" << 0 << 0;
}

void tst_DocMerge::mergeSource()
{
    QFETCH(QString, argument);
    QFETCH(bool, valid);
    QFETCH(QString, path);
    QFETCH(int, from);
    QFETCH(int, to);

    MergeSource source;
    QString error;
    QCOMPARE(MergeSource::parse(argument, &source, &error), valid);
    if (!valid) {
        QVERIFY(!error.isEmpty());
        return;
    }
    QVERIFY(error.isEmpty());
    QCOMPARE(source.path(), path);
    QCOMPARE(source.from(), from);
    QCOMPARE(source.to(), to);
}

void tst_DocMerge::fileNameWithColon()
{
    // A file that really is called "odd.docx:2" is taken whole, as long as "odd.docx" does not exist.
    const QString odd = path(QStringLiteral("odd.docx:2"));
    QVERIFY(FakeZylServer::writeDocument(odd, {QString()}));

    MergeSource source;
    QString error;
    QVERIFY(MergeSource::parse(odd, &source, &error));
    QCOMPARE(source.path(), odd);
    QVERIFY(!source.hasRange());

    QVERIFY(FakeZylServer::writeDocument(path(QStringLiteral("odd.docx")), {QString()}));
    QVERIFY(MergeSource::parse(odd, &source, &error));
    QCOMPARE(source.path(), path(QStringLiteral("odd.docx")));
    QCOMPARE(source.from(), 2);
}

void tst_DocMerge::parse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Command>("command");
    QTest::addColumn<QString>("output");
    QTest::addColumn<int>("sources");
    QTest::addColumn<bool>("json");

    QTest::newRow("count") << QStringList{"count", "a.docx", "b.doc"} << Command::Count << "" << 0 << false;
    QTest::newRow("count_json_anywhere") << QStringList{"count", "a.docx", "--json"} << Command::Count << "" << 0 << true;
    QTest::newRow("count_without_files") << QStringList{"count"} << Command::None << "" << 0 << false;
    QTest::newRow("count_with_output") << QStringList{"count", "-o", "x.docx", "a.docx"} << Command::None << "" << 0 << false;
    QTest::newRow("merge") << QStringList{"merge", "-o", "out.docx", "a.docx:1-2", "b.doc"} << Command::Merge << "out.docx" << 2 << false;
    QTest::newRow("merge_output_joined") << QStringList{"merge", "--output=out.zyl", "a.docx", "b.doc", "c.zyl:3"}
                                         << Command::Merge << "out.zyl" << 3 << false;
    QTest::newRow("merge_short_output_joined") << QStringList{"-oout.doc", "merge", "a.docx", "b.doc"} << Command::Merge << "out.doc" << 2 << false;
    QTest::newRow("merge_format_case_of_extension") << QStringList{"merge", "--format=doc", "-o", "OUT.DOC", "a", "b"}
                                                    << Command::Merge << "OUT.DOC" << 2 << false;
    QTest::newRow("merge_format_mismatch") << QStringList{"merge", "--format", "doc", "-o", "out.docx", "a", "b"}
                                           << Command::None << "" << 0 << false;
    QTest::newRow("merge_unknown_format") << QStringList{"merge", "--format", "pdf", "-o", "out.pdf", "a", "b"}
                                          << Command::None << "" << 0 << false;
    QTest::newRow("merge_output_of_other_kind") << QStringList{"merge", "-o", "out.pdf", "a", "b"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_without_output") << QStringList{"merge", "a.docx", "b.doc"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_output_twice") << QStringList{"merge", "-o", "x.docx", "-o", "y.docx", "a", "b"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_dangling_output") << QStringList{"merge", "a", "b", "-o"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_one_file") << QStringList{"merge", "-o", "out.docx", "a.docx"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_bad_range") << QStringList{"merge", "-o", "out.docx", "a.docx:0", "b.doc"} << Command::None << "" << 0 << false;
    QTest::newRow("dash_dash_ends_options") << QStringList{"merge", "-o", "out.docx", "--", "-a.docx", "b.doc"}
                                            << Command::Merge << "out.docx" << 2 << false;
    QTest::newRow("unknown_option") << QStringList{"count", "--fast", "a"} << Command::None << "" << 0 << false;
    QTest::newRow("unknown_command") << QStringList{"split", "a"} << Command::None << "" << 0 << false;
    QTest::newRow("nothing") << QStringList() << Command::None << "" << 0 << false;
    QTest::newRow("help_wins") << QStringList{"merge", "--help"} << Command::Help << "" << 0 << false;
    QTest::newRow("version") << QStringList{"--version"} << Command::Version << "" << 0 << false;
}

void tst_DocMerge::parse()
{
    QFETCH(QStringList, arguments);
    QFETCH(Command, command);
    QFETCH(QString, output);
    QFETCH(int, sources);
    QFETCH(bool, json);

    const DocMergeOptions options = DocMergeOptions::parse(arguments);
    QCOMPARE(options.command(), command);
    QCOMPARE(options.error().isEmpty(), command != Command::None);
    if (command == Command::Merge)
        QCOMPARE(options.output(), output);
    QCOMPARE(options.sources().size(), sources);
    QCOMPARE(options.json(), json);
    if (command == Command::Count)
        QCOMPARE(options.files(), arguments.filter(QRegularExpression(QStringLiteral("^[^-]"))).mid(1));
}

void tst_DocMerge::buildTask_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("convertFormat");
    QTest::addColumn<QString>("workSuffix");

    QTest::newRow("same_suffix") << QStringList{"Report.docx:2-3", "b.doc"} << "out.docx" << false << "docx";
    QTest::newRow("suffix_case_counts") << QStringList{"Report.docx", "b.docx"} << "out.DOCX" << true << "docx";
    QTest::newRow("zyl_from_docx") << QStringList{"Report.final.docx", "b.zyl:4-"} << "merged.zyl" << true << "docx";
}

void tst_DocMerge::buildTask()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, output);
    QFETCH(bool, convertFormat);
    QFETCH(QString, workSuffix);

    QList<MergeSource> sources;
    for (const QString &argument : arguments) {
        MergeSource source;
        QString error;
        QVERIFY(MergeSource::parse(argument, &source, &error));
        sources << source;
    }
    const MergeTask task = DocMergeRunner::buildTask(sources, output);
    QCOMPARE(task.items.size(), sources.size());
    for (int i = 0; i < sources.size(); ++i) {
        QCOMPARE(task.items.at(i).from, sources.at(i).from());
        QCOMPARE(task.items.at(i).to, sources.at(i).to());
        QCOMPARE(task.items.at(i).filePath, QFileInfo(sources.at(i).path()).absoluteFilePath());
    }
    QCOMPARE(task.outputPath, QFileInfo(output).absoluteFilePath());
    QCOMPARE(task.convertFormat, convertFormat);

    // The working copy lies in the "mergedest" folder, named after the first source, and is new.
    const QFileInfo work(task.workPath);
    QCOMPARE(work.dir().dirName(), QStringLiteral("mergedest"));
    QVERIFY(work.completeBaseName().startsWith(QFileInfo(sources.first().path()).completeBaseName() + QLatin1Char('_')));
    QCOMPARE(work.suffix(), workSuffix);
    QVERIFY(!work.exists());
}

void tst_DocMerge::progress()
{
    // Three sources: a quarter before the first, one short of full after the last.
    QCOMPARE(DocMergeRunner::initShare(3), 25);
    QList<int> values;
    for (int index = 1; index <= 3; ++index)
        values << DocMergeRunner::progressValue(index, 100, 3);
    QCOMPARE(values, (QList<int>{49, 74, 99}));
    QCOMPARE(ConsoleProgress::line(55, QStringLiteral("x"), 10), QStringLiteral("[#####-----]  55% x"));
    QCOMPARE(ConsoleProgress::line(150, QStringLiteral("x"), 10), QStringLiteral("[##########] 100% x"));
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

DocMergeRun tst_DocMerge::run(const QStringList &arguments, const QProcessEnvironment &extra)
{
    DocMergeRun result = runDocMerge(arguments, m_dir.path(), environment(extra), 60000);
    // The working folders go with every run.
    if (!workTrees().isEmpty())
        result.exitCode = -2;
    return result;
}

void tst_DocMerge::printed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("out"); // with --json compared as JSON, OUT standing for out.docx's full path

    QTest::newRow("count") << QStringList{"count", "a.docx", "b.doc", "c.zyl"} << 0 << "3\ta.docx\n2\tb.doc\n4\tc.zyl\n";
    QTest::newRow("count_one_missing") << QStringList{"count", "a.docx", "gone.docx", "b.doc"} << 1
                                       << "3\ta.docx\nfail\tgone.docx\n2\tb.doc\n";
    QTest::newRow("count_same_file_twice") << QStringList{"count", "b.doc", "./b.doc"} << 0 << "2\tb.doc\n2\t./b.doc\n";
    QTest::newRow("count_json") << QStringList{"count", "--json", "a.docx", "gone.doc"} << 1
                                << R"({"command": "count", "success": false, "files": [
                                      {"path": "a.docx", "success": true, "pages": 3},
                                      {"path": "gone.doc", "success": false, "pages": null}]})";
    QTest::newRow("merge_json") << QStringList{"merge", "--json", "-o", "out.docx", "a.docx:2", "b.doc:2-"} << 0
                                << R"({"command": "merge", "success": true, "result": 0, "output": "OUT", "sources": [
                                      {"path": "a.docx", "from": 2, "to": 2}, {"path": "b.doc", "from": 2, "to": null}]})";
}

void tst_DocMerge::printed()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, out);

    const DocMergeRun result = run(arguments);
    QCOMPARE(result.exitCode, exitCode);
    if (!arguments.contains(QStringLiteral("--json"))) {
        QCOMPARE(result.out, out);
        return;
    }
    const auto compact = [](const QString &text) {
        return QJsonDocument::fromJson(text.toUtf8()).toJson(QJsonDocument::Compact);
    };
    QVERIFY(!compact(out).isEmpty());
    QCOMPARE(compact(result.out), compact(out.replace(QStringLiteral("OUT"), path("out.docx"))));
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

    const DocMergeRun counted = run({"count", "a.docx", "b.doc"}, extra);
    QCOMPARE(counted.exitCode, 1);
    QCOMPARE(counted.out, QStringLiteral("fail\ta.docx\nfail\tb.doc\n"));
    QVERIFY2(counted.err.contains("cannot be started"), qPrintable(counted.err));

    const DocMergeRun merged = run({"merge", "-o", "out.docx", "a.docx", "b.doc"}, extra);
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
    QTest::newRow("into_a_new_folder") << QStringList{"-o", "sub/dir/out.docx", "a.docx:1", "b.doc:1"}
                                       << 0 << QStringList{"A1", "B1"} << "";
    QTest::newRow("from_past_the_end") << QStringList{"-o", "out.docx", "a.docx:1", "b.doc:3-4"}
                                       << 1 << QStringList() << "b.doc has 2 page(s)";
    QTest::newRow("to_below_from") << QStringList{"-o", "out.docx", "a.docx:3-2", "b.doc"}
                                   << 1 << QStringList() << "ends before it starts";
    QTest::newRow("missing_source") << QStringList{"-o", "out.docx", "a.docx", "gone.doc"}
                                    << 1 << QStringList() << "no such file: gone.doc";
    QTest::newRow("usage_error") << QStringList{"-o", "out.docx", "a.docx"} << 2 << QStringList() << "Usage:";
}

void tst_DocMerge::merge()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QStringList, pages);
    QFETCH(QString, reason);
    const QString output = path(arguments.at(arguments.indexOf("-o") + 1));

    const DocMergeRun result = run(QStringList{"merge"} + arguments);
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
}

void tst_DocMerge::existingOutputIsKept()
{
    QVERIFY(FakeZylServer::writeDocument(path("out.docx"), {"precious"}));
    const DocMergeRun result = run({"merge", "-o", "out.docx", "a.docx", "b.doc"});
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

    // Not run(): that one wants no working tree left at all.
    const DocMergeRun other = runDocMerge({"merge", "-o", "second.docx", "c.zyl:1", "b.doc:2"}, m_dir.path(),
                                          environment(QProcessEnvironment()), 30000);
    QCOMPARE(other.exitCode, 0);
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
