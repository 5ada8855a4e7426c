#include <liolite/vlitelineeditor.h>

#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

class tst_VLiteLineEditor : public QObject
{
    Q_OBJECT

private slots:
    void textChanged_relaysInnerEdit_data();
    void textChanged_relaysInnerEdit();
    void focus_reachesInnerEditAndFrame();
};

void tst_VLiteLineEditor::textChanged_relaysInnerEdit_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("set_text") << "set" << QStringList{"Text merge"};
    QTest::newRow("typing") << "type" << QStringList{"a", "ab"};
    QTest::newRow("clear") << "clear" << QStringList{"Text merge", ""};
    QTest::newRow("same_text_twice") << "same" << QStringList{"Text merge"};
}

void tst_VLiteLineEditor::textChanged_relaysInnerEdit()
{
    QFETCH(QString, how);
    QFETCH(QStringList, expected);

    VLiteLineEditor editor(nullptr, true);
    QSignalSpy spy(&editor, &VLiteLineEditor::textChanged);
    QVERIFY(spy.isValid());
    if (how == QLatin1String("set")) {
        editor.setText(QStringLiteral("Text merge"));
    } else if (how == QLatin1String("type")) {
        QTest::keyClicks(editor.innerEdit(), QStringLiteral("ab"));
    } else if (how == QLatin1String("clear")) {
        editor.setText(QStringLiteral("Text merge"));
        editor.innerEdit()->clear();
    } else {
        editor.setText(QStringLiteral("Text merge"));
        editor.setText(QStringLiteral("Text merge"));
    }
    QCOMPARE(spy.count(), expected.size());
    for (int i = 0; i < expected.size(); ++i)
        QCOMPARE(spy.at(i).at(0).toString(), expected[i]);
    QCOMPARE(editor.text(), expected.last());
}

void tst_VLiteLineEditor::focus_reachesInnerEditAndFrame()
{
    QWidget window;
    auto* editor = new VLiteLineEditor(&window, false);
    auto* other = new QLineEdit(&window);
    other->move(0, 40);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));

    editor->setFocus();
    QTRY_VERIFY(editor->innerEdit()->hasFocus());
    QTRY_VERIFY(editor->editorHasFocus());
    QCOMPARE(editor->property("editorFocus").toBool(), true);
    other->setFocus();
    QTRY_VERIFY(!editor->editorHasFocus());
    QCOMPARE(editor->property("editorFocus").toBool(), false);
}

QTEST_MAIN(tst_VLiteLineEditor)
#include "tst_vlitelineeditor.moc"
