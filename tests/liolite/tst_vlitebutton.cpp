#include <liolite/vdrawhelper.h>
#include <liolite/vlitebutton.h>
#include <liolite/vlitestyle.h>

#include <QtTest>

class tst_VLiteButton : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void look_data();
    void look();
};

void tst_VLiteButton::cleanup()
{
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VLiteButton::look_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("textAfterConstruction");
    QTest::addColumn<QString>("explicitClass");
    QTest::addColumn<QString>("expectedClass");
    QTest::addColumn<bool>("filledWithAccent");

    QTest::newRow("text_button_is_accent") << "start merge" << "" << "" << "VLiteButton" << true;
    QTest::newRow("icon_button_is_flat") << "" << "" << "" << "VLiteButton_Icon" << false;
    QTest::newRow("text_set_after_construction") << "" << "start merge" << "" << "VLiteButton" << true;
    QTest::newRow("explicit_class_kept_when_shown") << "Add file" << "" << "VMButton_AddFile" << "VMButton_AddFile"
                                                    << false;
}

void tst_VLiteButton::look()
{
    QFETCH(QString, text);
    QFETCH(QString, textAfterConstruction);
    QFETCH(QString, explicitClass);
    QFETCH(QString, expectedClass);
    QFETCH(bool, filledWithAccent);

    for (const QString& theme : VLiteStyle::availableThemes()) {
        QVERIFY(VLiteStyle::setTheme(theme));
        QWidget window;
        window.setAutoFillBackground(true);
        window.resize(200, 60);
        auto* button = new VLiteButton(text, &window);
        if (!textAfterConstruction.isEmpty())
            button->setText(textAfterConstruction);
        if (!explicitClass.isEmpty())
            button->applyThemeClass(explicitClass);
        button->setGeometry(10, 10, 124, 40);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        QCOMPARE(button->themeClass(), expectedClass);
        // A corner-free spot left of the text.
        const QColor fill = button->grab().toImage().pixelColor(6, 20);
        const QColor accent = VDrawHelper::getColorFromTheme(QStringLiteral("VLiteButton"), QStringLiteral("background"), QColor());
        QCOMPARE(fill.rgb() == accent.rgb(), filledWithAccent);
    }
}

QTEST_MAIN(tst_VLiteButton)
#include "tst_vlitebutton.moc"
