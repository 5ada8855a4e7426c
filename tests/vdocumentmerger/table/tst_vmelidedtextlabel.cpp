#include <QHBoxLayout>
#include <QtTest>

#include "table/vmelidedtextlabel.h"

class tst_VMElidedTextLabel : public QObject {
    Q_OBJECT

private slots:
    void followsWidth_data();
    void followsWidth();
};

void tst_VMElidedTextLabel::followsWidth_data()
{
    QTest::addColumn<QString>("text");
    QTest::addRow("latin") << QStringLiteral("quarterly report of the northern region, final version (3).docx");
    QTest::addRow("chinese") << QStringLiteral("二零二六年第三季度北方地区销售报告最终版本修订稿.docx");
    QTest::addRow("arabic") << QStringLiteral("تقرير المبيعات الربع السنوي للمنطقة الشمالية النسخة النهائية.docx");
}

void tst_VMElidedTextLabel::followsWidth()
{
    QFETCH(QString, text);
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    VMElidedTextLabel label;
    label.setElideMode(Qt::ElideMiddle);
    label.setText(text);
    layout->addWidget(&label);
    window.resize(label.textWidth() / 3, 30);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QTRY_VERIFY(label.text() != text);
    const QString narrow = label.text();
    const int ellipsis = narrow.indexOf(QChar(0x2026));
    QVERIFY2(ellipsis > 0 && ellipsis < narrow.size() - 1, qPrintable(narrow));
    // Both ends kept (joiners aside, which shaping may add around the ellipsis).
    QString shown = narrow;
    shown.remove(QChar(0x200D));
    const int cut = shown.indexOf(QChar(0x2026));
    QVERIFY(text.startsWith(shown.left(cut)));
    QVERIFY(text.endsWith(shown.mid(cut + 1)));
    QVERIFY(label.fontMetrics().horizontalAdvance(narrow) <= label.width());
    QCOMPARE(label.fullText(), text);

    window.resize(label.textWidth() * 2 / 3, 30);
    QTRY_VERIFY(label.text().size() > narrow.size());
    window.resize(label.textWidth() + 10, 30);
    QTRY_COMPARE(label.text(), text);
    // A layout may shrink it again below its text.
    window.resize(label.textWidth() / 3, 30);
    QTRY_COMPARE(label.text(), narrow);
}

QTEST_MAIN(tst_VMElidedTextLabel)
#include "tst_vmelidedtextlabel.moc"
