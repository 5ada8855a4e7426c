#include <QSignalSpy>
#include <QtTest>

#include "host/liolite.h"
#include "page/vmbottomoptionwidget.h"

class tst_VMBottomOptionWidget : public QObject {
    Q_OBJECT

private slots:
    void clicksFollowEnabledState_data();
    void clicksFollowEnabledState();
};

void tst_VMBottomOptionWidget::clicksFollowEnabledState_data()
{
    QTest::addColumn<QList<bool>>("enableSteps");
    QTest::addColumn<int>("expectedSignals");

    QTest::newRow("never_enabled") << QList<bool>() << 0;
    QTest::newRow("enabled") << QList<bool>{true} << 1;
    QTest::newRow("enabled_then_disabled") << QList<bool>{true, false} << 0;
    QTest::newRow("disabled_enabled_again") << QList<bool>{true, false, true} << 1;
}

void tst_VMBottomOptionWidget::clicksFollowEnabledState()
{
    QFETCH(QList<bool>, enableSteps);
    QFETCH(int, expectedSignals);

    VMBottomOptionWidget bar(nullptr);
    bar.show();
    QVERIFY(QTest::qWaitForWindowExposed(&bar));
    QSignalSpy spy(&bar, &VMBottomOptionWidget::sigStartMerger);
    QVERIFY(spy.isValid());
    for (bool enabled : enableSteps)
        bar.setStartEnabled(enabled);

    auto *button = bar.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.count(), expectedSignals);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(spy.count(), 2 * expectedSignals);
    for (const QList<QVariant> &args : spy)
        QVERIFY(args.isEmpty());
}

QTEST_MAIN(tst_VMBottomOptionWidget)
#include "tst_vmbottomoptionwidget.moc"
