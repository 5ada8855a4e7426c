#include <QLayout>
#include <QSignalSpy>
#include <QtTest>

#include <QAccessible>

#include "host/liolite.h"
#include "output/vmoutputoptionwidget.h"
#include "page/vmbottomoptionwidget.h"

class tst_VMBottomOptionWidget : public QObject {
    Q_OBJECT

private slots:
    void startButtonLook_data();
    void startButtonLook();
    void clicksFollowEnabledState_data();
    void clicksFollowEnabledState();
};

void tst_VMBottomOptionWidget::startButtonLook_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QSize>("size");

    QTest::newRow("scale_1") << 1.0 << QSize(124, 40);
    QTest::newRow("scale_1.5") << 1.5 << QSize(186, 60);
}

void tst_VMBottomOptionWidget::startButtonLook()
{
    QFETCH(double, scale);
    QFETCH(QSize, size);
    const double previous = VLiteStyle::scaleOverride();
    auto restore = qScopeGuard([previous] { VLiteStyle::setScaleOverride(previous); });
    VLiteStyle::setScaleOverride(scale);

    VMBottomOptionWidget bar(nullptr);
    auto *button = bar.findChild<VLiteButton *>(QStringLiteral("VMStartMergeButton"));
    QVERIFY(button);
    QVERIFY(!button->isEnabled());
    QCOMPARE(button->text(), QStringLiteral("start merge"));
    QVERIFY2(!button->icon().isNull(), "the start icon set names no known image");
    QCOMPARE(button->size(), size);
    QCOMPARE(button->minimumSize(), button->maximumSize());
    QCOMPARE(bar.layout()->contentsMargins(), QMargins());
    QCOMPARE(bar.layout()->spacing(), 0);
    // The button sits at the right end, after the stretch.
    QCOMPARE(bar.layout()->indexOf(button), bar.layout()->count() - 1);
    QCOMPARE(bar.layout()->itemAt(bar.layout()->count() - 1)->alignment(), Qt::AlignBottom);
    // The output options come first, left of the stretch.
    QVERIFY(qobject_cast<VMOutputOptionWidget *>(bar.layout()->itemAt(0)->widget()));
    QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(button);
    QVERIFY(iface);
    QCOMPARE(iface->text(QAccessible::Name), QStringLiteral("start merge"));
}

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
