#include <liolite/vliteclickablelabel.h>
#include <liolite/vlitelabel.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

// Like the add-on's row labels: the elide mode comes from an override.
class MiddleElidingLabel : public VLiteLabel
{
public:
    using VLiteLabel::VLiteLabel;
    Qt::TextElideMode textElideMode() const override { return Qt::ElideMiddle; }
};

const QString LongName = QStringLiteral("Quarterly report of the northern region 2026 final version.docx");

} // namespace

Q_DECLARE_METATYPE(Qt::MouseButton)

class tst_VLiteLabel : public QObject
{
    Q_OBJECT

private slots:
    void autoElide_data();
    void autoElide();
    void autoElide_followsWidthAndSwitch();

    void clickableLabel_data();
    void clickableLabel();
    void clickableLabel_underline();
};

void tst_VLiteLabel::autoElide_data()
{
    QTest::addColumn<int>("mode");

    QTest::newRow("right") << int(Qt::ElideRight);
    QTest::newRow("middle") << int(Qt::ElideMiddle);
    QTest::newRow("left") << int(Qt::ElideLeft);
}

void tst_VLiteLabel::autoElide()
{
    QFETCH(int, mode);

    VLiteLabel label(LongName);
    label.setTextAutoElide(true);
    label.setTextElideMode(Qt::TextElideMode(mode));
    label.resize(120, 22);

    const QString shown = label.displayedText();
    QCOMPARE(label.text(), LongName);
    const QChar ellipsis(0x2026);
    QVERIFY2(shown.contains(ellipsis), qPrintable(shown));
    QVERIFY(QFontMetrics(label.font()).horizontalAdvance(shown) <= label.contentsRect().width());
    // What is painted is the shortened text.
    VLiteLabel reference(shown);
    reference.resize(label.size());
    QCOMPARE(label.grab().toImage(), reference.grab().toImage());
    const QString kept = QString(shown).remove(ellipsis);
    switch (mode) {
    case Qt::ElideRight:
        QVERIFY(shown.endsWith(ellipsis));
        QVERIFY(LongName.startsWith(kept));
        break;
    case Qt::ElideLeft:
        QVERIFY(shown.startsWith(ellipsis));
        QVERIFY(LongName.endsWith(kept));
        break;
    case Qt::ElideMiddle:
        QVERIFY(!shown.startsWith(ellipsis) && !shown.endsWith(ellipsis));
        QVERIFY(LongName.startsWith(shown.section(ellipsis, 0, 0)));
        QVERIFY(LongName.endsWith(shown.section(ellipsis, 1)));
        break;
    }
}

void tst_VLiteLabel::autoElide_followsWidthAndSwitch()
{
    // The subclass's mode is the one used.
    MiddleElidingLabel label(LongName);
    const int fullMinimum = label.minimumSizeHint().width();
    label.resize(100, 22);
    QCOMPARE(label.displayedText(), LongName);

    label.setTextAutoElide(true);
    QVERIFY(label.minimumSizeHint().width() < fullMinimum / 4);
    const QString narrow = label.displayedText();
    label.resize(220, 22);
    const QString wider = label.displayedText();
    QVERIFY(narrow.contains(QChar(0x2026)));
    QVERIFY(wider.size() > narrow.size());
    QVERIFY(!narrow.startsWith(QChar(0x2026)) && !narrow.endsWith(QChar(0x2026)));
    label.resize(QFontMetrics(label.font()).horizontalAdvance(LongName) + 10, 22);
    QCOMPARE(label.displayedText(), LongName);

    label.resize(80, 22);
    QVERIFY(label.displayedText() != LongName);
    label.setTextAutoElide(false);
    QCOMPARE(label.displayedText(), LongName);

    // Word-wrapped and rich text are left to QLabel.
    label.setTextAutoElide(true);
    label.setText(QStringLiteral("<b>") + LongName + QStringLiteral("</b>"));
    QCOMPARE(label.displayedText(), label.text());
}

void tst_VLiteLabel::clickableLabel_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("releaseInside");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("clicks");

    QTest::newRow("left_click_inside") << Qt::LeftButton << true << true << 1;
    QTest::newRow("left_release_outside") << Qt::LeftButton << false << true << 0;
    QTest::newRow("right_click") << Qt::RightButton << true << true << 0;
    QTest::newRow("disabled") << Qt::LeftButton << true << false << 0;
}

void tst_VLiteLabel::clickableLabel()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, releaseInside);
    QFETCH(bool, enabled);
    QFETCH(int, clicks);

    VLiteClickableLabel label(QStringLiteral("Invert Selection"));
    label.resize(120, 22);
    label.setEnabled(enabled);
    QSignalSpy spy(&label, &VLiteClickableLabel::labelClickFinished);
    QVERIFY(spy.isValid());
    QTest::mousePress(&label, button, Qt::NoModifier, QPoint(10, 10));
    QTest::mouseRelease(&label, button, Qt::NoModifier, releaseInside ? QPoint(12, 10) : QPoint(400, 10));
    QCOMPARE(spy.count(), clicks);
    QCOMPARE(label.cursor().shape(), Qt::PointingHandCursor);
}

void tst_VLiteLabel::clickableLabel_underline()
{
    VLiteClickableLabel label(QStringLiteral("Invert Selection"));
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    // Modes: never, on hover, always.
    for (int mode = 0; mode < 3; ++mode) {
        label.setUnderlineMode(mode);
        label.ensurePolished();
        QCOMPARE(label.font().underline(), mode == 2);
        QApplication::sendEvent(&label, &enter);
        QCOMPARE(label.font().underline(), mode > 0);
        QApplication::sendEvent(&label, &leave);
        QCOMPARE(label.font().underline(), mode == 2);
    }
}

QTEST_MAIN(tst_VLiteLabel)
#include "tst_vlitelabel.moc"
