#include <QtTest>

#include "vappcommandline.h"

class tst_VAppCommandLine : public QObject {
    Q_OBJECT
private slots:
    void validArguments_data();
    void validArguments();
    void invalidArguments_data();
    void invalidArguments();
    void helpRequest_data();
    void helpRequest();
    void defaultAddonPath_data();
    void defaultAddonPath();
};

void tst_VAppCommandLine::validArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("signedOut");
    QTest::addColumn<QString>("theme");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("addon");
    QTest::addColumn<QString>("usageLog");
    QTest::addColumn<QString>("screenshot");
    QTest::addColumn<int>("quitAfter");

    QTest::newRow("nothing_gives_defaults")
        << QStringList() << QStringList() << QString() << false << "light" << 0.0 << QString()
        << QString() << QString() << -1;
    QTest::newRow("files_kept_exactly_as_given")
        << QStringList{"rel/a.docx", "/abs/My|nbsp|Files/b.doc?from=desk", "c d.zyl", ""}
        << QStringList{"rel/a.docx", "/abs/My|nbsp|Files/b.doc?from=desk", "c d.zyl", ""}
        << QString() << false << "light" << 0.0 << QString() << QString() << QString() << -1;
    QTest::newRow("src_before_and_after_files")
        << QStringList{"a.doc", "--src", "desk", "b.doc"} << QStringList{"a.doc", "b.doc"}
        << "desk" << false << "light" << 0.0 << QString() << QString() << QString() << -1;
    QTest::newRow("file_after_double_dash_may_start_with_dash")
        << QStringList{"--", "--odd-name.docx"} << QStringList{"--odd-name.docx"} << QString()
        << false << "light" << 0.0 << QString() << QString() << QString() << -1;
    QTest::newRow("signed_out_dark_theme_and_scale")
        << QStringList{"--signed-out", "--theme", "dark", "--scale", "1.5"} << QStringList()
        << QString() << true << "dark" << 1.5 << QString() << QString() << QString() << -1;
    QTest::newRow("theme_name_case_ignored")
        << QStringList{"--theme", "Dark"} << QStringList() << QString() << false << "dark" << 0.0
        << QString() << QString() << QString() << -1;
    QTest::newRow("screenshot_without_delay_gets_default_delay")
        << QStringList{"--screenshot", "/tmp/s.png"} << QStringList() << QString() << false
        << "light" << 0.0 << QString() << QString() << "/tmp/s.png" << 2000;
    QTest::newRow("screenshot_with_delay")
        << QStringList{"--screenshot", "/tmp/s.png", "--quit-after", "3000"} << QStringList()
        << QString() << false << "light" << 0.0 << QString() << QString() << "/tmp/s.png" << 3000;
}

void tst_VAppCommandLine::validArguments()
{
    QFETCH(QStringList, args);
    VAppCommandLine commandLine;
    QVERIFY2(commandLine.parse(QStringList{"vapphost"} + args), qPrintable(commandLine.errorString()));
    const VAppCommandLine::Options &o = commandLine.options();
    QCOMPARE(o.helpRequested, false);
    QTEST(o.files, "files");
    QTEST(o.source, "source");
    QTEST(o.signedOut, "signedOut");
    QTEST(o.theme, "theme");
    QTEST(o.scale, "scale");
    QTEST(o.addonPath, "addon");
    QTEST(o.usageLogPath, "usageLog");
    QTEST(o.screenshotPath, "screenshot");
    QTEST(o.quitAfterMs, "quitAfter");
}

void tst_VAppCommandLine::invalidArguments_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("errorMentions");

    QTest::newRow("unknown_option") << QStringList{"--frobnicate"} << "frobnicate";
    QTest::newRow("src_without_value") << QStringList{"--src"} << "src";
    QTest::newRow("theme_unknown") << QStringList{"--theme", "blue"} << "blue";
    QTest::newRow("scale_not_a_number") << QStringList{"--scale", "big"} << "big";
    QTest::newRow("scale_zero") << QStringList{"--scale", "0"} << "scale";
    QTest::newRow("scale_negative") << QStringList{"--scale", "-2"} << "-2";
    QTest::newRow("scale_too_large") << QStringList{"--scale", "40"} << "40";
    QTest::newRow("quit_after_negative") << QStringList{"--quit-after", "-5"} << "-5";
    QTest::newRow("quit_after_not_a_number") << QStringList{"--quit-after", "soon"} << "soon";
    QTest::newRow("screenshot_empty_path") << QStringList{"--screenshot", ""} << "screenshot";
    QTest::newRow("addon_empty_path") << QStringList{"--addon="} << "addon";
    QTest::newRow("usage_log_empty_path") << QStringList{"--usage-log", ""} << "usage-log";
    QTest::newRow("drive_empty_path") << QStringList{"--drive", ""} << "drive";
}

void tst_VAppCommandLine::invalidArguments()
{
    QFETCH(QStringList, args);
    QFETCH(QString, errorMentions);
    VAppCommandLine commandLine;
    QVERIFY(!commandLine.parse(QStringList{"vapphost"} + args));
    QVERIFY2(commandLine.errorString().contains(errorMentions), qPrintable(commandLine.errorString()));
}

void tst_VAppCommandLine::helpRequest_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("help");

    QTest::newRow("long_help") << QStringList{"--help"} << true;
    QTest::newRow("short_help") << QStringList{"-h"} << true;
    QTest::newRow("help_wins_over_bad_value") << QStringList{"--theme", "blue", "--help"} << true;
    QTest::newRow("help_among_files") << QStringList{"a.doc", "--help", "b.doc"} << true;
    QTest::newRow("no_help") << QStringList{"a.doc"} << false;
}

void tst_VAppCommandLine::helpRequest()
{
    QFETCH(QStringList, args);
    QFETCH(bool, help);
    VAppCommandLine commandLine;
    QVERIFY(commandLine.parse(QStringList{"vapphost"} + args));
    QCOMPARE(commandLine.options().helpRequested, help);
}

void tst_VAppCommandLine::defaultAddonPath_data()
{
    QTest::addColumn<QString>("exeFolder");
    QTest::addColumn<QString>("expected");

    QTest::newRow("build_tree_bin") << "/work/build/bin" << "/work/build/lib/libvdocumentmerger.so";
    QTest::newRow("trailing_slash") << "/opt/app/bin/" << "/opt/app/lib/libvdocumentmerger.so";
    QTest::newRow("bin_at_root") << "/bin" << "/lib/libvdocumentmerger.so";
}

void tst_VAppCommandLine::defaultAddonPath()
{
    QFETCH(QString, exeFolder);
    QTEST(VAppCommandLine::defaultAddonPath(exeFolder), "expected");
}

QTEST_GUILESS_MAIN(tst_VAppCommandLine)
#include "tst_vappcommandline.moc"
