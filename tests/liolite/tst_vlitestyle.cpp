#include <liolite/vdrawhelper.h>
#include <liolite/vlitelabel.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitethemenotifier.h>
#include <liolite/vlitewidget.h>
#include <liolite/yrtdirs.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtTest>
#include <QWidget>

namespace {

// Average colour of the icon's opaque pixels, to tell which image a mode shows.
QColor inkOf(const QIcon& icon, QIcon::Mode mode)
{
    const QImage image = icon.pixmap(QSize(32, 32), mode).toImage().convertToFormat(QImage::Format_ARGB32);
    qint64 r = 0, g = 0, b = 0, n = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (c.alpha() < 250)
                continue;
            r += c.red();
            g += c.green();
            b += c.blue();
            ++n;
        }
    }
    return n ? QColor(int(r / n), int(g / n), int(b / n)) : QColor();
}

} // namespace

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

    void loadIcon_modes_data();
    void loadIcon_modes();
    void loadIcon_imagesPerModeAndTheme();
    void iconSetsUsedByTheAddOn();
    void spinBoxArrowImages_data();
    void spinBoxArrowImages();
    void getColorFromTheme();
    void themesDefineTheSameClassesAndKeys();
    void getObjectThemeClassName();
    void checkCleanSurface();

    void resources_besideLibraryFolder();
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
    QCOMPARE(failed->palette().color(QPalette::WindowText),
             VDrawHelper::getColorFromTheme("VMReadFail_Label", "text", QColor()));
    QCOMPARE(plain->palette().color(QPalette::WindowText),
             VDrawHelper::getColorFromTheme("VLiteLabel", "text", QColor()));
}

void tst_VLiteStyle::ownerStyleSheet_data()
{
    // Applied after the owner's sheet is set and before the theme switch; empty: none.
    QTest::addColumn<QString>("themeClass");
    QTest::addColumn<bool>("ownerSheetKept");

    QTest::newRow("owner_sheet_survives_theme_switch") << "" << true;
    QTest::newRow("colour_only_class_keeps_owner_sheet") << "VMSpinBox" << true;
    QTest::newRow("class_with_look_replaces_owner_sheet_after_switch") << "VMStyleLabel" << false;
}

void tst_VLiteStyle::ownerStyleSheet()
{
    QFETCH(QString, themeClass);
    QFETCH(bool, ownerSheetKept);

    const QString ownerSheet = QStringLiteral("QLabel { color: #123456; }");
    VLiteLabel label(QStringLiteral("Selected:"));
    label.setStyleSheet(ownerSheet);
    if (!themeClass.isEmpty())
        label.applyThemeClass(themeClass);
    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    label.ensurePolished();
    QCOMPARE(label.styleSheet() == ownerSheet, ownerSheetKept);
    if (ownerSheetKept)
        QCOMPARE(label.palette().color(QPalette::WindowText), QColor("#123456"));
    else
        QCOMPARE(label.palette().color(QPalette::WindowText),
                 VDrawHelper::getColorFromTheme(VDrawHelper::getObjectThemeClassName(&label), "text", QColor()));
}

void tst_VLiteStyle::loadIcon_modes_data()
{
    QTest::addColumn<QString>("iconSet");
    // Which of Normal, Active, Selected, Disabled have an image of their own; none: a null icon.
    QTest::addColumn<QString>("own");

    QTest::newRow("one_name") << "vmsort_button_normal" << "1000";
    QTest::newRow("three_names_trailing_separator") << "vmreload_normal;vmreload_hover;vmreload_click;" << "1110";
    QTest::newRow("empty_hover_name") << "vmmore_normal;;vmmore_click" << "1010";
    QTest::newRow("empty_normal_name") << ";vmmore_hover" << "0100";
    QTest::newRow("names_with_spaces") << " vmmore_normal ; vmmore_hover " << "1100";
    QTest::newRow("fifth_name_ignored") << "vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;vmmore_normal" << "1111";
    QTest::newRow("unknown_name") << "no_such_image" << "0000";
}

void tst_VLiteStyle::loadIcon_modes()
{
    QFETCH(QString, iconSet);
    QFETCH(QString, own);

    const QIcon icon = VDrawHelper::loadIcon(iconSet);
    QCOMPARE(icon.isNull(), own == QLatin1String("0000"));
    const QList<QIcon::Mode> modes{QIcon::Normal, QIcon::Active, QIcon::Selected, QIcon::Disabled};
    for (int i = 0; i < modes.size(); ++i) {
        const bool hasOwn = own[i] == QLatin1Char('1');
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::Off).isEmpty(), hasOwn);
        // The state does not choose the image: checked boxes paint with On.
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::On).isEmpty(), hasOwn);
    }
    if (own.startsWith(QLatin1Char('1')))
        QVERIFY(!icon.pixmap(QSize(16, 16)).isNull());
}

void tst_VLiteStyle::loadIcon_imagesPerModeAndTheme()
{
    // Each mode of the four-name set has its own colour; a mode without an image shows Normal's.
    const QIcon full = VDrawHelper::loadIcon(
        QStringLiteral("vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable"));
    const QColor normal = inkOf(full, QIcon::Normal);
    const QColor hover = inkOf(full, QIcon::Active);
    const QColor pressed = inkOf(full, QIcon::Selected);
    QVERIFY(normal.isValid());
    QVERIFY(normal != hover);
    QVERIFY(hover != pressed);
    const QIcon partial = VDrawHelper::loadIcon(QStringLiteral("vmmore_normal;;vmmore_click"));
    QCOMPARE(inkOf(partial, QIcon::Active), normal);
    QCOMPARE(inkOf(partial, QIcon::Selected), pressed);
    QVERIFY(!partial.pixmap(QSize(16, 16), QIcon::Disabled).isNull());

    // Grey strokes get lighter on the dark theme, also for icons made before the switch.
    const QIcon icon = VDrawHelper::loadIcon(QStringLiteral("vmopendir_item_normal"));
    const QColor light = inkOf(icon, QIcon::Normal);
    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    const QColor dark = inkOf(icon, QIcon::Normal);
    QVERIFY(light.isValid() && dark.isValid());
    QVERIFY2(dark.lightness() > light.lightness() + 40,
             qPrintable(QStringLiteral("%1 vs %2").arg(light.name(), dark.name())));
}

void tst_VLiteStyle::iconSetsUsedByTheAddOn()
{
    // Which name serves which mode is loadIcon_modes' concern; here every image must exist and render.
    const QStringList names = QStringLiteral(
        "home_addfile home_addfile_hover home_addfile_click vmaddfile_button_normal vmaddfile_button_hover "
        "vmaddfile_button_click vmclear_select_button_normal vmclear_select_button_hover vmclear_select_button_click "
        "vmclear_select_button_disable vmdelete_item_normal vmdelete_item_hover vmdelete_item_click vmdrag_item_normal "
        "vmdrag_item_hover vmdrag_item_click vmmore_normal vmmore_hover vmmore_click vmmore_disable "
        "vmopendir_item_normal vmopendir_item_hover vmopendir_item_click vmopenfile_item_normal vmopenfile_item_hover "
        "vmopenfile_item_click vmreload_normal vmreload_hover vmreload_click vmsort_button_asce vmsort_button_desc "
        "vmsort_button_normal vmstart_merge_normal vmstart_merge_hover vmstart_merge_click vmstart_merge_disable "
        "vmcheckbox_unchecked vmcheckbox_checked vmcheckbox_partchecked").split(QLatin1Char(' '));
    for (const QString& theme : VLiteStyle::availableThemes()) {
        QVERIFY(VLiteStyle::setTheme(theme));
        for (const QString& name : names)
            QVERIFY2(!VDrawHelper::loadIcon(name).pixmap(QSize(16, 16)).isNull(), qPrintable(theme + ' ' + name));
    }
}

void tst_VLiteStyle::spinBoxArrowImages_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("pointsUp");
    QTest::newRow("up") << ":/shared/icons/spinbox_stroke_uparrow_l_8.svg" << true;
    QTest::newRow("up_disabled") << ":/shared/icons/spinbox_stroke_uparrow_l_8_disable.svg" << true;
    QTest::newRow("down") << ":/shared/icons/spinbox_stroke_downarrow_l_8.svg" << false;
    QTest::newRow("down_disabled") << ":/shared/icons/spinbox_stroke_downarrow_l_8_disable.svg" << false;
}

void tst_VLiteStyle::spinBoxArrowImages()
{
    QFETCH(QString, path);
    QFETCH(bool, pointsUp);

    // Style sheets load these through the image plug-ins, not through the icon engine.
    QImage image(path);
    QVERIFY2(!image.isNull(), qPrintable(path));
    QCOMPARE(image.size(), QSize(8, 8));
    image = image.convertToFormat(QImage::Format_ARGB32);
    // Inked pixels of each inked row, top to bottom.
    QVector<int> ink;
    for (int y = 0; y < image.height(); ++y) {
        int n = 0;
        for (int x = 0; x < image.width(); ++x)
            n += qAlpha(image.pixel(x, y)) > 0;
        if (n)
            ink << n;
    }
    QVERIFY(!ink.isEmpty());
    // An up arrow is narrow at its top and wide at its bottom.
    QCOMPARE(ink.first() < ink.last(), pointsUp);
}

void tst_VLiteStyle::getColorFromTheme()
{
    // Every look-up the add-on makes must be answered by both themes.
    const QList<QPair<QString, QString>> known = {
        {"VxContentListArea", "scroll-handle scroll-handle-hover scroll-handle-down"},
        {"VMSpinBox", "border text text-disable button-background spinbox-hover spinbox-pressed selection-background-color"},
        {"VMProgress", "progressBar-background progressBar-chunk"},
        {"VMLoadingItem", "background background-highlight"},
        {"VMFileTableContentArea", "border-top"},
        {"VMFifleTableContentItem", "background background-hover background-drag border"},
        {"VSeparatorLine", VDrawHelper::Prop_Content},
    };
    // Unknown ones, and classes that only carry a look, give the caller's default.
    const QList<QPair<QString, QString>> unknown = {
        {"NoSuchClass", "border"}, {"VMSpinBox", "no-such-key"}, {"VLiteButton_Icon", "background"}};
    const QColor sentinel(1, 2, 3, 4);
    for (const QString& theme : VLiteStyle::availableThemes()) {
        QVERIFY(VLiteStyle::setTheme(theme));
        for (const auto& lookup : known) {
            for (const QString& key : lookup.second.split(QLatin1Char(' '))) {
                const QColor colour = VDrawHelper::getColorFromTheme(lookup.first, key, sentinel);
                QVERIFY2(colour.isValid() && colour != sentinel, qPrintable(theme + ' ' + lookup.first + '/' + key));
            }
        }
        for (const auto& lookup : unknown)
            QCOMPARE(VDrawHelper::getColorFromTheme(lookup.first, lookup.second, sentinel), sentinel);
    }
}

void tst_VLiteStyle::themesDefineTheSameClassesAndKeys()
{
    QHash<QString, QSet<QString>> seen;
    for (const QString& theme : VLiteStyle::availableThemes()) {
        QFile file(QStringLiteral(":/liolite/themes/%1.json").arg(theme));
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.fileName()));
        const QJsonObject classes =
            QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("classes")).toObject();
        QVERIFY(!classes.isEmpty());
        QSet<QString> entries;
        for (auto it = classes.begin(); it != classes.end(); ++it) {
            const QJsonObject colors = it.value().toObject().value(QStringLiteral("colors")).toObject();
            entries.insert(it.key());
            QVERIFY(VLiteStyle::setTheme(theme));
            for (auto c = colors.begin(); c != colors.end(); ++c) {
                entries.insert(it.key() + QLatin1Char('/') + c.key());
                // An unresolvable value would silently fall back to the caller's default.
                QVERIFY2(VDrawHelper::getColorFromTheme(it.key(), c.key(), QColor()).isValid(),
                         qPrintable(theme + QLatin1Char(' ') + it.key() + QLatin1Char('/') + c.key()));
            }
            // Every colour a look refers to must resolve, or the rule would be dropped by Qt.
            if (it.value().toObject().contains(QStringLiteral("style"))) {
                VLiteWidget widget;
                widget.applyThemeClass(it.key());
                const QString sheet = widget.styleSheet();
                QVERIFY2(!sheet.isEmpty(), qPrintable(it.key()));
                QVERIFY2(!sheet.contains(QLatin1Char('@')) && !sheet.contains(QLatin1Char('$')),
                         qPrintable(theme + QLatin1Char(' ') + sheet));
                static const QRegularExpression url(QStringLiteral("url\\(([^)]*)\\)"));
                auto images = url.globalMatch(sheet);
                while (images.hasNext()) {
                    const QString path = images.next().captured(1).trimmed();
                    QVERIFY2(QFile::exists(path), qPrintable(path));
                }
            }
        }
        seen.insert(theme, entries);
    }
    const QSet<QString> light = seen.value(QStringLiteral("light"));
    const QSet<QString> dark = seen.value(QStringLiteral("dark"));
    QCOMPARE(QSet<QString>(light).subtract(dark), QSet<QString>());
    QCOMPARE(QSet<QString>(dark).subtract(light), QSet<QString>());
}

void tst_VLiteStyle::getObjectThemeClassName()
{
    const QString fallback = QStringLiteral("Fallback");
    QObject object;
    QCOMPARE(VDrawHelper::getObjectThemeClassName(nullptr, fallback), fallback);
    QCOMPARE(VDrawHelper::getObjectThemeClassName(&object, fallback), fallback);
    object.setProperty(VDrawHelper::ObjectThemeClassName, QString());
    QCOMPARE(VDrawHelper::getObjectThemeClassName(&object, fallback), fallback);
}

void tst_VLiteStyle::checkCleanSurface()
{
    QWidget window;
    auto* parent = new QWidget(&window);
    auto* child = new QWidget(parent);
    QVERIFY(!VDrawHelper::checkCleanSurface(nullptr));
    QVERIFY(VDrawHelper::checkCleanSurface(&window));
    QVERIFY(VDrawHelper::checkCleanSurface(child));
    window.setAttribute(Qt::WA_TranslucentBackground);
    QVERIFY(!VDrawHelper::checkCleanSurface(child));
    // Something between the child and the translucent window that paints its background.
    parent->setAutoFillBackground(true);
    QVERIFY(VDrawHelper::checkCleanSurface(child));
    parent->setAutoFillBackground(false);
    child->setAutoFillBackground(true);
    QVERIFY(VDrawHelper::checkCleanSurface(child));
    child->setAutoFillBackground(false);
    child->setAttribute(Qt::WA_StyledBackground);
    QVERIFY(!VDrawHelper::checkCleanSurface(child));
    child->setStyleSheet(QStringLiteral("background: white;"));
    QVERIFY(VDrawHelper::checkCleanSurface(child));
}

void tst_VLiteStyle::resources_besideLibraryFolder()
{
    const QString folder = yrt::dirs::resources();
    QVERIFY(QDir::isAbsolutePath(folder));
    QVERIFY(!folder.contains(QLatin1String("..")));
    QCOMPARE(QFileInfo(folder).fileName(), QStringLiteral("resources"));
    // The build puts the library in <build>/lib and creates <build>/resources.
    const QDir build(QFileInfo(folder).absolutePath());
    QVERIFY2(QFileInfo::exists(build.filePath(QStringLiteral("lib/libliolite.so"))), qPrintable(build.path()));
    QVERIFY(QFileInfo(folder).isDir());
}

QTEST_MAIN(tst_VLiteStyle)
#include "tst_vlitestyle.moc"
