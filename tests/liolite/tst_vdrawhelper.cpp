#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitewidget.h>

#include <QFile>
#include <QRegularExpression>
#include <QtTest>
#include <QWidget>

namespace {

QList<QIcon::Mode> allModes()
{
    return {QIcon::Normal, QIcon::Active, QIcon::Selected, QIcon::Disabled};
}

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

class tst_VDrawHelper : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

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
};

void tst_VDrawHelper::cleanup()
{
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VDrawHelper::loadIcon_modes_data()
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

void tst_VDrawHelper::loadIcon_modes()
{
    QFETCH(QString, iconSet);
    QFETCH(QString, own);

    const QIcon icon = VDrawHelper::loadIcon(iconSet);
    QCOMPARE(icon.isNull(), own == QLatin1String("0000"));
    const QList<QIcon::Mode> modes = allModes();
    for (int i = 0; i < modes.size(); ++i) {
        const bool hasOwn = own[i] == QLatin1Char('1');
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::Off).isEmpty(), hasOwn);
        // The state does not choose the image: checked boxes paint with On.
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::On).isEmpty(), hasOwn);
    }
    if (own.startsWith(QLatin1Char('1')))
        QVERIFY(!icon.pixmap(QSize(16, 16)).isNull());
}

void tst_VDrawHelper::loadIcon_imagesPerModeAndTheme()
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

void tst_VDrawHelper::iconSetsUsedByTheAddOn()
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

void tst_VDrawHelper::spinBoxArrowImages_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("pointsUp");
    QTest::newRow("up") << ":/shared/icons/spinbox_stroke_uparrow_l_8.svg" << true;
    QTest::newRow("up_disabled") << ":/shared/icons/spinbox_stroke_uparrow_l_8_disable.svg" << true;
    QTest::newRow("down") << ":/shared/icons/spinbox_stroke_downarrow_l_8.svg" << false;
    QTest::newRow("down_disabled") << ":/shared/icons/spinbox_stroke_downarrow_l_8_disable.svg" << false;
}

void tst_VDrawHelper::spinBoxArrowImages()
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

void tst_VDrawHelper::getColorFromTheme()
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

void tst_VDrawHelper::themesDefineTheSameClassesAndKeys()
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

void tst_VDrawHelper::getObjectThemeClassName()
{
    const QString fallback = QStringLiteral("Fallback");
    QObject object;
    QCOMPARE(VDrawHelper::getObjectThemeClassName(nullptr, fallback), fallback);
    QCOMPARE(VDrawHelper::getObjectThemeClassName(&object, fallback), fallback);
    object.setProperty(VDrawHelper::ObjectThemeClassName, QString());
    QCOMPARE(VDrawHelper::getObjectThemeClassName(&object, fallback), fallback);
}

void tst_VDrawHelper::checkCleanSurface()
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

QTEST_MAIN(tst_VDrawHelper)
#include "tst_vdrawhelper.moc"
