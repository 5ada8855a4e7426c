#include <QAbstractEventDispatcher>
#include <QtTest>

#include "host/liolite.h"
#include "table/vmitemloadingwidget.h"

class tst_VMItemLoadingWidget : public QObject {
    Q_OBJECT

private slots:
    void steps();
    void hideStopsAndShowStartsOver();
    void stoppedSpinnerPaintsAllDotsUnlit();

private:
    // Delivers one tick of the spinner's own timer, as the event loop would.
    static void tick(VMItemLoadingWidget *spinner);
    static QColor dotColor(VMItemLoadingWidget *spinner, int dot);
};

void tst_VMItemLoadingWidget::tick(VMItemLoadingWidget *spinner)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(spinner);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first().interval, 300);
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(spinner, &event);
}

QColor tst_VMItemLoadingWidget::dotColor(VMItemLoadingWidget *spinner, int dot)
{
    const QImage image = spinner->grab().toImage();
    const QRect box = QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter,
                                          spinner->property("originalMinimumSize").toSize(), spinner->rect());
    const int x = int(box.left() + VLiteStyle::dpiScaled(4) + VLiteStyle::dpiScaled(14) * dot);
    const qreal ratio = image.devicePixelRatio();
    return image.pixelColor(int(x * ratio), int((box.top() + box.height() / 2) * ratio));
}

void tst_VMItemLoadingWidget::steps()
{
    VMItemLoadingWidget spinner;
    QVERIFY(!spinner.isRunning());
    spinner.show();
    QVERIFY(spinner.isRunning());
    QCOMPARE(spinner.litDot(), -1);

    // Four dots in turn, three ticks dark, then again.
    const QVector<int> expected{0, 1, 2, 3, -1, -1, -1, 0, 1, 2, 3, -1, -1, -1, 0};
    QVector<int> seen;
    for (int i = 0; i < expected.size(); ++i) {
        tick(&spinner);
        seen << spinner.litDot();
    }
    QCOMPARE(seen, expected);

    // Another timer's event does not advance it.
    QTimerEvent foreign(spinner.startTimer(100000));
    QCoreApplication::sendEvent(&spinner, &foreign);
    spinner.killTimer(foreign.timerId());
    QCOMPARE(spinner.litDot(), 0);
}

void tst_VMItemLoadingWidget::hideStopsAndShowStartsOver()
{
    VMItemLoadingWidget spinner;
    spinner.show();
    tick(&spinner);
    tick(&spinner);
    QCOMPARE(spinner.litDot(), 1);

    spinner.hide();
    QVERIFY(!spinner.isRunning());
    QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(&spinner).isEmpty());
    spinner.show();
    QVERIFY(spinner.isRunning());
    QCOMPARE(spinner.litDot(), -1);
    tick(&spinner);
    QCOMPARE(spinner.litDot(), 0);
}

void tst_VMItemLoadingWidget::stoppedSpinnerPaintsAllDotsUnlit()
{
    const QColor lit = VDrawHelper::getColorFromTheme("VMLoadingItem", "background-highlight", QColor("#B7BFD0FF"));
    const QColor unlit = VDrawHelper::getColorFromTheme("VMLoadingItem", "background", QColor("#D4DBE9FF"));
    QVERIFY(lit != unlit);

    VMItemLoadingWidget spinner;
    spinner.resize(120, 40);
    spinner.show();
    tick(&spinner);
    tick(&spinner);
    QCOMPARE(dotColor(&spinner, 1), lit);
    QCOMPARE(dotColor(&spinner, 0), unlit);

    spinner.stop();
    QVERIFY(spinner.isVisible());
    for (int dot = 0; dot < 4; ++dot)
        QCOMPARE(dotColor(&spinner, dot), unlit);
}

QTEST_MAIN(tst_VMItemLoadingWidget)
#include "tst_vmitemloadingwidget.moc"
