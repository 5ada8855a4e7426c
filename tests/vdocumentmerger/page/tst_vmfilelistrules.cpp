#include <QTemporaryDir>
#include <QtTest>

#include "page/vmfilelistrules.h"

using Params = QHash<QString, QString>;
using Facts = VMFileListRules::RowFacts;

Q_DECLARE_METATYPE(Params)
Q_DECLARE_METATYPE(QList<MergeItem>)
Q_DECLARE_METATYPE(QList<Facts>)

class tst_VMFileListRules : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void acceptedKeys_data();
    void acceptedKeys();
    void cleanImportArgument_data();
    void cleanImportArgument();
    void outputPath_data();
    void outputPath();
    void progress_data();
    void progress();
    void addFileParams_data();
    void addFileParams();
    void exportParams_data();
    void exportParams();

private:
    QString path(const QString &name) const { return m_dir.path() + QLatin1Char('/') + name; }
    void touch(const QString &name)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }

    QTemporaryDir m_dir;
};

void tst_VMFileListRules::initTestCase()
{
    QVERIFY(m_dir.isValid());
    touch(QStringLiteral("a.doc"));
    touch(QStringLiteral("A.doc"));
    touch(QStringLiteral("b.docx"));
    QVERIFY(QFile::link(path(QStringLiteral("b.docx")), path(QStringLiteral("link.docx"))));
    QVERIFY(QDir(m_dir.path()).mkdir(QStringLiteral("sub")));
    touch(QStringLiteral("Report.docx"));
    touch(QStringLiteral("Report(1).docx"));
}

void tst_VMFileListRules::acceptedKeys_data()
{
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QStringList>("candidates");
    QTest::addColumn<QStringList>("accepted");

    const QString a = path(QStringLiteral("a.doc"));
    const QString upperA = path(QStringLiteral("A.doc"));
    const QString b = path(QStringLiteral("b.docx"));
    QTest::newRow("names_differing_in_case_are_two_files")
        << QStringList{a} << QStringList{upperA} << QStringList{upperA};
    QTest::newRow("same_path_twice_in_one_batch") << QStringList() << QStringList{a, a} << QStringList{a};
    QTest::newRow("dotted_path_names_a_listed_file")
        << QStringList{a} << QStringList{path(QStringLiteral("sub/../a.doc"))} << QStringList();
    QTest::newRow("link_to_a_listed_file")
        << QStringList{b} << QStringList{path(QStringLiteral("link.docx"))} << QStringList();
    QTest::newRow("missing_files_are_kept_by_exact_path")
        << QStringList{path(QStringLiteral("gone.doc"))}
        << QStringList{path(QStringLiteral("Gone.doc")), path(QStringLiteral("gone.doc"))}
        << QStringList{path(QStringLiteral("Gone.doc"))};
}

void tst_VMFileListRules::acceptedKeys()
{
    QFETCH(QStringList, existing);
    QFETCH(QStringList, candidates);
    QFETCH(QStringList, accepted);
    QCOMPARE(VMFileListRules::acceptedKeys(existing, candidates), accepted);
}

void tst_VMFileListRules::cleanImportArgument_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("cleaned");

    QTest::newRow("space_and_query") << "/home/u/My|nbsp|Files/report.doc?from=desk" << "/home/u/My Files/report.doc";
    QTest::newRow("query_at_first_character_kept") << "?x.doc" << "?x.doc";
    QTest::newRow("cut_at_first_question_mark") << "/a.doc?b?c" << "/a.doc";
}

void tst_VMFileListRules::cleanImportArgument()
{
    QFETCH(QString, argument);
    QFETCH(QString, cleaned);
    QCOMPARE(VMFileListRules::cleanImportArgument(argument), cleaned);
    // Arguments that clean to nothing are dropped from a list.
    QCOMPARE(VMFileListRules::cleanImportArguments({argument, QString()}), QStringList{cleaned});
}

void tst_VMFileListRules::outputPath_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("location");
    QTest::addColumn<QString>("expected");

    const QString dir = m_dir.path();
    QTest::newRow("free_name") << dir << "Merged" << 0 << dir + "/Merged.docx";
    QTest::newRow("first_two_taken") << dir << "Report" << 0 << dir + "/Report(2).docx";
    QTest::newRow("custom_folder_with_trailing_slash") << dir + "/" << "Merged" << 1 << dir + "/Merged.docx";
    QTest::newRow("cloud_dated_and_unnumbered") << dir << "Report" << 2 << dir + "/Report_20261123224501.docx";
}

void tst_VMFileListRules::outputPath()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QFETCH(int, location);
    QFETCH(QString, expected);
    const QDateTime now(QDate(2026, 11, 23), QTime(22, 45, 1));
    QCOMPARE(VMFileListRules::outputPath(folder, name, QStringLiteral("docx"), location, now), expected);
}

void tst_VMFileListRules::progress_data()
{
    QTest::addColumn<int>("items");
    QTest::addColumn<int>("initShare");
    QTest::addColumn<QList<int>>("steps");

    QTest::newRow("two_items") << 2 << 33 << QList<int>{66, 99};
    QTest::newRow("three_items") << 3 << 25 << QList<int>{49, 74, 99};
    QTest::newRow("four_items") << 4 << 20 << QList<int>{39, 59, 79, 99};
}

void tst_VMFileListRules::progress()
{
    QFETCH(int, items);
    QFETCH(int, initShare);
    QFETCH(QList<int>, steps);
    QCOMPARE(VMFileListRules::initShare(items), initShare);
    for (int index = 1; index <= items; ++index)
        QCOMPARE(VMFileListRules::progressValue(index, 100, items, initShare, 1), steps.at(index - 1));
}

void tst_VMFileListRules::addFileParams_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<QList<Facts>>("rows");
    QTest::addColumn<Params>("expected");

    QTest::newRow("drop_one_counted_one_unreadable")
        << 2 << QList<Facts>{{"/d/A.doc", true, 3}, {"/d/b.v1.docx", false, 0}}
        << Params{{"mode", "drop"}, {"num", "2"}, {"format", "doc,docx"}, {"page_num", "3,-"},
                  {"filename", "A|b.v1"}};
    QTest::newRow("unknown_origin_has_no_mode")
        << 7 << QList<Facts>{{"/d/a.docx", true, 1}}
        << Params{{"num", "1"}, {"format", "docx"}, {"page_num", "1"}, {"filename", "a"}};
}

void tst_VMFileListRules::addFileParams()
{
    QFETCH(int, origin);
    QFETCH(QList<Facts>, rows);
    QFETCH(Params, expected);
    QCOMPARE(VMFileListRules::addFileParams(origin, rows), expected);
}

void tst_VMFileListRules::exportParams_data()
{
    QTest::addColumn<QList<MergeItem>>("items");
    QTest::addColumn<QList<Facts>>("rows");
    QTest::addColumn<int>("location");
    QTest::addColumn<Params>("expected");

    const QList<MergeItem> two{{2, 4, "/d/A.doc"}, {1, 10, "/d/B.docx"}};
    QTest::newRow("custom_folder")
        << two << QList<Facts>{{"/d/A.doc", true, 5}, {"/d/B.docx", true, 10}} << 1
        << Params{{"total_num", "2"}, {"page_total_num", "5,10"}, {"page_num", "3,10"},
                  {"page_range", "2-4,1-10"}, {"total_page_num", "13"}, {"operation_time", "7"},
                  {"save_type", "customize"}, {"format", "zyl"}, {"filename", "A|B"}};
    QTest::newRow("first_row_gone_keeps_the_separator")
        << two << QList<Facts>{Facts(), {"/d/B.docx", true, 10}} << 2
        << Params{{"total_num", "2"}, {"page_total_num", ",10"}, {"page_num", ",10"},
                  {"page_range", ",1-10"}, {"total_page_num", "10"}, {"operation_time", "7"},
                  {"save_type", "cloud"}, {"format", "zyl"}, {"filename", "|B"}};
    QTest::newRow("unknown_location_has_no_save_type")
        << two << QList<Facts>{{"/d/A.doc", true, 5}, Facts()} << 5
        << Params{{"total_num", "2"}, {"page_total_num", "5"}, {"page_num", "3"}, {"page_range", "2-4"},
                  {"total_page_num", "3"}, {"operation_time", "7"}, {"format", "zyl"}, {"filename", "A"}};
}

void tst_VMFileListRules::exportParams()
{
    QFETCH(QList<MergeItem>, items);
    QFETCH(QList<Facts>, rows);
    QFETCH(int, location);
    QFETCH(Params, expected);
    QCOMPARE(VMFileListRules::exportParams(items, rows, 7, location, QStringLiteral("/out/Merged.zyl")), expected);
}

QTEST_GUILESS_MAIN(tst_VMFileListRules)
#include "tst_vmfilelistrules.moc"
