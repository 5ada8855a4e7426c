#include <QColor>
#include <QRegularExpression>
#include <QtTest>

#include "host/liolite.h"
#include "shell/stylesheethelpers.h"

class tst_StyleSheetHelpers : public QObject {
    Q_OBJECT

private slots:
    void dpiScaled_data();
    void dpiScaled();

    void scrollBarPlaceholders();

    void themeColorDefaults_data();
    void themeColorDefaults();
};

void tst_StyleSheetHelpers::dpiScaled_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("expected");

    const QString sheet = QStringLiteral("QWidget{border:1px solid red;font-size:12px;border-radius:3px;}");
    QTest::newRow("factor_1.25_1_stays_3_becomes_4")
        << 1.25 << sheet << QStringLiteral("QWidget{border:1px solid red;font-size:15px;border-radius:4px;}");
    QTest::newRow("factor_1.5_halves_round_up")
        << 1.5 << sheet << QStringLiteral("QWidget{border:2px solid red;font-size:18px;border-radius:5px;}");
    QTest::newRow("capital_px_scaled_letters_kept")
        << 1.5 << QStringLiteral("a{margin:10PX 4Px;}") << QStringLiteral("a{margin:15PX 6Px;}");
    QTest::newRow("two_sizes_at_the_end")
        << 1.5 << QStringLiteral("margin:2px 4px") << QStringLiteral("margin:3px 6px");
    QTest::newRow("longer_number_shifts_following")
        << 2.0 << QStringLiteral("a:9px;b:99px;c:999px;") << QStringLiteral("a:18px;b:198px;c:1998px;");
    QTest::newRow("cut_unit_at_the_end_untouched")
        << 2.0 << QStringLiteral("a:3px;b:12p") << QStringLiteral("a:6px;b:12p");
    QTest::newRow("numbers_without_px_untouched")
        << 2.0 << QStringLiteral("a{font-weight:700;line-height:1.5em;width:3px;}")
        << QStringLiteral("a{font-weight:700;line-height:1.5em;width:6px;}");
}

void tst_StyleSheetHelpers::dpiScaled()
{
    QFETCH(double, factor);
    QFETCH(QString, sheet);
    QFETCH(QString, expected);

    const double previous = VLiteStyle::scaleOverride();
    auto restore = qScopeGuard([previous] { VLiteStyle::setScaleOverride(previous); });
    VLiteStyle::setScaleOverride(factor);
    QCOMPARE(dpiScaledStyleSheet(sheet), expected);
}

void tst_StyleSheetHelpers::scrollBarPlaceholders()
{
    // All numbers distinct, so a swap of two arguments shows.
    const QString background = QStringLiteral("#123456");
    const QString prefix = QStringLiteral("#list");
    const int thickness = 11, handleMargin = 2, endPadding = 7, radius = 5;
    const QString sheet = scrollBarStyleSheet(background, prefix, thickness, handleMargin, endPadding, radius);
    QVERIFY2(!sheet.contains(QRegularExpression(QStringLiteral("%\\d"))), qPrintable(sheet));
    QVERIFY(sheet.contains(QStringLiteral("max-width:%1px;").arg(thickness)));
    QVERIFY(sheet.contains(QStringLiteral("height:%1px;").arg(thickness)));
    QVERIFY(sheet.contains(QStringLiteral("padding-top:%1px;padding-bottom:%1px;").arg(endPadding)));
    QVERIFY(sheet.contains(QStringLiteral("margin-bottom:%1px;").arg(endPadding)));
    QVERIFY(sheet.contains(QStringLiteral("margin-right:%1px;").arg(handleMargin)));
    QVERIFY(sheet.contains(QStringLiteral("padding-left:%1px;padding-right:%1px;").arg(handleMargin)));
    QCOMPARE(sheet.count(QStringLiteral("border-radius: %1px;").arg(radius)), 2);
    QCOMPARE(sheet.count(QStringLiteral("background-color:%1;").arg(background)), 2);
    QVERIFY(sheet.startsWith(prefix + QStringLiteral(" QScrollBar:vertical")));
}

void tst_StyleSheetHelpers::themeColorDefaults_data()
{
    QTest::addColumn<QColor>("fallback");
    QTest::addColumn<QString>("expected");

    QTest::newRow("spin_box_border_default") << QColor(QStringLiteral("#D7D9DE")) << "rgba(215,217,222,255)";
    QTest::newRow("translucent_keeps_alpha") << QColor(1, 2, 3, 4) << "rgba(1,2,3,4)";
}

void tst_StyleSheetHelpers::themeColorDefaults()
{
    QFETCH(QColor, fallback);
    QFETCH(QString, expected);

    QCOMPARE(themeColorRgba(QStringLiteral("VMNoSuchThemeClass"), QStringLiteral("no-such-key"), fallback),
             expected);
}

QTEST_MAIN(tst_StyleSheetHelpers)
#include "tst_stylesheethelpers.moc"
