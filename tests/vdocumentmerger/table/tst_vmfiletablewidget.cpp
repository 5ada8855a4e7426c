#include <QVBoxLayout>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

#include "host/liolite.h"
#include "table/vmcheckbox.h"
#include "table/vmfifletablecontentitem.h"
#include "table/vmfilenamesubitem.h"
#include "table/vmfiletablecontentarea.h"
#include "table/vmfiletableheader.h"
#include "table/vmfiletablestatusbar.h"
#include "table/vmfiletablewidget.h"
#include "table/vmoperatesubitem.h"
#include "table/vmsortstatebutton.h"
#include "table/vmtableheadernameitem.h"

// The table as the merge page sees it: rows added, clicked, sorted, dragged and removed,
// with the status bar following the counts.
class tst_VMFileTableWidget : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void headerAndCounts_data();
    void headerAndCounts();
    void sortOrders_data();
    void sortOrders();
    void sortButtonIconFollowsClicks();
    void removalSignalsKeepRowReadable();
};

namespace {

// Shown at once: wait for it to be exposed.
struct Fixture {
    QWidget window;
    VMFileTableWidget &table = *new VMFileTableWidget(&window);
    VMFileTableStatusBar &statusBar = *new VMFileTableStatusBar(&window);

    Fixture()
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(&table);
        layout->addWidget(&statusBar);
        QObject::connect(&table, &VMFileTableWidget::sigSelectedItemCountChange, &statusBar,
                         &VMFileTableStatusBar::updateSelectedCount);
        window.resize(900, 500);
        window.show();
    }

    QStringList names() const
    {
        QStringList result;
        for (int i = 0; i < table.itemCount(); ++i)
            result << QFileInfo(table.itemAt(i)->filePath()).fileName();
        return result;
    }
    QString checkPattern() const
    {
        QString pattern;
        for (int i = 0; i < table.itemCount(); ++i)
            pattern += table.itemAt(i)->isChecked() ? QLatin1Char('1') : QLatin1Char('0');
        return pattern;
    }
    VLiteButton *statusButton(const QString &prefix) const
    {
        for (VLiteButton *button : statusBar.findChildren<VLiteButton *>()) {
            if (button->text().startsWith(prefix))
                return button;
        }
        return nullptr;
    }
    QString countText() const
    {
        for (VLiteLabel *label : statusBar.findChildren<VLiteLabel *>()) {
            if (label->text().endsWith(QLatin1String("copies")))
                return label->text();
        }
        return QString();
    }

    // Steps: "add NAME", "uncheck I", "header", "invert", "removeSelected", "delete I",
    // "sort S", "click sort", "drag FROM TO".
    void run(const QStringList &steps)
    {
        VMTableHeaderNameItem *nameItem = table.header()->nameItem();
        for (const QString &step : steps) {
            const QStringList words = step.split(QLatin1Char(' '));
            const QString &verb = words.first();
            if (verb == QLatin1String("add")) {
                table.addFile(QStringLiteral("/docs/") + words.at(1));
            } else if (verb == QLatin1String("uncheck")) {
                QTest::mouseClick(table.itemAt(words.at(1).toInt())->fileNameSubItem()->checkBox(), Qt::LeftButton);
            } else if (verb == QLatin1String("header")) {
                QTest::mouseClick(nameItem->checkBox(), Qt::LeftButton);
            } else if (verb == QLatin1String("invert")) {
                QVERIFY(nameItem->invertSelectionLink()->isVisible());
                QTest::mouseClick(nameItem->invertSelectionLink(), Qt::LeftButton);
            } else if (verb == QLatin1String("removeSelected")) {
                table.removeSelected();
            } else if (verb == QLatin1String("delete")) {
                QTest::mouseClick(table.itemAt(words.at(1).toInt())->operateSubItem()->deleteButton(), Qt::LeftButton);
            } else if (verb == QLatin1String("sort")) {
                table.onSortClicked(words.at(1).toInt());
            } else if (verb == QLatin1String("click")) {
                QTest::mouseClick(nameItem->sortButton(), Qt::LeftButton);
            } else if (verb == QLatin1String("drag")) {
                VMFileTableContentArea *area = table.contentArea();
                QWidget *row = area->itemAt(words.at(1).toInt());
                area->moveDropIndicator(words.at(2).toInt());
                QVERIFY(area->dropRowAtIndicator(row));
            } else {
                QFAIL(qPrintable("unknown step " + step));
            }
        }
    }
};

} // namespace

void tst_VMFileTableWidget::initTestCase()
{
    qRegisterMetaType<VMFifleTableContentItem *>();
}

void tst_VMFileTableWidget::headerAndCounts_data()
{
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QString>("checked");
    QTest::addColumn<Qt::CheckState>("header");
    QTest::addColumn<int>("batchSignals");

    QTest::newRow("three_added") << QStringList() << "111" << Qt::Checked << 0;
    QTest::newRow("partial_header_click_checks_all") << QStringList{"uncheck 1", "header"} << "111" << Qt::Checked
                                                     << 1;
    QTest::newRow("second_header_click_unchecks_all")
        << QStringList{"uncheck 1", "header", "header"} << "000" << Qt::Unchecked << 2;
    QTest::newRow("unchecked_header_click_checks_all")
        << QStringList{"uncheck 0", "uncheck 1", "uncheck 2", "header"} << "111" << Qt::Checked << 1;
    QTest::newRow("invert_mixed") << QStringList{"uncheck 1", "invert"} << "010" << Qt::PartiallyChecked << 1;
    QTest::newRow("added_to_unchecked_rows") << QStringList{"header", "add d.doc"} << "0001"
                                             << Qt::PartiallyChecked << 1;
    QTest::newRow("checked_rows_removed") << QStringList{"uncheck 1", "removeSelected"} << "0" << Qt::Unchecked << 0;
    QTest::newRow("remove_selected_with_none_checked")
        << QStringList{"header", "removeSelected"} << "000" << Qt::Unchecked << 1;
    QTest::newRow("unchecked_row_deleted") << QStringList{"uncheck 1", "delete 1"} << "11" << Qt::Checked << 0;
    QTest::newRow("all_removed") << QStringList{"removeSelected"} << "" << Qt::Unchecked << 0;
}

void tst_VMFileTableWidget::headerAndCounts()
{
    QFETCH(QStringList, steps);
    QFETCH(QString, checked);
    QFETCH(Qt::CheckState, header);
    QFETCH(int, batchSignals);

    Fixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    QSignalSpy countSpy(&f.table, &VMFileTableWidget::sigSelectedItemCountChange);
    QSignalSpy batchSpy(&f.table, &VMFileTableWidget::sigBatchCheckClicked);
    QSignalSpy removedSpy(&f.table, &VMFileTableWidget::sigSlectedItemRemoved);
    QSignalSpy clickSpy(&f.table, &VMFileTableWidget::sigItemCheckClicked);
    QVERIFY(countSpy.isValid() && batchSpy.isValid() && removedSpy.isValid() && clickSpy.isValid());

    f.run({"add a.doc", "add b.doc", "add c.doc"});
    QCOMPARE(countSpy.last(), (QVariantList{3, 3}));
    f.run(steps);

    const int selected = checked.count(QLatin1Char('1'));
    const int total = checked.size();
    QCOMPARE(f.checkPattern(), checked);
    QCOMPARE(f.table.checkedCount(), selected);
    QCOMPARE(f.table.header()->checkState(), header);
    QCOMPARE(f.table.header()->nameItem()->invertSelectionLink()->isVisible(), header == Qt::PartiallyChecked);
    QCOMPARE(countSpy.last(), (QVariantList{selected, total}));
    QCOMPARE(batchSpy.count(), batchSignals);
    QCOMPARE(removedSpy.count(), steps.count(QStringLiteral("removeSelected")));
    QCOMPARE(clickSpy.count(), steps.filter(QStringLiteral("uncheck")).size());

    QCOMPARE(f.countText(), QStringLiteral("%1copies").arg(selected));
    VLiteButton *clear = f.statusButton(QStringLiteral("Clear selected"));
    QVERIFY(clear);
    QCOMPARE(clear->text(), QStringLiteral("Clear selected(%1/%2)").arg(selected).arg(total));
    QCOMPARE(clear->isEnabled(), selected >= 1);
}

void tst_VMFileTableWidget::sortOrders_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("order");

    const QStringList mixed{"b.doc", "a.zyl", "a.docx"};
    QTest::newRow("ascending") << mixed << QStringList{"sort 1"} << QStringList{"a.docx", "a.zyl", "b.doc"};
    QTest::newRow("descending") << mixed << QStringList{"sort 2"} << QStringList{"b.doc", "a.zyl", "a.docx"};
    QTest::newRow("numbers_by_code_unit") << QStringList{"2.doc", "10.doc", "1.doc"} << QStringList{"sort 1"}
                                          << QStringList{"1.doc", "10.doc", "2.doc"};
    QTest::newRow("upper_case_first") << QStringList{"a.doc", "B.doc"} << QStringList{"sort 1"}
                                      << QStringList{"B.doc", "a.doc"};
    QTest::newRow("folders_play_no_role") << QStringList{"z/a.doc", "a/b.doc"} << QStringList{"sort 1"}
                                          << QStringList{"a.doc", "b.doc"};
    QTest::newRow("descending_drag_then_addition_order")
        << mixed << QStringList{"sort 2", "drag 0 3", "drag 2 0", "sort 0"} << mixed;
    QTest::newRow("added_after_sort_go_last")
        << mixed << QStringList{"sort 1", "add 0.doc"} << QStringList{"a.docx", "a.zyl", "b.doc", "0.doc"};
    QTest::newRow("button_cycles_ascending_descending")
        << mixed << QStringList{"click", "click"} << QStringList{"b.doc", "a.zyl", "a.docx"};
    QTest::newRow("button_third_click_restores") << mixed << QStringList{"click", "drag 2 0", "click", "click"}
                                                 << mixed;
}

void tst_VMFileTableWidget::sortOrders()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, steps);
    QFETCH(QStringList, order);

    Fixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    for (const QString &file : files)
        f.run({"add " + file});
    f.run(steps);
    QCOMPARE(f.names(), order);

    // Tab follows the rows as shown: each row's check box, then its page range, then the next row.
    QStringList tabbed;
    const QWidget *area = f.table.contentArea();
    const QWidget *headerBox = f.table.header()->nameItem()->checkBox();
    for (QWidget *w = area->nextInFocusChain(); w != area; w = w->nextInFocusChain()) {
        QString token;
        if (qobject_cast<VMCheckBox *>(w) && w != headerBox)
            token = w->accessibleName();
        else if (qobject_cast<QSpinBox *>(w) || qobject_cast<QSpinBox *>(w->parentWidget()))
            token = QStringLiteral("range");
        if (!token.isEmpty() && (tabbed.isEmpty() || tabbed.last() != token))
            tabbed << token;
    }
    QStringList expected;
    for (const QString &name : order)
        expected << name << QStringLiteral("range");
    QCOMPARE(tabbed, expected);
}

// The orders each click gives are checked by sortOrders; here the arrow shown for each.
void tst_VMFileTableWidget::sortButtonIconFollowsClicks()
{
    const auto image = [](const QIcon &icon) { return icon.pixmap(16, 16).toImage(); };
    VMSortStateButton button;
    const QStringList icons{"vmsort_button_asce;", "vmsort_button_desc;", "vmsort_button_normal;"};
    for (int i = 0; i < 3; ++i) {
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(image(button.icon()), image(VDrawHelper::loadIcon(icons.at(i))));
    }
    QCOMPARE(button.sortState(), 0);
}

void tst_VMFileTableWidget::removalSignalsKeepRowReadable()
{
    Fixture f;
    QVERIFY(QTest::qWaitForWindowExposed(&f.window));
    f.run({"add a.doc", "add b.doc", "add c.doc"});

    QStringList log;
    connect(&f.table, &VMFileTableWidget::sigSelectedItemCountChange, this,
            [&log](int selected, int total) { log << QStringLiteral("selected %1/%2").arg(selected).arg(total); });
    connect(&f.table, &VMFileTableWidget::sigItemRemoved, this,
            [&log](VMFifleTableContentItem *row) { log << "removed " + row->filePath(); });
    connect(&f.table, &VMFileTableWidget::sigItemCountChange, this,
            [&log](int count) { log << QStringLiteral("count %1").arg(count); });
    connect(&f.table, &VMFileTableWidget::sigFileDel, this, [&log](VMFifleTableContentItem *row) {
        log << QStringLiteral("deleted %1 %2").arg(row->filePath()).arg(row->isChecked());
    });

    // Without a row as sender the slot does nothing.
    f.table.onFileItemDel();
    QVERIFY(log.isEmpty());

    QPointer<VMFifleTableContentItem> row = f.table.itemAt(1);
    QTest::mouseClick(row->operateSubItem()->deleteButton(), Qt::LeftButton);
    QCOMPARE(log, (QStringList{"selected 2/2", "removed /docs/b.doc", "count 2", "deleted /docs/b.doc 1"}));
    QCOMPARE(f.names(), (QStringList{"a.doc", "c.doc"}));
    QTRY_VERIFY(!row);
}

QTEST_MAIN(tst_VMFileTableWidget)
#include "tst_vmfiletablewidget.moc"
