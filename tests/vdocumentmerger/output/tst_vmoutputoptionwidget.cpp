#include <QAccessible>
#include <QLineEdit>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QtTest>

#include "host/liolite.h"
#include "output/vmcustomdirwidget.h"
#include "output/vmopenloationwidget.h"
#include "output/vmoutputoptionwidget.h"
#include "shell/vmenv.h"

class tst_VMOutputOptionWidget : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void constructionWritesStartValues();
    void nameStoredAsTyped_data();
    void nameStoredAsTyped();
    void formatStoredWithoutDot_data();
    void formatStoredWithoutDot();
    void locationSwitchesPageAndStores_data();
    void locationSwitchesPageAndStores();
    void controlsHaveAccessibleNames();

private:
    VMOutputOptionWidget *m_widget = nullptr;
    QLineEdit *m_nameEdit = nullptr;
    VLiteComboBox *m_suffixCombo = nullptr;
    VLiteComboBox *m_locationCombo = nullptr;
};

void tst_VMOutputOptionWidget::init()
{
    // Every case starts from the environment's own defaults.
    VMEnv::releaseInstance();
    m_widget = new VMOutputOptionWidget(nullptr);
    auto *editor = m_widget->findChild<VLiteLineEditor *>(QStringLiteral("VMOutputNameEditor"));
    QVERIFY(editor);
    m_nameEdit = editor->innerEdit();
    m_suffixCombo = m_widget->findChild<VLiteComboBox *>(QStringLiteral("VMOutputSuffixCombo"));
    m_locationCombo = m_widget->findChild<VLiteComboBox *>(QStringLiteral("VMOutputLocationCombo"));
    QVERIFY(m_suffixCombo);
    QVERIFY(m_locationCombo);
    m_widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_widget));
}

void tst_VMOutputOptionWidget::cleanup()
{
    delete m_widget;
    m_widget = nullptr;
    VMEnv::releaseInstance();
}

void tst_VMOutputOptionWidget::constructionWritesStartValues()
{
    VMEnv *env = VMEnv::instance();
    QCOMPARE(env->outputName(), QStringLiteral("Text merge"));
    QCOMPARE(m_nameEdit->text(), env->outputName());
    QCOMPARE(env->outputSuffix(), QStringLiteral("docx"));
    QCOMPARE(env->location(), 0);
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    QVERIFY(!desktop.isEmpty());
    QCOMPARE(env->customDir(), desktop);

    // The location is written on a change only: a value already in the environment survives
    // the building of another widget.
    env->setLocation(1);
    VMOutputOptionWidget second(nullptr);
    QCOMPARE(env->location(), 1);
}

void tst_VMOutputOptionWidget::nameStoredAsTyped_data()
{
    QTest::addColumn<QString>("typed");

    QTest::newRow("plain") << QStringLiteral("Report");
    QTest::newRow("empty") << QString();
    QTest::newRow("colon_and_star_kept") << QStringLiteral("a:b*c?");
    QTest::newRow("blanks_kept") << QStringLiteral("  two  words ");
    QTest::newRow("non_latin") << QStringLiteral("Bericht \u00fcber Gr\u00f6\u00dfe \u5408\u5e76");
}

void tst_VMOutputOptionWidget::nameStoredAsTyped()
{
    QFETCH(QString, typed);

    m_nameEdit->setFocus();
    m_nameEdit->selectAll();
    QTest::keyClick(m_nameEdit, Qt::Key_Backspace);
    QCOMPARE(VMEnv::instance()->outputName(), QString());
    // One key event per character, also for letters outside Latin-1.
    for (const QChar c : typed)
        QTest::sendKeyEvent(QTest::Click, m_nameEdit, Qt::Key_unknown, QString(c), Qt::NoModifier);
    QCOMPARE(VMEnv::instance()->outputName(), typed);
}

void tst_VMOutputOptionWidget::formatStoredWithoutDot_data()
{
    QTest::addColumn<QList<int>>("indexes");
    QTest::addColumn<QString>("suffix");

    QTest::newRow("zyl") << QList<int>{2} << QStringLiteral("zyl");
    QTest::newRow("doc") << QList<int>{1} << QStringLiteral("doc");
    QTest::newRow("zyl_then_back_to_docx") << QList<int>{2, 0} << QStringLiteral("docx");
}

void tst_VMOutputOptionWidget::formatStoredWithoutDot()
{
    QFETCH(QList<int>, indexes);
    QFETCH(QString, suffix);

    QCOMPARE(m_suffixCombo->count(), 3);
    for (int index : indexes)
        m_suffixCombo->setCurrentIndex(index);
    QCOMPARE(VMEnv::instance()->outputSuffix(), suffix);
    QCOMPARE(VMEnv::instance()->outputName(), QStringLiteral("Text merge"));
}

void tst_VMOutputOptionWidget::locationSwitchesPageAndStores_data()
{
    QTest::addColumn<QList<int>>("indexes");
    QTest::addColumn<int>("location");
    QTest::addColumn<bool>("customPageShown");

    QTest::newRow("custom") << QList<int>{1} << 1 << true;
    QTest::newRow("custom_then_first_file") << QList<int>{1, 0} << 0 << false;
}

void tst_VMOutputOptionWidget::locationSwitchesPageAndStores()
{
    QFETCH(QList<int>, indexes);
    QFETCH(int, location);
    QFETCH(bool, customPageShown);

    auto *stack = m_widget->findChild<VMOpenLoationWidget *>();
    QVERIFY(stack);
    QVERIFY(qobject_cast<QLabel *>(stack->currentWidget()));
    // Keyboard choice, as a user without a mouse makes it.
    m_locationCombo->setFocus();
    for (int index : indexes) {
        while (m_locationCombo->currentIndex() < index)
            QTest::keyClick(m_locationCombo, Qt::Key_Down);
        while (m_locationCombo->currentIndex() > index)
            QTest::keyClick(m_locationCombo, Qt::Key_Up);
    }
    QCOMPARE(VMEnv::instance()->location(), location);
    QCOMPARE(stack->currentIndex(), location);
    QCOMPARE(stack->customPage()->isVisible(), customPageShown);
    QCOMPARE(VMEnv::instance()->outputSuffix(), QStringLiteral("docx"));
}

void tst_VMOutputOptionWidget::controlsHaveAccessibleNames()
{
    m_locationCombo->setCurrentIndex(1);
    const QList<QPair<QWidget *, QString>> controls{
        {m_nameEdit, QStringLiteral("Output Name")},
        {m_suffixCombo, QStringLiteral("Output Format")},
        {m_locationCombo, QStringLiteral("Output Directory")},
        {m_widget->findChild<VLiteButton *>(QStringLiteral("VMCustomDirBrowseButton")),
         QStringLiteral("Select Path")},
    };
    for (const auto &control : controls) {
        QVERIFY2(control.first, qPrintable(control.second));
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(control.first);
        QVERIFY(iface);
        // What a screen reader announces: the name, the labels pointing at the control, the
        // description.
        QStringList spoken{iface->text(QAccessible::Name), iface->text(QAccessible::Description)};
        for (const auto &relation : iface->relations(QAccessible::Label))
            spoken << relation.first->text(QAccessible::Name);
        QVERIFY2(spoken.contains(control.second),
                 qPrintable(control.second + QLatin1String(" not in ") + spoken.join(QLatin1Char('|'))));
    }
}

QTEST_MAIN(tst_VMOutputOptionWidget)
#include "tst_vmoutputoptionwidget.moc"
