// Renders toolkit widgets and dialogs in each theme to PNG files, for checking the look by eye.
#include <liolite/liolite.h>

#include <QApplication>
#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QPainter>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

VLiteButton* iconButton(QWidget* parent, const QString& set, int side, const QString& cls = QString())
{
    auto* b = new VLiteButton(parent);
    b->setFixedSize(side, side);
    b->setIconSize(QSize(side, side));
    b->setIcon(VDrawHelper::loadIcon(set));
    if (!cls.isEmpty())
        b->applyThemeClass(cls);
    return b;
}

QWidget* buildGallery()
{
    auto* root = new VLiteWidget;
    root->applyThemeClass(QStringLiteral("VMFifleTableContentItem"));
    root->setAutoFillBackground(true);
    root->setFixedWidth(940);
    auto* outer = new QVBoxLayout(root);
    outer->setContentsMargins(28, 16, 28, 28);

    auto* area = new VLiteWidget(root);
    area->applyThemeClass(QStringLiteral("VMStyleWidget"));
    auto* areaLayout = new QVBoxLayout(area);
    areaLayout->setContentsMargins(1, 1, 1, 1);
    areaLayout->setSpacing(0);

    auto* header = new QWidget(area);
    header->setFixedHeight(40);
    auto* h = new QHBoxLayout(header);
    h->setContentsMargins(19, 0, 19, 0);
    h->setSpacing(4);
    auto* all = new VLiteCheckBox(header);
    all->setTristate(true);
    all->setCheckState(Qt::PartiallyChecked);
    all->setFixedSize(16, 16);
    h->addWidget(all);
    auto* name = new VLiteLabel(QStringLiteral("File name"), header);
    name->applyThemeClass(QStringLiteral("VMStyleLabel"));
    h->addWidget(name);
    auto* sort = iconButton(header, QStringLiteral("vmsort_button_asce;"), 20, QStringLiteral("VLiteButton_Status"));
    sort->setIconSize(QSize(16, 16));
    h->addWidget(sort);
    h->addSpacing(8);
    auto* sep = new VSeparatorLine(header, Qt::Vertical);
    sep->setFixedSize(1, 12);
    h->addWidget(sep);
    h->addSpacing(8);
    auto* invert = new VLiteClickableLabel(QStringLiteral("Invert Selection"), header);
    invert->applyThemeClass(QStringLiteral("VMTableHeaderInvertSelect"));
    invert->setUnderlineMode(1);
    h->addWidget(invert);
    h->addStretch();
    areaLayout->addWidget(header);

    for (int row = 0; row < 3; ++row) {
        auto* item = new VLiteWidget(area);
        item->setFixedHeight(48);
        auto* r = new QHBoxLayout(item);
        r->setContentsMargins(19, 0, 19, 0);
        r->setSpacing(4);
        auto* box = new VLiteCheckBox(item);
        box->setFixedSize(16, 16);
        box->setChecked(row != 1);
        box->setEnabled(row != 2);
        r->addWidget(box);
        auto* file = new VLiteLabel(row == 0 ? QStringLiteral("Quarterly report of the northern region 2026 final version.docx")
                                             : QStringLiteral("Minutes %1.doc").arg(row), item);
        file->applyThemeClass(QStringLiteral("VMCommonText02_Label"));
        file->setTextAutoElide(true);
        file->setTextElideMode(Qt::ElideMiddle);
        file->setMaximumWidth(260);
        r->addWidget(file, 1);
        auto* pages = new VLiteLabel(row == 2 ? QStringLiteral("read fail") : QStringLiteral("12"), item);
        pages->applyThemeClass(row == 2 ? QStringLiteral("VMReadFail_Label") : QStringLiteral("VMStyleLabel"));
        pages->setFixedWidth(68);
        pages->setAlignment(Qt::AlignCenter);
        r->addWidget(pages);
        auto* from = new QSpinBox(item);
        from->setFixedSize(80, 30);
        from->setRange(1, 99999);
        from->setValue(1);
        from->setEnabled(row != 2);
        const auto rgba = [](const char* key, const char* def) {
            const QColor c = VDrawHelper::getColorFromTheme("VMSpinBox", key, QColor(def));
            return QStringLiteral("rgba(%1,%2,%3,%4)").arg(c.red()).arg(c.green()).arg(c.blue()).arg(c.alpha());
        };
        from->setStyleSheet(QStringLiteral(
            "QSpinBox{padding-left: 4px;border:1px solid %1;border-radius: 3px;color:%2;font-size:12px;"
            "background-color:%3;}QSpinBox:disabled{color:%4;}"
            "QSpinBox::up-button{subcontrol-origin: border;subcontrol-position: top right;width: 15px;"
            "background-color:%3;border-left: 1px solid %1;border-bottom: 1px solid %1;}"
            "QSpinBox::down-button{subcontrol-origin: border;subcontrol-position: bottom right;width: 15px;"
            "background-color:%3;border-left: 1px solid %1;}"
            "QSpinBox::up-arrow{width:8px;height:8px;image:url(:/shared/icons/spinbox_stroke_uparrow_l_8.svg);}"
            "QSpinBox::up-arrow:disabled{image:url(:/shared/icons/spinbox_stroke_uparrow_l_8_disable.svg);}"
            "QSpinBox::down-arrow{width:8px;height:8px;image:url(:/shared/icons/spinbox_stroke_downarrow_l_8.svg);}"
            "QSpinBox::down-arrow:disabled{image:url(:/shared/icons/spinbox_stroke_downarrow_l_8_disable.svg);}")
                                .arg(rgba("border", "#D7D9DE"), rgba("text", "#36425A"),
                                     rgba("button-background", "#ffffff"), rgba("text-disable", "#999999")));
        r->addSpacing(40);
        r->addWidget(from);
        auto* dash = new VSeparatorLine(item, Qt::Horizontal);
        dash->setFixedSize(10, 1);
        r->addWidget(dash);
        r->addSpacing(40);
        for (const char* set : {"vmopendir_item_normal;vmopendir_item_hover;vmopendir_item_click;",
                                "vmopenfile_item_normal;vmopenfile_item_hover;vmopenfile_item_click;",
                                "vmdrag_item_normal;vmdrag_item_hover;vmdrag_item_click;",
                                "vmdelete_item_normal;vmdelete_item_hover;vmdelete_item_click;",
                                "vmreload_normal;vmreload_hover;vmreload_click;"}) {
            r->addWidget(iconButton(item, QString::fromLatin1(set), 16));
            r->addSpacing(4);
        }
        areaLayout->addWidget(item);
    }

    auto* addBig = iconButton(area, QStringLiteral("home_addfile;home_addfile_hover;home_addfile_click"), 100);
    areaLayout->addSpacing(12);
    areaLayout->addWidget(addBig, 0, Qt::AlignHCenter);
    areaLayout->addSpacing(12);

    auto* status = new VLiteWidget(area);
    status->applyThemeClass(QStringLiteral("VMFileTableStatusBar"));
    status->setFixedHeight(40);
    auto* s = new QHBoxLayout(status);
    s->setContentsMargins(19, 0, 19, 0);
    s->setSpacing(0);
    auto* clear = new VLiteButton(QStringLiteral("Clear selected(2/3)"), status);
    clear->applyThemeClass(QStringLiteral("VMButton_ClearSelected"));
    clear->setIconSize(QSize(16, 16));
    clear->setIcon(VDrawHelper::loadIcon(QStringLiteral(
        "vmclear_select_button_normal;vmclear_select_button_hover;vmclear_select_button_click;vmclear_select_button_disable")));
    s->addWidget(clear);
    s->addSpacing(12);
    auto* sep2 = new VSeparatorLine(status, Qt::Vertical);
    sep2->setFixedSize(1, 12);
    s->addWidget(sep2);
    s->addSpacing(12);
    auto* add = new VLiteButton(QStringLiteral("Add file"), status);
    add->applyThemeClass(QStringLiteral("VMButton_AddFile"));
    add->setIconSize(QSize(16, 16));
    add->setIcon(VDrawHelper::loadIcon(QStringLiteral("vmaddfile_button_normal;vmaddfile_button_hover;vmaddfile_button_click")));
    s->addWidget(add);
    s->addStretch();
    auto* selected = new VLiteLabel(QStringLiteral("Selected:"), status);
    selected->applyThemeClass(QStringLiteral("VMStyleLabel"));
    s->addWidget(selected);
    s->addSpacing(4);
    auto* count = new VLiteLabel(QStringLiteral("2"), status);
    count->applyThemeClass(QStringLiteral("VMCommonText02_Label"));
    s->addWidget(count);
    areaLayout->addWidget(status);
    outer->addWidget(area, 1);
    outer->addSpacing(14);

    auto* bottom = new QHBoxLayout;
    auto* outName = new VLiteLabel(QStringLiteral("Output Name"), root);
    outName->applyThemeClass(QStringLiteral("VStyleLabel"));
    bottom->addWidget(outName);
    bottom->addSpacing(10);
    auto* editor = new VLiteLineEditor(root, true);
    editor->applyThemeClass(QStringLiteral("VLiteLineEditor"));
    editor->setFixedSize(214, 30);
    editor->innerEdit()->setTextMargins(6, 0, 0, 0);
    editor->setText(QStringLiteral("Text merge"));
    bottom->addWidget(editor);
    bottom->addSpacing(12);
    auto* combo = new VLiteComboBox(root, true);
    combo->setFixedSize(80, 34);
    combo->setDisplayCheckState(true);
    for (const char* suffix : {".docx", ".doc", ".zyl"})
        combo->addItem(QString::fromLatin1(suffix), QVariant(), {});
    bottom->addWidget(combo);
    bottom->addSpacing(12);
    auto* cloud = new VLiteButton(QStringLiteral("open folder"), root);
    cloud->applyThemeClass(QStringLiteral("VMButton_OpenCloudDir"));
    QFont underlined = cloud->font();
    underlined.setUnderline(true);
    cloud->setFont(underlined);
    bottom->addWidget(cloud);
    auto* more = iconButton(root, QStringLiteral("vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;"), 16);
    bottom->addWidget(more);
    bottom->addStretch();
    auto* start = new VLiteButton(QStringLiteral("start merge"), root);
    start->setFixedSize(124, 40);
    start->setIcon(VDrawHelper::loadIcon(QStringLiteral(
        "vmstart_merge_normal;vmstart_merge_hover;vmstart_merge_click;vmstart_merge_disable;")));
    bottom->addWidget(start);
    auto* startOff = new VLiteButton(QStringLiteral("start merge"), root);
    startOff->setFixedSize(124, 40);
    startOff->setIcon(start->icon());
    startOff->setEnabled(false);
    bottom->addSpacing(8);
    bottom->addWidget(startOff);
    outer->addLayout(bottom);
    return root;
}

// Every icon set in its four modes, one row per set.
QImage iconSheet()
{
    const QStringList sets = {
        "vmaddfile_button_normal;vmaddfile_button_hover;vmaddfile_button_click",
        "vmclear_select_button_normal;vmclear_select_button_hover;vmclear_select_button_click;vmclear_select_button_disable",
        "vmdelete_item_normal;vmdelete_item_hover;vmdelete_item_click;",
        "vmdrag_item_normal;vmdrag_item_hover;vmdrag_item_click;",
        "vmmore_normal;vmmore_hover;vmmore_click;vmmore_disable;",
        "vmopendir_item_normal;vmopendir_item_hover;vmopendir_item_click;",
        "vmopenfile_item_normal;vmopenfile_item_hover;vmopenfile_item_click;",
        "vmreload_normal;vmreload_hover;vmreload_click;",
        "vmsort_button_normal;", "vmsort_button_asce;", "vmsort_button_desc;",
        "vmcheckbox_unchecked", "vmcheckbox_checked", "vmcheckbox_partchecked",
        "vlite_dlg_close;vlite_dlg_close_hover;vlite_dlg_close_pressed",
        "vlite_dlg_info", "vlite_dlg_question", "vlite_dlg_warning", "vlite_dlg_failure", "vlite_dlg_success",
    };
    const int cell = 40;
    QImage image(cell * 4 + 8, cell * sets.size() + 8, QImage::Format_ARGB32);
    image.fill(VDrawHelper::getColorFromTheme("VMStyleWidget", "background", Qt::white));
    QPainter p(&image);
    const QIcon::Mode modes[] = {QIcon::Normal, QIcon::Active, QIcon::Selected, QIcon::Disabled};
    for (int row = 0; row < sets.size(); ++row) {
        const QIcon icon = VDrawHelper::loadIcon(sets[row]);
        for (int col = 0; col < 4; ++col)
            icon.paint(&p, QRect(4 + col * cell + 4, 4 + row * cell + 4, 32, 32), Qt::AlignCenter, modes[col]);
    }
    // The start icon is drawn on the accent button.
    return image;
}

QImage bigIcons()
{
    QImage image(4 * 110 + 10, 120, QImage::Format_ARGB32);
    image.fill(VDrawHelper::getColorFromTheme("VMStyleWidget", "background", Qt::white));
    QPainter p(&image);
    const QIcon home = VDrawHelper::loadIcon(QStringLiteral("home_addfile;home_addfile_hover;home_addfile_click"));
    const QIcon::Mode modes[] = {QIcon::Normal, QIcon::Active, QIcon::Selected};
    for (int i = 0; i < 3; ++i)
        home.paint(&p, QRect(10 + i * 110, 10, 100, 100), Qt::AlignCenter, modes[i]);
    p.fillRect(QRect(10 + 3 * 110, 10, 100, 100), QColor("#417FF9"));
    const QIcon start = VDrawHelper::loadIcon(QStringLiteral(
        "vmstart_merge_normal;vmstart_merge_hover;vmstart_merge_click;vmstart_merge_disable;"));
    start.paint(&p, QRect(10 + 3 * 110 + 18, 28, 64, 64));
    return image;
}

void save(QWidget* widget, const QString& path)
{
    widget->show();
    widget->adjustSize();
    QCoreApplication::processEvents();
    widget->grab().save(path);
    widget->hide();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QString prefix = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("/tmp/liolite");
    for (const QString& theme : VLiteStyle::availableThemes()) {
        VLiteStyle::setTheme(theme);
        QWidget* gallery = buildGallery();
        save(gallery, QStringLiteral("%1-%2-widgets.png").arg(prefix, theme));
        gallery->show();
        if (auto* combo = gallery->findChild<VLiteComboBox*>()) {
            combo->setCurrentIndex(1);
            combo->showPopup();
            QCoreApplication::processEvents();
            combo->view()->window()->grab().save(QStringLiteral("%1-%2-combo-popup.png").arg(prefix, theme));
            combo->hidePopup();
        }
        delete gallery;

        VLiteContentDlg failed(nullptr, VLiteContentDlg::IconNone);
        failed.setTitleIcon(VLiteContentDlg::IconFailure);
        failed.setTitle(QStringLiteral("Merge failed"));
        failed.setContent(QStringLiteral("Failed to merge the current document, Please set it again"));
        failed.setButtonText(0, QStringLiteral("Confirm"));
        failed.setButtonVisible(1, false);
        save(&failed, QStringLiteral("%1-%2-dialog-failed.png").arg(prefix, theme));

        VLiteContentDlg done(nullptr, VLiteContentDlg::IconNone);
        done.setTitleIcon(VLiteContentDlg::IconSuccess);
        done.setTitle(QStringLiteral("Merge complete"));
        done.setContent(QStringLiteral("/home/user/Documents/Projects/2026/northern-region/Quarterly report merged(1).docx"));
        done.setButtonText(0, QStringLiteral("open file"));
        done.setButtonText(1, QStringLiteral("open directory"));
        save(&done, QStringLiteral("%1-%2-dialog-complete.png").arg(prefix, theme));

        iconSheet().save(QStringLiteral("%1-%2-icons.png").arg(prefix, theme));
        bigIcons().save(QStringLiteral("%1-%2-bigicons.png").arg(prefix, theme));

        VLiteContentDlg tips(nullptr, VLiteContentDlg::IconNone);
        tips.setTitle(QStringLiteral("Tips"));
        tips.setContent(QStringLiteral("Sorry! You need to login in order to use %1.").arg(yrt::product::getZYLDriveDisplayName()));
        tips.setButtonVisible(1, false);
        save(&tips, QStringLiteral("%1-%2-dialog-tips.png").arg(prefix, theme));
    }

    // The dialog at 150 % scale.
    VLiteStyle::setTheme(QStringLiteral("light"));
    VLiteStyle::setScaleOverride(1.5);
    VLiteContentDlg scaled(nullptr, VLiteContentDlg::IconNone);
    scaled.setTitleIcon(VLiteContentDlg::IconInfo);
    scaled.setTitle(QStringLiteral("Tips"));
    scaled.setContent(QStringLiteral("The document does not exist. It may be removed or renamed"));
    scaled.setButtonVisible(1, false);
    save(&scaled, QStringLiteral("%1-light-dialog-150.png").arg(prefix));
    return 0;
}
