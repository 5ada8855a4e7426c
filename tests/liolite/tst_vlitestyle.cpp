#include <liolite/vdrawhelper.h>
#include <liolite/vlitelabel.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>
#include <liolite/vlitewidget.h>

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(QMargins)

class tst_VLiteStyle : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void scaledHelpers_data();
    void scaledHelpers();

    void setTheme_data();
    void setTheme();
    void themeSwitch_restylesShownWidgets();
    void ownerStyleSheet_data();
    void ownerStyleSheet();
};

void tst_VLiteStyle::cleanup()
{
    VLiteStyle::setScaleOverride(0);
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VLiteStyle::scaledHelpers_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("length");
    QTest::addColumn<double>("scaledLength");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("scaledSize");
    QTest::addColumn<QMargins>("margins");
    QTest::addColumn<QMargins>("scaledMargins");
    // Pixel sizes in looks are scaled too: VMStyleLabel is written with a 12px font.
    QTest::addColumn<int>("lookFontPixels");

    QTest::newRow("factor_1.25_truncates") << 1.25 << 3.0 << 3.75 << QSize(372, 7) << QSize(465, 8)
                                           << QMargins(28, 1, 3, 5) << QMargins(35, 1, 3, 6) << 15;
    QTest::newRow("factor_1.75_negative_truncates_toward_zero") << 1.75 << -3.0 << -5.25 << QSize(3, 5)
                                                               << QSize(5, 8) << QMargins(-3, 0, 0, 0)
                                                               << QMargins(-5, 0, 0, 0) << 21;
}

void tst_VLiteStyle::scaledHelpers()
{
    QFETCH(double, factor);
    QFETCH(double, length);
    QFETCH(double, scaledLength);
    QFETCH(QSize, size);
    QFETCH(QSize, scaledSize);
    QFETCH(QMargins, margins);
    QFETCH(QMargins, scaledMargins);

    VLiteStyle::setScaleOverride(factor);
    QCOMPARE(VLiteStyle::dpiScaled(length), scaledLength);
    QCOMPARE(VLiteStyle::dpiScaledSize(size.width(), size.height()), scaledSize);
    QCOMPARE(VLiteStyle::dpiScaledMargins(margins), scaledMargins);
    VLiteLabel label(QStringLiteral("page count"));
    label.applyThemeClass(QStringLiteral("VMStyleLabel"));
    label.ensurePolished();
    QTEST(label.font().pixelSize(), "lookFontPixels");
}

void tst_VLiteStyle::setTheme_data()
{
    QTest::addColumn<QStringList>("sequence");
    QTest::addColumn<QList<bool>>("accepted");
    QTest::addColumn<int>("signalCount");
    QTest::addColumn<QString>("finalTheme");

    QTest::newRow("same_theme_is_silent") << QStringList{"light"} << QList<bool>{true} << 0 << "light";
    QTest::newRow("dark_and_back") << QStringList{"dark", "light"} << QList<bool>{true, true} << 2 << "light";
    QTest::newRow("unknown_name_keeps_dark") << QStringList{"dark", "Dark"} << QList<bool>{true, false} << 1 << "dark";
}

void tst_VLiteStyle::setTheme()
{
    QFETCH(QStringList, sequence);
    QFETCH(QList<bool>, accepted);
    QFETCH(int, signalCount);
    QFETCH(QString, finalTheme);

    QSignalSpy spy(VLiteStyle::notifier(), &VLiteThemeNotifier::themeChanged);
    QVERIFY(spy.isValid());
    for (int i = 0; i < sequence.size(); ++i)
        QCOMPARE(VLiteStyle::setTheme(sequence[i]), accepted[i]);
    QCOMPARE(spy.count(), signalCount);
    QCOMPARE(VLiteStyle::themeName(), finalTheme);
}

void tst_VLiteStyle::themeSwitch_restylesShownWidgets()
{
    VLiteWidget area;
    area.resize(200, 100);
    area.applyThemeClass(QStringLiteral("VMStyleWidget"));
    auto* label = new VLiteLabel(QStringLiteral("Selected:"), &area);
    label->applyThemeClass(QStringLiteral("VMCommonText02_Label"));
    // Each widget keeps the class it was given, or its own.
    auto* failed = new VLiteLabel(QStringLiteral("read fail"), &area);
    failed->applyThemeClass(QStringLiteral("VMReadFail_Label"));
    auto* plain = new VLiteLabel(QStringLiteral("-"), &area);
    area.show();
    QVERIFY(QTest::qWaitForWindowExposed(&area));

    const QColor lightText = VDrawHelper::getColorFromTheme("VMCommonText02_Label", "text", QColor());
    QTRY_COMPARE(label->palette().color(QPalette::WindowText), lightText);
    const QColor lightBackground = area.grab().toImage().pixelColor(100, 80);

    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    const QColor darkText = VDrawHelper::getColorFromTheme("VMCommonText02_Label", "text", QColor());
    QVERIFY(darkText != lightText);
    QTRY_COMPARE(label->palette().color(QPalette::WindowText), darkText);
    const QColor darkBackground = area.grab().toImage().pixelColor(100, 80);
    QCOMPARE(darkBackground, VDrawHelper::getColorFromTheme("VMStyleWidget", "background", QColor()));
    QVERIFY(darkBackground.lightness() < lightBackground.lightness());
    QCOMPARE(VDrawHelper::getObjectThemeClassName(failed), QStringLiteral("VMReadFail_Label"));
    QCOMPARE(failed->palette().color(QPalette::WindowText),
             VDrawHelper::getColorFromTheme("VMReadFail_Label", "text", QColor()));
    QCOMPARE(plain->palette().color(QPalette::WindowText),
             VDrawHelper::getColorFromTheme("VLiteLabel", "text", QColor()));
}

void tst_VLiteStyle::ownerStyleSheet_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<bool>("ownerSheetKept");

    // steps: "owner" sets a sheet, "class:<name>" applies a class, "switch" toggles the theme.
    QTest::newRow("owner_sheet_survives_theme_switch") << "owner switch" << true;
    QTest::newRow("colour_only_class_keeps_owner_sheet") << "owner class:VMSpinBox switch" << true;
    QTest::newRow("class_with_look_replaces_owner_sheet_after_switch") << "owner class:VMStyleLabel switch" << false;
}

void tst_VLiteStyle::ownerStyleSheet()
{
    QFETCH(QString, steps);
    QFETCH(bool, ownerSheetKept);

    const QString ownerSheet = QStringLiteral("QLabel { color: #123456; }");
    VLiteLabel label(QStringLiteral("Selected:"));
    for (const QString& step : steps.split(QLatin1Char(' '))) {
        if (step == QLatin1String("owner"))
            label.setStyleSheet(ownerSheet);
        else if (step.startsWith(QLatin1String("class:")))
            label.applyThemeClass(step.mid(6));
        else if (step == QLatin1String("switch"))
            QVERIFY(VLiteStyle::setTheme(VLiteStyle::themeName() == QLatin1String("light") ? QStringLiteral("dark")
                                                                                          : QStringLiteral("light")));
    }
    label.ensurePolished();
    QCOMPARE(label.styleSheet() == ownerSheet, ownerSheetKept);
    if (ownerSheetKept)
        QCOMPARE(label.palette().color(QPalette::WindowText), QColor("#123456"));
    else
        QCOMPARE(label.palette().color(QPalette::WindowText),
                 VDrawHelper::getColorFromTheme(VDrawHelper::getObjectThemeClassName(&label), "text", QColor()));
}

QTEST_MAIN(tst_VLiteStyle)
#include "tst_vlitestyle.moc"
