#include <QAbstractEventDispatcher>
#include <QtTest>

#include "table/vmitemloadingwidget.h"

class tst_VMItemLoadingWidget : public QObject {
    Q_OBJECT

private slots:
    void stepsStopWhenHiddenAndStartOverWhenShown();
};

// Delivers one tick of the spinner's own timer, as the event loop would; gives the lit dot.
static int tick(VMItemLoadingWidget *spinner)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(spinner);
    if (timers.size() != 1 || timers.first().interval != 300)
        return -2; // no timer, or not the 300 ms one
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(spinner, &event);
    return spinner->litDot();
}

void tst_VMItemLoadingWidget::stepsStopWhenHiddenAndStartOverWhenShown()
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

QTEST_MAIN(tst_VMItemLoadingWidget)
#include "tst_vmitemloadingwidget.moc"
