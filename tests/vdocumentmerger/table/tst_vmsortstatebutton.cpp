#include <QSignalSpy>
#include <QtTest>

#include "host/liolite.h"
#include "table/vmsortstatebutton.h"

class tst_VMSortStateButton : public QObject {
    Q_OBJECT

private slots:
    void clickCycle();
    void unknownStateKeepsIcon();

private:
    static QImage iconImage(const QIcon &icon) { return icon.pixmap(16, 16).toImage(); }
};

void tst_VMSortStateButton::clickCycle()
{
    VMSortStateButton button;
    QSignalSpy spy(&button, &VMSortStateButton::sortStateClick);
    QVERIFY(spy.isValid());
    const QStringList icons{"vmsort_button_asce;", "vmsort_button_desc;", "vmsort_button_normal;"};
    for (int i = 0; i < 3; ++i) {
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(iconImage(button.icon()), iconImage(VDrawHelper::loadIcon(icons.at(i))));
    }
    QCOMPARE(spy.count(), 3);
    QCOMPARE(spy.at(0).at(0).toInt(), 1);
    QCOMPARE(spy.at(1).at(0).toInt(), 2);
    QCOMPARE(spy.at(2).at(0).toInt(), 0);
    QCOMPARE(button.sortState(), 0);
}

void tst_VMSortStateButton::unknownStateKeepsIcon()
{
    VMSortStateButton button;
    button.setSortState(2);
    button.setSortState(5);
    QCOMPARE(button.sortState(), 5);
    QCOMPARE(iconImage(button.icon()), iconImage(VDrawHelper::loadIcon("vmsort_button_desc;")));
    // From an unknown state a click goes back to "as added".
    QSignalSpy spy(&button, &VMSortStateButton::sortStateClick);
    button.click();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 0);
}

QTEST_MAIN(tst_VMSortStateButton)
#include "tst_vmsortstatebutton.moc"
