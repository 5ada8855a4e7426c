#include <liolite/vlitecheckbox.h>
#include <liolite/vlitestyle.h>

#include <QSignalSpy>
#include <QStyle>
#include <QStyleOption>
#include <QtTest>

namespace {

// Records what the box asks its indicator to draw, as the add-on's icon check box does.
class RecordingCheckBox : public VLiteCheckBox
{
public:
    using VLiteCheckBox::VLiteCheckBox;
    int calls = 0;
    QStyle::State lastState;
    QRect lastRect;

protected:
    void drawIndicator(QPainter* painter, const QStyleOption* option, const QRect& rect) override
    {
        ++calls;
        lastState = option->state;
        lastRect = rect;
        VLiteCheckBox::drawIndicator(painter, option, rect);
    }
};

} // namespace

class tst_VLiteCheckBox : public QObject
{
    Q_OBJECT

private slots:
    void indicator_receivesState_data();
    void indicator_receivesState();
    void defaultIndicator_drawsCheckedInAccent();
    void click_anywhereToggles();
};

void tst_VLiteCheckBox::indicator_receivesState_data()
{
    QTest::addColumn<int>("checkState");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("flag");
    QTest::addColumn<double>("factor");

    QTest::newRow("unchecked") << int(Qt::Unchecked) << true << int(QStyle::State_Off) << 1.0;
    QTest::newRow("checked") << int(Qt::Checked) << true << int(QStyle::State_On) << 1.0;
    QTest::newRow("part_checked") << int(Qt::PartiallyChecked) << true << int(QStyle::State_NoChange) << 1.0;
    QTest::newRow("checked_disabled") << int(Qt::Checked) << false << int(QStyle::State_On) << 1.0;
    QTest::newRow("checked_at_200_percent") << int(Qt::Checked) << true << int(QStyle::State_On) << 2.0;
}

void tst_VLiteCheckBox::indicator_receivesState()
{
    QFETCH(int, checkState);
    QFETCH(bool, enabled);
    QFETCH(int, flag);
    QFETCH(double, factor);

    VLiteStyle::setScaleOverride(factor);
    RecordingCheckBox box;
    box.setTristate(checkState == Qt::PartiallyChecked);
    box.setCheckState(Qt::CheckState(checkState));
    box.setEnabled(enabled);
    box.resize(box.sizeHint());
    box.grab();
    VLiteStyle::setScaleOverride(0);
    QCOMPARE(box.calls, 1);
    QVERIFY(box.lastState & QStyle::State(flag));
    QCOMPARE(bool(box.lastState & QStyle::State_Enabled), enabled);
    // The indicator scales with the screen.
    QCOMPARE(box.lastRect.size(), QSize(16, 16) * factor);
}

void tst_VLiteCheckBox::defaultIndicator_drawsCheckedInAccent()
{
    VLiteCheckBox box;
    box.setFixedSize(16, 16);
    const QImage unchecked = box.grab().toImage();
    box.setChecked(true);
    const QImage checked = box.grab().toImage();
    const QColor accent = QColor("#417FF9");
    // Inside the box, off the tick.
    QCOMPARE(checked.pixelColor(3, 12).rgb(), accent.rgb());
    QVERIFY(unchecked.pixelColor(3, 12).rgb() != accent.rgb());
}

void tst_VLiteCheckBox::click_anywhereToggles()
{
    VLiteCheckBox box(QStringLiteral("File name"));
    box.resize(box.sizeHint());
    QVERIFY(box.sizeHint().width() > 16 + QFontMetrics(box.font()).horizontalAdvance(QStringLiteral("File name")));
    QSignalSpy spy(&box, &QCheckBox::stateChanged);
    QVERIFY(spy.isValid());
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(box.width() - 3, box.height() / 2));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), int(Qt::Checked));
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(4, box.height() / 2));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toInt(), int(Qt::Unchecked));
}

QTEST_MAIN(tst_VLiteCheckBox)
#include "tst_vlitecheckbox.moc"
