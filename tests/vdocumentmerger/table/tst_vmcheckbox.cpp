#include <QtTest>

#include "table/vmcheckbox.h"

class tst_VMCheckBox : public QObject {
    Q_OBJECT

private slots:
    void indicator_data();
    void indicator();
};

void tst_VMCheckBox::indicator_data()
{
    QTest::addColumn<int>("styleState");
    QTest::addColumn<QString>("iconName");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("state");

    const int enabled = QStyle::State_Enabled;
    QTest::newRow("unchecked") << (enabled | QStyle::State_Off) << "vmcheckbox_unchecked" << int(QIcon::Normal)
                               << int(QIcon::Off);
    QTest::newRow("checked_hover") << (enabled | QStyle::State_On | QStyle::State_MouseOver) << "vmcheckbox_checked"
                                   << int(QIcon::Active) << int(QIcon::On);
    QTest::newRow("partly_checked_is_on") << (enabled | QStyle::State_NoChange) << "vmcheckbox_partchecked"
                                          << int(QIcon::Normal) << int(QIcon::On);
    QTest::newRow("pressed_beats_hover") << (enabled | QStyle::State_Off | QStyle::State_Sunken | QStyle::State_MouseOver)
                                         << "vmcheckbox_unchecked" << int(QIcon::Selected) << int(QIcon::Off);
    QTest::newRow("disabled_beats_pressed") << int(QStyle::State_On | QStyle::State_Sunken) << "vmcheckbox_checked"
                                            << int(QIcon::Disabled) << int(QIcon::On);
}

void tst_VMCheckBox::indicator()
{
    QFETCH(int, styleState);
    QFETCH(QString, iconName);
    QFETCH(int, mode);
    QFETCH(int, state);
    const VMCheckBox::Indicator indicator = VMCheckBox::indicatorFor(QStyle::State(styleState));
    QCOMPARE(indicator.iconName, iconName);
    QCOMPARE(int(indicator.mode), mode);
    QCOMPARE(int(indicator.state), state);
    QVERIFY(!VDrawHelper::loadIcon(indicator.iconName).availableSizes(QIcon::Normal, QIcon::Off).isEmpty());
}

QTEST_MAIN(tst_VMCheckBox)
#include "tst_vmcheckbox.moc"
