#include <QtTest>

#include "host/liolite.h"
#include "table/vmsortstatebutton.h"

class tst_VMSortStateButton : public QObject {
    Q_OBJECT

private slots:
    void iconFollowsClicks();
};

// The orders each click gives are checked with the table; here the arrow shown for each.
void tst_VMSortStateButton::iconFollowsClicks()
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

QTEST_MAIN(tst_VMSortStateButton)
#include "tst_vmsortstatebutton.moc"
