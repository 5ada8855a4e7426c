#include <QMimeData>
#include <QPointer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

#include "host/liolite.h"
#include "shell/stylesheethelpers.h"
#include "table/vmfiletablecontentarea.h"

// Rows here are plain widgets named R1, R2, ...: the area lays out and moves any widget. The
// style sheet helpers the area builds its look with are tested here too.
class tst_VMFileTableContentArea : public QObject {
    Q_OBJECT

private slots:
    void dropIndex_data();
    void dropIndex();
    void dropAndMove_data();
    void dropAndMove();
    void removeItem();
    void dragMoveShowsIndicatorOnlyForOwnRows_data();
    void dragMoveShowsIndicatorOnlyForOwnRows();
    void overlayScrollBarAndDragScrolling();
    void scaledSheets_data();
    void scaledSheets();
    void scrollBarStyleSheetPlaceholders();
    void themeColorDefaults_data();
    void themeColorDefaults();
};

namespace {

constexpr int RowHeight = 48;

QWidget *addRow(VMFileTableContentArea &area, const QString &name)
{
    auto *row = new QWidget;
    row->setObjectName(name);
    row->setFixedHeight(RowHeight);
    area.addItem(row);
    return row;
}

void fill(VMFileTableContentArea &area, int rows)
{
    for (int i = 1; i <= rows; ++i)
        addRow(area, QStringLiteral("R%1").arg(i));
}

bool showArea(VMFileTableContentArea &area, int height = 400)
{
    area.resize(600, height);
    area.show();
    return QTest::qWaitForWindowExposed(&area);
}

QByteArray addressOf(const QWidget *widget)
{
    return QByteArray::number(quint64(reinterpret_cast<quintptr>(widget)));
}

// A drag entering the list and moving to height y, as the platform's drag would send it.
void dragOver(VMFileTableContentArea &area, const QByteArray &payload, int y)
{
    QMimeData data;
    data.setData(QLatin1String(VMFileTableContentArea::ItemMimeType), payload);
    QDragEnterEvent enter(QPoint(100, y), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(area.viewport(), &enter);
    QDragMoveEvent move(QPoint(100, y), Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(area.viewport(), &move);
}

QStringList names(const VMFileTableContentArea &area)
{
    QStringList result;
    for (int i = 0; i < area.itemCount(); ++i)
        result << area.itemAt(i)->objectName();
    return result;
}

} // namespace

void tst_VMFileTableContentArea::dropIndex_data()
{
    QTest::addColumn<int>("indicatorRow"); // -1: no indicator
    QTest::addColumn<int>("y");            // in the view, rows are 48 high
    QTest::addColumn<int>("expected");

    QTest::newRow("lower_half_of_middle") << -1 << 90 << 1;
    QTest::newRow("upper_half_of_last") << -1 << 100 << 2;
    QTest::newRow("lower_half_of_last") << -1 << 140 << 3;
    QTest::newRow("below_all_rows") << -1 << 400 << 2;
    // With the 5 px indicator before row 1, rows 1 and 2 sit 5 px lower.
    QTest::newRow("indicator_before_middle_pointer_on_last") << 1 << 110 << 2;
    QTest::newRow("indicator_before_middle_pointer_on_first") << 1 << 10 << 0;
    QTest::newRow("indicator_at_end_pointer_below_all") << 3 << 400 << 3;
    QTest::newRow("indicator_at_end_lower_half_of_last") << 3 << 140 << 3;
}

void tst_VMFileTableContentArea::dropIndex()
{
    QFETCH(int, indicatorRow);
    QFETCH(int, y);
    QFETCH(int, expected);

    VMFileTableContentArea area;
    fill(area, 3);
    QVERIFY(showArea(area));
    if (indicatorRow >= 0)
        area.moveDropIndicator(indicatorRow);
    QTRY_COMPARE(area.widget()->height(), 3 * RowHeight + (indicatorRow >= 0 ? 5 : 0));
    QCOMPARE(area.dropIndexAt(QPoint(100, y)), expected);
    // Counting and indexing skip the indicator; sorting takes it away first.
    QCOMPARE(names(area), (QStringList{"R1", "R2", "R3"}));
    QVERIFY(!area.itemAt(-1) && !area.itemAt(3));
    area.sortItems([](QWidget *a, QWidget *b) { return a->objectName() > b->objectName(); });
    QCOMPARE(area.dropIndicatorIndex(), -1);
    QCOMPARE(names(area), (QStringList{"R3", "R2", "R1"}));
}

void tst_VMFileTableContentArea::dropAndMove_data()
{
    QTest::addColumn<int>("dragged"); // row index
    QTest::addColumn<int>("dropAt");  // row index of the indicator, -1: never shown
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<int>("orderSignals");

    const QStringList unchanged{"R1", "R2", "R3", "R4"};
    QTest::newRow("first_to_end") << 0 << 4 << QStringList{"R2", "R3", "R4", "R1"} << 1;
    QTest::newRow("middle_to_top") << 2 << 0 << QStringList{"R3", "R1", "R2", "R4"} << 1;
    QTest::newRow("last_to_middle") << 3 << 1 << QStringList{"R1", "R4", "R2", "R3"} << 1;
    QTest::newRow("middle_right_below_itself") << 1 << 2 << unchanged << 1;
    QTest::newRow("middle_right_above_itself") << 1 << 1 << unchanged << 0;
    QTest::newRow("indicator_never_shown") << 1 << -1 << unchanged << 0;
}

void tst_VMFileTableContentArea::dropAndMove()
{
    QFETCH(int, dragged);
    QFETCH(int, dropAt);
    QFETCH(QStringList, order);
    QFETCH(int, orderSignals);

    VMFileTableContentArea area;
    fill(area, 4);
    QWidget *row = area.itemAt(dragged);
    QSignalSpy orderSpy(&area, &VMFileTableContentArea::sigItemsOrderChanged);
    QVERIFY(orderSpy.isValid());

    if (dropAt >= 0)
        area.moveDropIndicator(dropAt);
    QCOMPARE(area.dropRowAtIndicator(row), orderSignals == 1);
    QCOMPARE(names(area), order);
    QCOMPARE(orderSpy.count(), orderSignals);
    QCOMPARE(area.dropIndicatorIndex(), -1);
}

void tst_VMFileTableContentArea::removeItem()
{
    VMFileTableContentArea area;
    QCOMPARE(area.dropIndexAt(QPoint(10, 10)), -1);
    fill(area, 3);
    QWidget *middle = area.itemAt(1);
    QPointer<QWidget> guard(middle);
    QStringList log;
    connect(&area, &VMFileTableContentArea::sigItemRemoved, this,
            [&log](QWidget *row) { log << "removed " + row->objectName(); });
    connect(&area, &VMFileTableContentArea::sigCountChange, this,
            [&log](int count) { log << QStringLiteral("count %1").arg(count); });

    QWidget stranger;
    area.removeItem(&stranger);
    area.removeItem(nullptr);
    QVERIFY(log.isEmpty());

    area.removeItem(middle);
    QCOMPARE(log, (QStringList{"removed R2", "count 2"}));
    QCOMPARE(names(area), (QStringList{"R1", "R3"}));
    QVERIFY(guard);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!guard);
}

void tst_VMFileTableContentArea::dragMoveShowsIndicatorOnlyForOwnRows_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("shown");

    // An address not among the rows and one that is no number: nothing else is taken.
    QTest::newRow("own_row") << "own" << true;
    QTest::newRow("other_list_row") << "other_list" << false;
    QTest::newRow("not_a_number") << "text" << false;
}

void tst_VMFileTableContentArea::dragMoveShowsIndicatorOnlyForOwnRows()
{
    QFETCH(QString, kind);
    QFETCH(bool, shown);

    VMFileTableContentArea area;
    fill(area, 3);
    VMFileTableContentArea otherList;
    QWidget *otherRow = addRow(otherList, QStringLiteral("X"));
    QVERIFY(showArea(area));

    const QHash<QString, QByteArray> payloads{
        {"own", addressOf(area.itemAt(0))}, {"other_list", addressOf(otherRow)}, {"text", "R1"}};
    dragOver(area, payloads.value(kind), 140);
    QCOMPARE(area.dropIndicatorIndex(), shown ? 3 : -1);

    // Files dragged from outside are left to the parents.
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.docx"))});
    QDragEnterEvent filesEnter(QPoint(100, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(area.viewport(), &filesEnter);
    QVERIFY(!filesEnter.isAccepted());
}

void tst_VMFileTableContentArea::overlayScrollBarAndDragScrolling()
{
    VMFileTableContentArea area;
    fill(area, 3);
    QVERIFY(showArea(area, 3 * RowHeight + RowHeight / 2));
    auto *overlay = area.viewport()->findChild<QScrollBar *>();
    QVERIFY(overlay);
    QVERIFY(!overlay->isVisible());

    fill(area, 7);
    QScrollBar *bar = area.verticalScrollBar();
    QTRY_COMPARE(bar->maximum(), 10 * RowHeight - area.viewport()->height());
    QVERIFY(overlay->isVisible());
    QVERIFY(!bar->isVisible());
    QCOMPARE(overlay->maximum(), bar->maximum());
    QCOMPARE(overlay->geometry().right(), area.viewport()->width() - 1);
    QCOMPARE(area.widget()->width(), area.viewport()->width());

    // Dragging within half a row of the bottom edge scrolls down, of the top edge up, and
    // in between not at all.
    const QByteArray row = addressOf(area.itemAt(5));
    dragOver(area, row, area.height() - 10);
    const int scrolledDown = bar->value();
    QVERIFY(scrolledDown > 0);
    QCOMPARE(overlay->value(), scrolledDown);
    dragOver(area, row, area.height() / 2);
    QCOMPARE(bar->value(), scrolledDown);
    dragOver(area, row, 10);
    QVERIFY(bar->value() < scrolledDown);
}

void tst_VMFileTableContentArea::scaledSheets_data()
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

void tst_VMFileTableContentArea::scaledSheets()
{
    QFETCH(double, factor);
    QFETCH(QString, sheet);
    QFETCH(QString, expected);

    const double previous = VLiteStyle::scaleOverride();
    auto restore = qScopeGuard([previous] { VLiteStyle::setScaleOverride(previous); });
    VLiteStyle::setScaleOverride(factor);
    QCOMPARE(dpiScaledStyleSheet(sheet), expected);
}

void tst_VMFileTableContentArea::scrollBarStyleSheetPlaceholders()
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

void tst_VMFileTableContentArea::themeColorDefaults_data()
{
    QTest::addColumn<QColor>("fallback");
    QTest::addColumn<QString>("expected");

    QTest::newRow("spin_box_border_default") << QColor(QStringLiteral("#D7D9DE")) << "rgba(215,217,222,255)";
    QTest::newRow("translucent_keeps_alpha") << QColor(1, 2, 3, 4) << "rgba(1,2,3,4)";
}

void tst_VMFileTableContentArea::themeColorDefaults()
{
    QFETCH(QColor, fallback);
    QFETCH(QString, expected);

    QCOMPARE(themeColorRgba(QStringLiteral("VMNoSuchThemeClass"), QStringLiteral("no-such-key"), fallback),
             expected);
}

QTEST_MAIN(tst_VMFileTableContentArea)
#include "tst_vmfiletablecontentarea.moc"
