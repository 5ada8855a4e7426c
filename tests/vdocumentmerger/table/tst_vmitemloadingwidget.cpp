#include <QAbstractEventDispatcher>
#include <QtTest>

#include "table/vmitemloadingwidget.h"

class tst_VMItemLoadingWidget : public QObject {
    Q_OBJECT

private slots:
    void steps();
    void hideStopsAndShowStartsOver();

private:
    // Delivers one tick of the spinner's own timer, as the event loop would.
    static void tick(VMItemLoadingWidget *spinner);
};

void tst_VMItemLoadingWidget::tick(VMItemLoadingWidget *spinner)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(spinner);
    QCOMPARE(timers.size(), 1);
    QCOMPARE(timers.first().interval, 300);
    QTimerEvent event(timers.first().timerId);
    QCoreApplication::sendEvent(spinner, &event);
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

QTEST_MAIN(tst_VMItemLoadingWidget)
#include "tst_vmitemloadingwidget.moc"
