#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vlitewidget.h>

#include <QFile>
#include <QRegularExpression>
#include <QScopeGuard>
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
    void init();
    void cleanup();

    void loadIcon_modes_data();
    void loadIcon_modes();
    void loadIcon_unknownModeFallsBackToNormalImage();
    void loadIcon_followsTheme();

    void iconSetsUsedByTheAddOn_data();
    void iconSetsUsedByTheAddOn();

    void spinBoxArrowImages_data();
    void spinBoxArrowImages();

    void getColorFromTheme_data();
    void getColorFromTheme();
    void getColorFromTheme_defaults_data();
    void getColorFromTheme_defaults();
    void themesDefineTheSameClassesAndKeys();

    void getObjectThemeClassName_data();
    void getObjectThemeClassName();

    void checkCleanSurface_data();
    void checkCleanSurface();
};

void tst_VDrawHelper::init()
{
    QVERIFY(VLiteStyle::setTheme(QStringLiteral("light")));
}

void tst_VDrawHelper::cleanup()
{
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VDrawHelper::loadIcon_modes_data()
{
    QTest::addColumn<QString>("iconSet");
    QTest::addColumn<bool>("isNull");
    // Which of Normal, Active, Selected, Disabled have an image of their own.
    QTest::addColumn<QList<bool>>("own");

    QTest::newRow("one_name") << "vmsort_button_normal" << false << QList<bool>{true, false, false, false};
    QTest::newRow("one_name_trailing_separator") << "vmsort_button_asce;" << false
                                                 << QList<bool>{true, false, false, false};
    QTest::newRow("two_names") << "vmmore_normal;vmmore_hover" << false << QList<bool>{true, true, false, false};
    QTest::newRow("three_names_trailing_separator")
        << "vmreload_normal;vmreload_hover;vmreload_click;" << false << QList<bool>{true, true, true, false};
    QTest::newRow("four_names")
        << "vmclear_select_button_normal;vmclear_select_button_hover;vmclear_select_button_click;"
           "vmclear_select_button_disable"
        << false << QList<bool>{true, true, true, true};
    QTest::newRow("four_names_trailing_separator")
        << "vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;" << false << QList<bool>{true, true, true, true};
    QTest::newRow("empty_hover_name") << "vmmore_normal;;vmmore_click" << false << QList<bool>{true, false, true, false};
    QTest::newRow("empty_normal_name") << ";vmmore_hover" << false << QList<bool>{false, true, false, false};
    QTest::newRow("unknown_hover_name") << "vmmore_normal;no_such_image;vmmore_click" << false
                                        << QList<bool>{true, false, true, false};
    QTest::newRow("names_with_spaces") << " vmmore_normal ; vmmore_hover " << false
                                       << QList<bool>{true, true, false, false};
    QTest::newRow("fifth_name_ignored") << "vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;vmmore_normal"
                                        << false << QList<bool>{true, true, true, true};
    QTest::newRow("empty_string") << "" << true << QList<bool>{false, false, false, false};
    QTest::newRow("only_separators") << ";;;" << true << QList<bool>{false, false, false, false};
    QTest::newRow("unknown_name") << "no_such_image" << true << QList<bool>{false, false, false, false};
    QTest::newRow("path_like_name") << "../themes/light" << true << QList<bool>{false, false, false, false};
}

void tst_VDrawHelper::loadIcon_modes()
{
    QFETCH(QString, iconSet);
    QFETCH(bool, isNull);
    QFETCH(QList<bool>, own);

    const QIcon icon = VDrawHelper::loadIcon(iconSet);
    QCOMPARE(icon.isNull(), isNull);
    const QList<QIcon::Mode> modes = allModes();
    for (int i = 0; i < modes.size(); ++i) {
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::Off).isEmpty(), own[i]);
        // The state does not choose the image: checked boxes paint with On.
        QCOMPARE(!icon.availableSizes(modes[i], QIcon::On).isEmpty(), own[i]);
    }
    if (!isNull && own[0])
        QVERIFY(!icon.pixmap(QSize(16, 16)).isNull());
}

void tst_VDrawHelper::loadIcon_unknownModeFallsBackToNormalImage()
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
}

void tst_VDrawHelper::loadIcon_followsTheme()
{
    const QIcon icon = VDrawHelper::loadIcon(QStringLiteral("vmopendir_item_normal"));
    const QColor light = inkOf(icon, QIcon::Normal);
    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    const QColor dark = inkOf(icon, QIcon::Normal);
    QVERIFY(light.isValid() && dark.isValid());
    // Grey strokes get lighter on the dark theme, also for icons made before the switch.
    QVERIFY2(dark.lightness() > light.lightness() + 40,
             qPrintable(QStringLiteral("%1 vs %2").arg(light.name(), dark.name())));
}

void tst_VDrawHelper::iconSetsUsedByTheAddOn_data()
{
    QTest::addColumn<QString>("iconSet");
    const QStringList sets = {
        "home_addfile;home_addfile_hover;home_addfile_click",
        "vmaddfile_button_normal;vmaddfile_button_hover;vmaddfile_button_click",
        "vmclear_select_button_normal;vmclear_select_button_hover;vmclear_select_button_click;"
        "vmclear_select_button_disable",
        "vmdelete_item_normal;vmdelete_item_hover;vmdelete_item_click;",
        "vmdrag_item_normal;vmdrag_item_hover;vmdrag_item_click;",
        "vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;",
        "vmopendir_item_normal;vmopendir_item_hover;vmopendir_item_click;",
        "vmopenfile_item_normal;vmopenfile_item_hover;vmopenfile_item_click;",
        "vmreload_normal;vmreload_hover;vmreload_click;",
        "vmsort_button_asce;",
        "vmsort_button_desc;",
        "vmsort_button_normal;",
        "vmstart_merge_normal;vmstart_merge_hover;vmstart_merge_click;vmstart_merge_disable;",
        "vmcheckbox_unchecked",
        "vmcheckbox_checked",
        "vmcheckbox_partchecked",
    };
    for (const QString& theme : VLiteStyle::availableThemes()) {
        for (const QString& set : sets)
            QTest::newRow(qPrintable(theme + QLatin1Char(':') + set.section(QLatin1Char(';'), 0, 0)))
                << theme + QLatin1Char('|') + set;
    }
}

void tst_VDrawHelper::iconSetsUsedByTheAddOn()
{
    QFETCH(QString, iconSet);
    const QString theme = iconSet.section(QLatin1Char('|'), 0, 0);
    const QString set = iconSet.section(QLatin1Char('|'), 1);
    QVERIFY(VLiteStyle::setTheme(theme));
    const QIcon icon = VDrawHelper::loadIcon(set);
    QVERIFY(!icon.isNull());
    const QStringList names = set.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    const QList<QIcon::Mode> modes = allModes();
    for (int i = 0; i < names.size(); ++i) {
        QVERIFY2(!VDrawHelper::iconPath(names[i]).isEmpty(), qPrintable(names[i]));
        QVERIFY2(!icon.availableSizes(modes[i]).isEmpty(), qPrintable(names[i]));
        QVERIFY2(!icon.pixmap(QSize(16, 16), modes[i]).isNull(), qPrintable(names[i]));
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
    image = QImage(path).scaled(64, 64);
    image = image.convertToFormat(QImage::Format_ARGB32);
    // The tip of the chevron is the inked pixel nearest the edge it points to.
    int top = -1;
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        if (qAlpha(image.pixel(image.width() / 2, y)) > 0) {
            if (top < 0)
                top = y;
            bottom = y;
        }
    }
    QVERIFY(top >= 0);
    int inkAtTopRow = 0;
    int inkAtBottomRow = 0;
    for (int x = 0; x < image.width(); ++x) {
        inkAtTopRow += qAlpha(image.pixel(x, top)) > 0;
        inkAtBottomRow += qAlpha(image.pixel(x, bottom)) > 0;
    }
    // An up arrow is narrow at its top and wide at its bottom.
    QCOMPARE(inkAtTopRow < inkAtBottomRow, pointsUp);
}

void tst_VDrawHelper::getColorFromTheme_data()
{
    QTest::addColumn<QString>("themeClass");
    QTest::addColumn<QString>("key");

    // Every look-up the add-on makes must be answered by both themes.
    const QList<QPair<QString, QString>> lookups = {
        {"VxContentListArea", "scroll-handle"},
        {"VxContentListArea", "scroll-handle-hover"},
        {"VxContentListArea", "scroll-handle-down"},
        {"VMSpinBox", "border"},
        {"VMSpinBox", "text"},
        {"VMSpinBox", "text-disable"},
        {"VMSpinBox", "button-background"},
        {"VMSpinBox", "spinbox-hover"},
        {"VMSpinBox", "spinbox-pressed"},
        {"VMSpinBox", "selection-background-color"},
        {"VMProgress", "progressBar-background"},
        {"VMProgress", "progressBar-chunk"},
        {"VMLoadingItem", "background"},
        {"VMLoadingItem", "background-highlight"},
        {"VMFileTableContentArea", "border-top"},
        {"VMFifleTableContentItem", "background"},
        {"VMFifleTableContentItem", "background-hover"},
        {"VMFifleTableContentItem", "background-drag"},
        {"VMFifleTableContentItem", "border"},
        {"VSeparatorLine", VDrawHelper::Prop_Content},
    };
    for (const auto& lookup : lookups)
        QTest::newRow(qPrintable(lookup.first + QLatin1Char('/') + lookup.second)) << lookup.first << lookup.second;
}

void tst_VDrawHelper::getColorFromTheme()
{
    QFETCH(QString, themeClass);
    QFETCH(QString, key);
    const QColor sentinel(1, 2, 3, 4);

    const QColor light = VDrawHelper::getColorFromTheme(themeClass, key, sentinel);
    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    const QColor dark = VDrawHelper::getColorFromTheme(themeClass, key, sentinel);

    QVERIFY(light.isValid());
    QVERIFY(light != sentinel);
    QVERIFY(dark != sentinel);
}

void tst_VDrawHelper::getColorFromTheme_defaults_data()
{
    QTest::addColumn<QString>("themeClass");
    QTest::addColumn<QString>("key");
    QTest::newRow("unknown_class") << "NoSuchClass" << "border";
    QTest::newRow("unknown_key") << "VMSpinBox" << "no-such-key";
    QTest::newRow("empty_class") << "" << "content";
    QTest::newRow("empty_key") << "VMSpinBox" << "";
    QTest::newRow("class_case_matters") << "vmspinbox" << "border";
    QTest::newRow("look_only_class") << "VLiteButton_Icon" << "background";
}

void tst_VDrawHelper::getColorFromTheme_defaults()
{
    QFETCH(QString, themeClass);
    QFETCH(QString, key);
    for (const QString& theme : VLiteStyle::availableThemes()) {
        QVERIFY(VLiteStyle::setTheme(theme));
        QCOMPARE(VDrawHelper::getColorFromTheme(themeClass, key, QColor("#D7D9DE")), QColor("#D7D9DE"));
        QCOMPARE(VDrawHelper::getColorFromTheme(themeClass, key, QColor()), QColor());
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

void tst_VDrawHelper::getObjectThemeClassName_data()
{
    QTest::addColumn<bool>("withObject");
    QTest::addColumn<QVariant>("property");
    QTest::addColumn<QString>("defaultClass");
    QTest::addColumn<QString>("expected");

    QTest::newRow("null_object") << false << QVariant() << "Fallback" << "Fallback";
    QTest::newRow("no_property") << true << QVariant() << "Fallback" << "Fallback";
    QTest::newRow("no_property_empty_default") << true << QVariant() << "" << "";
    QTest::newRow("empty_property") << true << QVariant(QString()) << "Fallback" << "Fallback";
    QTest::newRow("set_property") << true << QVariant(QStringLiteral("VMProgress")) << "Fallback" << "VMProgress";
}

void tst_VDrawHelper::getObjectThemeClassName()
{
    QFETCH(bool, withObject);
    QFETCH(QVariant, property);
    QFETCH(QString, defaultClass);
    QFETCH(QString, expected);

    QObject object;
    if (property.isValid())
        object.setProperty(VDrawHelper::ObjectThemeClassName, property);
    QCOMPARE(VDrawHelper::getObjectThemeClassName(withObject ? &object : nullptr, defaultClass), expected);
}

void tst_VDrawHelper::checkCleanSurface_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<bool>("expected");
    QTest::newRow("null_widget") << "null" << false;
    QTest::newRow("plain_window") << "window" << true;
    QTest::newRow("child_of_plain_window") << "child" << true;
    QTest::newRow("child_of_translucent_window") << "translucent" << false;
    QTest::newRow("filled_child_of_translucent_window") << "translucent_filled" << true;
    QTest::newRow("grandchild_of_filled_parent_in_translucent_window") << "translucent_filled_parent" << true;
    QTest::newRow("styled_child_of_translucent_window") << "translucent_styled" << true;
}

void tst_VDrawHelper::checkCleanSurface()
{
    QFETCH(QString, setup);
    QFETCH(bool, expected);

    QWidget window;
    auto* parent = new QWidget(&window);
    auto* child = new QWidget(parent);
    const QWidget* probe = child;
    if (setup == QLatin1String("null"))
        probe = nullptr;
    else if (setup == QLatin1String("window"))
        probe = &window;
    if (setup.startsWith(QLatin1String("translucent")))
        window.setAttribute(Qt::WA_TranslucentBackground);
    if (setup == QLatin1String("translucent_filled"))
        child->setAutoFillBackground(true);
    if (setup == QLatin1String("translucent_filled_parent"))
        parent->setAutoFillBackground(true);
    if (setup == QLatin1String("translucent_styled")) {
        child->setAttribute(Qt::WA_StyledBackground);
        child->setStyleSheet(QStringLiteral("background: white;"));
    }
    QCOMPARE(VDrawHelper::checkCleanSurface(probe), expected);
}

QTEST_MAIN(tst_VDrawHelper)
#include "tst_vdrawhelper.moc"
