#include <QtTest>

#include "vappcommandline.h"

class tst_VAppCommandLine : public QObject {
    Q_OBJECT
private slots:
    void validArguments_data();
    void validArguments();
    void invalidArguments_data();
    void invalidArguments();
};

void tst_VAppCommandLine::validArguments_data()
{
    QTest::addColumn<QStringList>("args");
    // Only the options that differ from a plain start.
    QTest::addColumn<QVariantMap>("expected");

    const QStringList odd{"rel/a.docx", "/abs/My|nbsp|Files/b.doc?from=desk", "c d.zyl", ""};
    QTest::newRow("nothing_gives_defaults") << QStringList() << QVariantMap();
    QTest::newRow("files_kept_exactly_as_given") << odd << QVariantMap{{"files", odd}};
    QTest::newRow("src_before_and_after_files")
        << QStringList{"a.doc", "--src", "desk", "b.doc"} << QVariantMap{{"files", QStringList{"a.doc", "b.doc"}}, {"source", "desk"}};
    QTest::newRow("file_after_double_dash_may_start_with_dash")
        << QStringList{"--", "--odd-name.docx"} << QVariantMap{{"files", QStringList{"--odd-name.docx"}}};
    QTest::newRow("signed_out_dark_theme_and_scale") << QStringList{"--signed-out", "--theme", "dark", "--scale", "1.5"}
                                                     << QVariantMap{{"signedOut", true}, {"theme", "dark"}, {"scale", 1.5}};
    QTest::newRow("theme_name_case_ignored") << QStringList{"--theme", "Dark"} << QVariantMap{{"theme", "dark"}};
    QTest::newRow("screenshot_without_delay_gets_default_delay")
        << QStringList{"--screenshot", "/tmp/s.png"} << QVariantMap{{"screenshot", "/tmp/s.png"}, {"quitAfter", 2000}};
    QTest::newRow("screenshot_with_delay") << QStringList{"--screenshot", "/tmp/s.png", "--quit-after", "3000"}
                                           << QVariantMap{{"screenshot", "/tmp/s.png"}, {"quitAfter", 3000}};
    QTest::newRow("short_help_wins_over_bad_value") << QStringList{"--theme", "blue", "-h"} << QVariantMap{{"help", true}};
}

void tst_VAppCommandLine::validArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QVariantMap, expected);
    VAppCommandLine commandLine;
    QVERIFY2(commandLine.parse(QStringList{"vapphost"} + args), qPrintable(commandLine.errorString()));
    const VAppCommandLine::Options &o = commandLine.options();
    QCOMPARE(o.helpRequested, expected.value("help", false).toBool());
    if (o.helpRequested)
        return;
    QCOMPARE(o.files, expected.value("files").toStringList());
    QCOMPARE(o.source, expected.value("source").toString());
    QCOMPARE(o.signedOut, expected.value("signedOut", false).toBool());
    QCOMPARE(o.theme, expected.value("theme", "light").toString());
    QCOMPARE(o.scale, expected.value("scale", 0.0).toDouble());
    QCOMPARE(o.screenshotPath, expected.value("screenshot").toString());
    QCOMPARE(o.quitAfterMs, expected.value("quitAfter", -1).toInt());
}

void tst_VAppCommandLine::invalidArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("errorMentions");

    QTest::newRow("unknown_option") << QStringList{"--frobnicate"} << "frobnicate";
    QTest::newRow("theme_unknown") << QStringList{"--theme", "blue"} << "blue";
    QTest::newRow("scale_not_a_number") << QStringList{"--scale", "big"} << "big";
    QTest::newRow("scale_zero") << QStringList{"--scale", "0"} << "scale";
    QTest::newRow("scale_too_large") << QStringList{"--scale", "40"} << "40";
    QTest::newRow("quit_after_negative") << QStringList{"--quit-after", "-5"} << "-5";
    QTest::newRow("quit_after_not_a_number") << QStringList{"--quit-after", "soon"} << "soon";
    QTest::newRow("addon_empty_path") << QStringList{"--addon="} << "addon";
}

void tst_VAppCommandLine::invalidArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QString, errorMentions);
    VAppCommandLine commandLine;
    QVERIFY(!commandLine.parse(QStringList{"vapphost"} + args));
    QVERIFY2(commandLine.errorString().contains(errorMentions), qPrintable(commandLine.errorString()));
}

QTEST_GUILESS_MAIN(tst_VAppCommandLine)
#include "tst_vappcommandline.moc"
