#include <QAbstractEventDispatcher>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>
#include <QtTest/qtestspontaneevent.h>

#include "fakemainwindow.h"
#include "host/liolite.h"
#include "table/vmelidedtextlabel.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfilenamesubitem.h"
#include "table/vmitemloadingwidget.h"
#include "table/vmoperatesubitem.h"
#include "table/vmoutputrangesubitem.h"
#include "table/vmpagessubitem.h"
#include "table/vmrangeoperatewidget.h"

using Params = QHash<QString, QString>;

namespace {

bool textFits(QSpinBox *spinBox)
{
    const QLineEdit *edit = spinBox->findChild<QLineEdit *>();
    return edit && edit->fontMetrics().horizontalAdvance(spinBox->text()) <= edit->width();
}

// Delivers one tick of the spinner's own timer, as the event loop would; gives the lit dot.
int tick(VMItemLoadingWidget *spinner)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(spinner);
    if (timers.size() != 1 || timers.first().interval != 300)
        return -2; // no timer, or not the 300 ms one
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(spinner, &event);
    return spinner->litDot();
}

} // namespace

class tst_VMFifleTableContentItem : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void rangeRules_data();
    void rangeRules();
    void looks();
    void loadingDotsStopWhenHiddenAndStartOverWhenShown();
    void names_data();
    void names();
    void wheelScrollsListNotSpinBox();
    void dragStart_data();
    void dragStart();
    void openMissingDocument_data();
    void openMissingDocument();

private:
    InitializedHost m_host;
    QScrollArea *m_list = nullptr;
    VMFifleTableContentItem *m_row = nullptr;
};

void tst_VMFifleTableContentItem::init()
{
    // A list taller than its window, as the table's.
    m_list = new QScrollArea;
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    m_row = new VMFifleTableContentItem(content);
    layout->addWidget(m_row);
    layout->addSpacing(2000);
    m_list->setWidget(content);
    m_list->setWidgetResizable(true);
    m_list->resize(int(VLiteStyle::dpiScaled(900)), 300);
    m_list->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_list));
    m_host.app.clearEvents();
}

void tst_VMFifleTableContentItem::cleanup()
{
    delete m_list;
}

void tst_VMFifleTableContentItem::rangeRules_data()
{
    QTest::addColumn<QList<int>>("counts");
    QTest::addColumn<int>("userFrom");
    QTest::addColumn<int>("userTo");
    QTest::addColumn<int>("max");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");

    // The user's range is entered after the first count; 0 leaves the filled-in one.
    QTest::newRow("first_count_fills_range") << QList<int>{12} << 0 << 0 << 12 << 1 << 12;
    QTest::newRow("reload_12_then_4_keeps_3_to_4") << QList<int>{12, 4} << 3 << 5 << 4 << 3 << 4;
    QTest::newRow("count_0_gives_1_to_1") << QList<int>{0} << 0 << 0 << 1 << 1 << 1;
    QTest::newRow("first_greater_than_last_kept") << QList<int>{12, 9} << 7 << 2 << 9 << 7 << 2;
    QTest::newRow("five_digits_shown_whole") << QList<int>{99999} << 88888 << 99999 << 99999 << 88888 << 99999;
}

void tst_VMFifleTableContentItem::rangeRules()
{
    QFETCH(QList<int>, counts);
    QFETCH(int, userFrom);
    QFETCH(int, userTo);
    QFETCH(int, max);
    QFETCH(int, from);
    QFETCH(int, to);

    for (int i = 0; i < counts.size(); ++i) {
        if (i == 1)
            m_row->startLoading();
        m_row->applyPageCount(counts.at(i));
        if (i == 0 && userFrom) {
            m_row->setRangeFrom(userFrom);
            m_row->setRangeTo(userTo);
        }
    }
    QSpinBox *first = m_row->outputRangeSubItem()->rangeWidget()->fromSpinBox();
    QSpinBox *last = m_row->outputRangeSubItem()->rangeWidget()->toSpinBox();
    QCOMPARE(first->maximum(), max);
    QCOMPARE(last->maximum(), max);
    QCOMPARE(m_row->rangeFrom(), from);
    QCOMPARE(m_row->rangeTo(), to);

    // Nothing clipped: both values and the count are shown whole.
    QVERIFY(first->isVisible());
    QVERIFY(textFits(first));
    QVERIFY(textFits(last));
    const VLiteLabel *count = m_row->pagesSubItem()->countLabel();
    QVERIFY(count->fontMetrics().horizontalAdvance(count->text()) <= count->width());
}

void tst_VMFifleTableContentItem::looks()
{
    VMPagesSubItem *pages = m_row->pagesSubItem();
    VMOutputRangeSubItem *range = m_row->outputRangeSubItem();
    VMElidedTextLabel *name = m_row->fileNameSubItem()->nameLabel();
    QSignalSpy reload(m_row, &VMFifleTableContentItem::sigReload);
    QVERIFY(reload.isValid());

    // Loading.
    QCOMPARE(pages->countLabel()->text(), QStringLiteral("-"));
    QCOMPARE(range->currentIndex(), 0);
    QVERIFY(m_row->isLoading());
    QVERIFY(name->isEnabled());

    // Read failed: still dots, greyed name, the reasons on "read fail".
    m_row->setReadSuccess(false);
    QCOMPARE(pages->currentIndex(), 1);
    QVERIFY(range->loadingWidget()->isVisible());
    QVERIFY(!m_row->isLoading());
    QCOMPARE(range->loadingWidget()->litDot(), -1);
    QVERIFY(!name->isEnabled());
    QCOMPARE(pages->readFailLabel()->toolTip().split('\n').size(), 4);
    QVERIFY(pages->readFailLabel()->fontMetrics().horizontalAdvance(pages->readFailLabel()->text())
            <= pages->readFailLabel()->width());
    QVERIFY(pages->reloadButton()->isVisible());

    // Reload: the spinner runs where it stands, "read fail" stays until the result.
    QTest::mouseClick(pages->reloadButton(), Qt::LeftButton);
    QCOMPARE(reload.count(), 1);
    m_row->startLoading();
    QVERIFY(m_row->isLoading());
    QCOMPARE(pages->currentIndex(), 1);

    // Counted.
    m_row->applyPageCount(7);
    QCOMPARE(pages->currentIndex(), 0);
    QCOMPARE(pages->countLabel()->text(), QStringLiteral("7"));
    QCOMPARE(range->currentIndex(), 1);
    QVERIFY(!m_row->isLoading());
    QVERIFY(name->isEnabled());
    QVERIFY(m_row->isReadSuccess());
}

void tst_VMFifleTableContentItem::loadingDotsStopWhenHiddenAndStartOverWhenShown()
{
    VMItemLoadingWidget spinner;
    QVERIFY(!spinner.isRunning());
    spinner.show();
    QVERIFY(spinner.isRunning());
    QCOMPARE(spinner.litDot(), -1);

    // Four dots in turn, three ticks dark, then again.
    const QVector<int> expected{0, 1, 2, 3, -1, -1, -1, 0, 1, 2, 3, -1, -1, -1, 0};
    QVector<int> seen;
    for (int i = 0; i < expected.size(); ++i)
        seen << tick(&spinner);
    QCOMPARE(seen, expected);

    spinner.hide();
    QVERIFY(!spinner.isRunning());
    QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(&spinner).isEmpty());
    spinner.show();
    QVERIFY(spinner.isRunning());
    QCOMPARE(spinner.litDot(), -1);
    QCOMPARE(tick(&spinner), 0);
}

void tst_VMFifleTableContentItem::names_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("needs_escaping") << QStringLiteral("a&b <c> 'd' \"e\" %20 #1;$(x).docx");
    QTest::newRow("very_long") << QString(QStringLiteral("annual report ").repeated(20) + QStringLiteral("final.docx"));
}

void tst_VMFifleTableContentItem::names()
{
    QFETCH(QString, fileName);
    const QString path = QStringLiteral("/tmp/some folder/") + fileName;
    m_row->setFilePath(path);
    VMElidedTextLabel *name = m_row->fileNameSubItem()->nameLabel();

    QCOMPARE(name->toolTip(), path);
    QCOMPARE(name->fullText(), fileName);
    QTRY_VERIFY(name->fontMetrics().horizontalAdvance(name->text()) <= name->width());
    if (name->textWidth() > name->width())
        QVERIFY(name->text().contains(QChar(0x2026)));
}

void tst_VMFifleTableContentItem::wheelScrollsListNotSpinBox()
{
    m_row->applyPageCount(12);
    m_row->setRangeFrom(5);
    QSpinBox *first = m_row->outputRangeSubItem()->rangeWidget()->fromSpinBox();
    const QPoint centre = first->rect().center();
    QWheelEvent wheel(centre, first->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    // As the window system delivers it (sendEvent() would make it non-spontaneous, which is
    // never handed on to the parents).
    QSpontaneKeyEvent::setSpontaneous(&wheel);
    QCOMPARE(m_list->verticalScrollBar()->value(), 0);
    qApp->notify(first, &wheel);
    QCOMPARE(m_row->rangeFrom(), 5);
    QVERIFY(m_list->verticalScrollBar()->value() > 0);
}

void tst_VMFifleTableContentItem::dragStart_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("drags");

    // Only the left button alone starts a drag; with the right one held too it is no drag.
    for (const QString target : {"handle", "row", "name"}) {
        QTest::addRow("%s_left", qPrintable(target)) << target << int(Qt::LeftButton) << 1;
        QTest::addRow("%s_left_and_right", qPrintable(target)) << target << int(Qt::LeftButton | Qt::RightButton) << 0;
    }
}

void tst_VMFifleTableContentItem::dragStart()
{
    QFETCH(QString, target);
    QFETCH(int, buttons);
    QFETCH(int, drags);
    m_row->setFilePath(QStringLiteral("/tmp/a.docx"));
    QWidget *receiver = target == "handle" ? static_cast<QWidget *>(m_row->operateSubItem()->dragButton())
                        : target == "row"  ? static_cast<QWidget *>(m_row)
                                           : m_row->fileNameSubItem()->nameLabel();
    QSignalSpy spy(m_row, &VMFifleTableContentItem::sigStartDrag);
    QVERIFY(spy.isValid());
    QMouseEvent move(QEvent::MouseMove, QPointF(3, 3), receiver->mapToGlobal(QPoint(3, 3)), Qt::NoButton,
                     Qt::MouseButtons(buttons), Qt::NoModifier);
    QApplication::sendEvent(receiver, &move);
    QCOMPARE(spy.count(), drags);
}

void tst_VMFifleTableContentItem::openMissingDocument_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<QString>("closedAs");

    // The row never looks at the disk before a click: a path that never existed is one that vanished.
    QTest::newRow("missing_open_file_confirm") << "file" << "/nonexistent/report.docx" << true << "click_well";
    QTest::newRow("missing_open_folder_escape")
        << "folder" << "/tmp/no such \"dir\"/it's a&b; $(x) %20.docx" << false << "click_close";
    QTest::newRow("empty_path_open_file") << "file" << "" << true << "";
}

void tst_VMFifleTableContentItem::openMissingDocument()
{
    QFETCH(QString, kind);
    QFETCH(QString, path);
    QFETCH(bool, confirm);
    QFETCH(QString, closedAs);

    m_row->setFilePath(path);

    QString dialogContent;
    QObject answerer; // dies first: an answer never given must not outlive dialogContent
    QTimer::singleShot(0, &answerer, [&] {
        auto *dialog = qobject_cast<VLiteContentDlg *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        dialogContent = dialog->content();
        if (confirm)
            dialog->button(VLiteContentDlg::BtnConfirm)->click();
        else
            QTest::keyClick(dialog, Qt::Key_Escape);
    });
    VLiteButton *button =
        kind == "file" ? m_row->operateSubItem()->openFileButton() : m_row->operateSubItem()->openDirButton();
    QTest::mouseClick(button, Qt::LeftButton);

    QList<FakeAppContainer::Event> expected{{"vas_wordmerge_click", Params{{"type", kind}}}};
    if (!closedAs.isEmpty()) {
        QCOMPARE(dialogContent, QStringLiteral("The document does not exist. It may be removed or renamed"));
        expected.append({"vas_wordmerge_popup", Params{{"type", "list_openfile_fail"}, {"action", "show"}}});
        expected.append({"vas_wordmerge_popup", Params{{"type", "list_openfile_fail"}, {"action", closedAs}}});
    } else {
        QVERIFY(dialogContent.isEmpty());
    }
    QCOMPARE(m_host.app.events().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(m_host.app.events().at(i).name, expected.at(i).name);
        QCOMPARE(m_host.app.events().at(i).params, expected.at(i).params);
    }
    QCOMPARE(m_row->filePath(), path);
}

QTEST_MAIN(tst_VMFifleTableContentItem)
#include "tst_vmfifletablecontentitem.moc"
