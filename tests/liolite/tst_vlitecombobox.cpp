#include <liolite/vlitecombobox.h>

#include <QAbstractItemView>
#include <QSignalSpy>
#include <QtTest>

class tst_VLiteComboBox : public QObject
{
    Q_OBJECT

private slots:
    void currentIndexChanged_bothSignals();
    void checkMarks_widenEntries();
    void popup_wideEnoughForEveryEntry_data();
    void popup_wideEnoughForEveryEntry();
};

void tst_VLiteComboBox::currentIndexChanged_bothSignals()
{
    VLiteComboBox combo(nullptr, true);
    const QMap<QString, QVariant> extra{{QStringLiteral("tip"), QStringLiteral("cloud")}};
    combo.addItem(QStringLiteral(".docx"), QVariant(), {});
    combo.addItem(QStringLiteral(".doc"), QVariant(2), extra);
    combo.addItem(QStringLiteral(".zyl"), QVariant(), {});
    // The extra map is kept beside the item's data, not in its place.
    QCOMPARE(combo.itemData(1).toInt(), 2);
    QCOMPARE(combo.itemExtra(1), extra);
    QVERIFY(combo.itemExtra(0).isEmpty() && combo.itemExtra(7).isEmpty());

    QSignalSpy byIndex(&combo, QOverload<int>::of(&QComboBox::currentIndexChanged));
    QSignalSpy byText(&combo, SIGNAL(currentIndexChanged(QString)));
    QVERIFY(byIndex.isValid());
    QVERIFY(byText.isValid());
    // The same index again is silent; one out of range clears the choice.
    for (int choice : {2, 2, 1, 0, 0, 9})
        combo.setCurrentIndex(choice);
    const QList<int> expected{2, 1, 0, -1};

    QCOMPARE(byIndex.count(), expected.size());
    QCOMPARE(byText.count(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(byIndex.at(i).at(0).toInt(), expected[i]);
        QCOMPARE(byText.at(i).at(0).toString(), expected[i] < 0 ? QString() : combo.itemText(expected[i]));
    }
}

void tst_VLiteComboBox::checkMarks_widenEntries()
{
    VLiteComboBox styled(nullptr, true);
    styled.addItem(QStringLiteral(".docx"));
    styled.addItem(QStringLiteral(".doc"));
    styled.setDisplayCheckState(true);
    const QSize withMark = styled.view()->sizeHintForIndex(styled.model()->index(0, 0));
    styled.setDisplayCheckState(false);
    const QSize without = styled.view()->sizeHintForIndex(styled.model()->index(0, 0));
    // Room for the check mark beside the text.
    QVERIFY(withMark.width() > without.width());
}

void tst_VLiteComboBox::popup_wideEnoughForEveryEntry_data()
{
    QTest::addColumn<int>("boxWidth");
    QTest::newRow("narrow_box") << 80;
    QTest::newRow("wide_box_keeps_its_width") << 400;
}

void tst_VLiteComboBox::popup_wideEnoughForEveryEntry()
{
    QFETCH(int, boxWidth);

    QWidget window;
    auto* combo = new VLiteComboBox(&window, true);
    combo->setFixedSize(boxWidth, 34);
    combo->setDisplayCheckState(true);
    for (const char* entry : {".docx", ".doc", "The first file's folder", ".zyl"})
        combo->addItem(QString::fromLatin1(entry), QVariant(), {});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    combo->showPopup();
    QAbstractItemView* list = combo->view();
    QTRY_VERIFY(list->isVisible());
    const int available = list->viewport()->width();
    for (int row = 0; row < combo->count(); ++row)
        QVERIFY2(list->sizeHintForIndex(combo->model()->index(row, 0)).width() <= available,
                 qPrintable(combo->itemText(row)));
    QVERIFY(list->window()->width() >= boxWidth);
    combo->hidePopup();
}

QTEST_MAIN(tst_VLiteComboBox)
#include "tst_vlitecombobox.moc"
