#include <liolite/vlitelineeditor.h>

#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

class tst_VLiteLineEditor : public QObject
{
    Q_OBJECT

private slots:
    void textChanged_relaysInnerEdit();
    void focus_reachesInnerEditAndFrame();
};

void tst_VLiteLineEditor::textChanged_relaysInnerEdit()
{
    VLiteLineEditor editor(nullptr, true);
    QSignalSpy spy(&editor, &VLiteLineEditor::textChanged);
    QVERIFY(spy.isValid());
    editor.setText(QStringLiteral("Text merge"));
    editor.setText(QStringLiteral("Text merge")); // the same text again is silent
    QCOMPARE(editor.text(), QStringLiteral("Text merge"));
    editor.innerEdit()->clear();
    QTest::keyClicks(editor.innerEdit(), QStringLiteral("ab"));
    QCOMPARE(editor.text(), QStringLiteral("ab"));

    QStringList texts;
    for (const QList<QVariant>& arguments : qAsConst(spy))
        texts << arguments.at(0).toString();
    QCOMPARE(texts, (QStringList{"Text merge", "", "a", "ab"}));
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
