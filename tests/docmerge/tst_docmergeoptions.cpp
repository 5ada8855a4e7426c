#include <QTemporaryDir>
#include <QtTest>

#include <climits>

#include "consoleprogress.h"
#include "docmergeoptions.h"
#include "docmergerunner.h"
#include "mergesource.h"

using Command = DocMergeOptions::Command;
Q_DECLARE_METATYPE(DocMergeOptions::Command)

class tst_DocMergeOptions : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void mergeSource_data();
    void mergeSource();
    void fileNameWithColon();
    void parse_data();
    void parse();
    void buildTask_data();
    void buildTask();
    void progress_data();
    void progress();
    void progressLine_data();
    void progressLine();

private:
    QTemporaryDir m_dir;
};

void tst_DocMergeOptions::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

void tst_DocMergeOptions::mergeSource_data()
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
    QTest::newRow("to_below_from_is_left_to_the_merge") << "a.docx:5-3" << true << "a.docx" << 5 << 3;
    QTest::newRow("last_colon_counts") << "x:y/a.docx:2" << true << "x:y/a.docx" << 2 << 2;
    QTest::newRow("colon_without_range_is_part_of_the_name") << "notes:draft.docx" << true << "notes:draft.docx" << 1 << INT_MAX;
    QTest::newRow("page_0") << "a.docx:0" << false << "" << 0 << 0;
    QTest::newRow("from_0") << "a.docx:0-3" << false << "" << 0 << 0;
    QTest::newRow("to_0") << "a.docx:2-0" << false << "" << 0 << 0;
    QTest::newRow("open_start") << "a.docx:-3" << false << "" << 0 << 0;
    QTest::newRow("two_dashes") << "a.docx:1-2-3" << false << "" << 0 << 0;
    QTest::newRow("beyond_int") << "a.docx:99999999999" << false << "" << 0 << 0;
    QTest::newRow("range_without_file") << ":2-3" << false << "" << 0 << 0;
    QTest::newRow("empty") << "" << false << "" << 0 << 0;
}

void tst_DocMergeOptions::mergeSource()
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

void tst_DocMergeOptions::fileNameWithColon()
{
    // A file that really is called "a.docx:2" is taken whole, as long as "a.docx" does not exist.
    const QString odd = m_dir.filePath(QStringLiteral("a.docx:2"));
    QFile file(odd);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    MergeSource source;
    QString error;
    QVERIFY(MergeSource::parse(odd, &source, &error));
    QCOMPARE(source.path(), odd);
    QVERIFY(!source.hasRange());

    QFile plain(m_dir.filePath(QStringLiteral("a.docx")));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.close();
    QVERIFY(MergeSource::parse(odd, &source, &error));
    QCOMPARE(source.path(), m_dir.filePath(QStringLiteral("a.docx")));
    QCOMPARE(source.from(), 2);
}

void tst_DocMergeOptions::parse_data()
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
    QTest::newRow("merge_format_matches") << QStringList{"merge", "--format", "docx", "-o", "out.docx", "a", "b"}
                                          << Command::Merge << "out.docx" << 2 << false;
    QTest::newRow("merge_format_case_of_extension") << QStringList{"merge", "--format=doc", "-o", "OUT.DOC", "a", "b"}
                                                    << Command::Merge << "OUT.DOC" << 2 << false;
    QTest::newRow("merge_format_mismatch") << QStringList{"merge", "--format", "doc", "-o", "out.docx", "a", "b"}
                                           << Command::None << "" << 0 << false;
    QTest::newRow("merge_unknown_format") << QStringList{"merge", "--format", "pdf", "-o", "out.pdf", "a", "b"}
                                          << Command::None << "" << 0 << false;
    QTest::newRow("merge_output_of_other_kind") << QStringList{"merge", "-o", "out.pdf", "a", "b"} << Command::None << "" << 0 << false;
    QTest::newRow("merge_output_without_extension") << QStringList{"merge", "-o", "out", "a", "b"} << Command::None << "" << 0 << false;
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

void tst_DocMergeOptions::parse()
{
    QFETCH(QStringList, arguments);
    QFETCH(Command, command);
    QFETCH(QString, output);
    QFETCH(int, sources);
    QFETCH(bool, json);

    const DocMergeOptions options = DocMergeOptions::parse(arguments);
    QCOMPARE(options.command(), command);
    QCOMPARE(options.error().isEmpty(), command != Command::None);
    QCOMPARE(options.output(), command == Command::Merge ? output : options.output());
    QCOMPARE(options.sources().size(), sources);
    QCOMPARE(options.json(), json);
    if (command == Command::Count)
        QCOMPARE(options.files(), arguments.filter(QRegularExpression(QStringLiteral("^[^-]"))).mid(1));
}

void tst_DocMergeOptions::buildTask_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("convertFormat");
    QTest::addColumn<QString>("workSuffix");

    QTest::newRow("same_suffix") << QStringList{"Report.docx:2-3", "b.doc"} << "out.docx" << false << "docx";
    QTest::newRow("other_suffix") << QStringList{"Report.doc", "b.docx"} << "out.docx" << true << "doc";
    QTest::newRow("suffix_case_counts") << QStringList{"Report.docx", "b.docx"} << "out.DOCX" << true << "docx";
    QTest::newRow("zyl_from_docx") << QStringList{"Report.final.docx", "b.zyl:4-"} << "merged.zyl" << true << "docx";
}

void tst_DocMergeOptions::buildTask()
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

void tst_DocMergeOptions::progress_data()
{
    QTest::addColumn<int>("sources");
    QTest::addColumn<int>("init");
    QTest::addColumn<QList<int>>("steps");
    QTest::newRow("two_sources") << 2 << 33 << QList<int>{66, 99};
    QTest::newRow("three_sources") << 3 << 25 << QList<int>{49, 74, 99};
    QTest::newRow("four_sources") << 4 << 20 << QList<int>{39, 59, 79, 99};
}

void tst_DocMergeOptions::progress()
{
    QFETCH(int, sources);
    QFETCH(int, init);
    QFETCH(QList<int>, steps);
    QCOMPARE(DocMergeRunner::initShare(sources), init);
    QList<int> values;
    for (int index = 1; index <= sources; ++index)
        values << DocMergeRunner::progressValue(index, 100, sources);
    QCOMPARE(values, steps);
}

void tst_DocMergeOptions::progressLine_data()
{
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << 0 << "[----------]   0% x";
    QTest::newRow("half") << 55 << "[#####-----]  55% x";
    QTest::newRow("full") << 100 << "[##########] 100% x";
    QTest::newRow("clamped") << 150 << "[##########] 100% x";
}

void tst_DocMergeOptions::progressLine()
{
    QFETCH(int, percent);
    QFETCH(QString, line);
    QCOMPARE(ConsoleProgress::line(percent, QStringLiteral("x"), 10), line);
}

QTEST_GUILESS_MAIN(tst_DocMergeOptions)
#include "tst_docmergeoptions.moc"
