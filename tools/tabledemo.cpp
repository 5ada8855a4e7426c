// Shows the file table with a dozen rows in its three looks, a partly checked header, the
// status bar and the merge progress dialog, and writes a picture of them:
//   QT_QPA_PLATFORM=offscreen build/tests/tabledemo [--theme light|dark] [--scale 1.5] [--out file.png]
// Without --out the window stays open.
#include <QApplication>
#include <QCommandLineParser>
#include <QPainter>
#include <QTimer>
#include <QVBoxLayout>

#include "engine/vmprogressdlg.h"
#include "host/liolite.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfiletablestatusbar.h"
#include "table/vmfiletablewidget.h"

namespace {

struct DemoRow {
    const char *path;
    int pages;   // -1: still counting, -2: read failed
    bool checked;
};

// UTF-8 names: Arabic, Chinese, a long one and one full of characters that need escaping.
const DemoRow Rows[] = {
    {"/home/user/reports/quarterly report.docx", 12, true},
    {"/home/user/reports/the annual general meeting minutes of the northern region committee with "
     "appendices and amendments final version 3.docx",
     1, true},
    {"/home/user/reports/\xd8\xaa\xd9\x82\xd8\xb1\xd9\x8a\xd8\xb1 \xd8\xa7\xd9\x84\xd8\xa7\xd8\xac\xd8\xaa\xd9\x85"
     "\xd8\xa7\xd8\xb9 \xd8\xa7\xd9\x84\xd8\xb3\xd9\x86\xd9\x88\xd9\x8a.docx",
     3456, false},
    {"/home/user/reports/\xe5\xb9\xb4\xe5\xba\xa6\xe8\xb4\xa2\xe5\x8a\xa1\xe6\x8a\xa5\xe5\x91\x8a\xe6\xb1\x87"
     "\xe6\x80\xbb.doc",
     0, true},
    {"/home/user/reports/budget #1 50% Q&A 'draft' [v2] .zyl", -1, true},
    {"/home/user/reports/contract.doc", -2, false},
    {"/home/user/reports/notes.docx", -1, true},
    {"/home/user/reports/appendix a.docx", 7, true},
    {"/home/user/reports/appendix b.docx", 99999, false},
    {"/home/user/reports/letter.zyl", -2, true},
    {"/home/user/reports/invoice 2026-11.doc", 2, true},
    {"/home/user/reports/summary.docx", -1, false},
};

QWidget *buildTable()
{
    auto *root = new VLiteWidget;
    root->applyThemeClass(QStringLiteral("VMStyleWidget"));
    root->setAttribute(Qt::WA_StyledBackground);
    // The frame's 1px border is scaled by the theme, rounding halves up.
    const int frame = qRound(VLiteStyle::dpiScaled(1));
    auto *layout = new QVBoxLayout(root);
    layout->setContentsMargins(frame, frame, frame, frame);
    layout->setSpacing(0);

    auto *table = new VMFileTableWidget(root);
    auto *statusBar = new VMFileTableStatusBar(root);
    QObject::connect(table, &VMFileTableWidget::sigSelectedItemCountChange, statusBar,
                     &VMFileTableStatusBar::updateSelectedCount);
    layout->addWidget(table);
    layout->addWidget(statusBar);

    for (const DemoRow &demo : Rows) {
        VMFifleTableContentItem *row = table->addFile(QString::fromUtf8(demo.path));
        row->setChecked(demo.checked);
        if (demo.pages >= 0) {
            row->setPageCount(demo.pages);
            row->setPageRange(1, demo.pages);
            row->setRangeFrom(1);
            row->setRangeTo(demo.pages);
            row->setRangeInitialized(true);
            row->setReadSuccess(true);
        } else if (demo.pages == -2) {
            row->setReadSuccess(false);
        }
    }
    // Exactly the room for every row, so the picture shows them all without a scroll bar.
    const auto scaled = [](int length) { return int(VLiteStyle::dpiScaled(length)); };
    const int rows = int(sizeof(Rows) / sizeof(Rows[0]));
    root->resize(scaled(900), 2 * frame + scaled(40) + frame + rows * scaled(48) + scaled(40));
    return root;
}

QImage stack(const QPixmap &top, const QPixmap &bottom, const QColor &background)
{
    const int gap = int(VLiteStyle::dpiScaled(24));
    QImage image(qMax(top.width(), bottom.width()) + 2 * gap, top.height() + bottom.height() + 3 * gap,
                 QImage::Format_ARGB32);
    image.fill(background);
    QPainter painter(&image);
    painter.drawPixmap(gap, gap, top);
    painter.drawPixmap((image.width() - bottom.width()) / 2, top.height() + 2 * gap, bottom);
    return image;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    const QCommandLineOption themeOption(QStringLiteral("theme"), QStringLiteral("light or dark"),
                                         QStringLiteral("name"), QStringLiteral("light"));
    const QCommandLineOption scaleOption(QStringLiteral("scale"), QStringLiteral("scale factor, e.g. 1.5"),
                                         QStringLiteral("factor"), QStringLiteral("1"));
    const QCommandLineOption outOption(QStringLiteral("out"), QStringLiteral("PNG file to write"),
                                       QStringLiteral("file"));
    parser.addOptions({themeOption, scaleOption, outOption});
    parser.process(app);

    if (!VLiteStyle::setTheme(parser.value(themeOption))) {
        qCritical("unknown theme %s", qPrintable(parser.value(themeOption)));
        return 2;
    }
    bool ok = false;
    const double scale = parser.value(scaleOption).toDouble(&ok);
    if (!ok || scale <= 0) {
        qCritical("bad scale %s", qPrintable(parser.value(scaleOption)));
        return 2;
    }
    VLiteStyle::setScaleOverride(scale);

    QScopedPointer<QWidget> table(buildTable());
    table->show();
    QPointer<VMProgressDlg> dialog = VMProgressDlg::showMergeProgress(table.data(), nullptr, 3470);
    dialog->setProgress(40);

    if (!parser.isSet(outOption))
        return app.exec();

    // Let the layouts settle and the spinners take a step.
    QEventLoop settle;
    QTimer::singleShot(600, &settle, &QEventLoop::quit);
    settle.exec();

    const QColor background = app.palette().color(QPalette::Window);
    const QImage image = stack(table->grab(), dialog->grab(), background);
    if (!image.save(parser.value(outOption))) {
        qCritical("cannot write %s", qPrintable(parser.value(outOption)));
        return 1;
    }
    return 0;
}
