#include <QLineEdit>
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
    void choicesStored_data();
    void choicesStored();

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
    m_nameEdit = m_widget->findChild<VLiteLineEditor *>(QStringLiteral("VMOutputNameEditor"))->innerEdit();
    m_suffixCombo = m_widget->findChild<VLiteComboBox *>(QStringLiteral("VMOutputSuffixCombo"));
    m_locationCombo = m_widget->findChild<VLiteComboBox *>(QStringLiteral("VMOutputLocationCombo"));
    QVERIFY(m_suffixCombo && m_locationCombo);
    m_widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_widget));
}

void tst_VMOutputOptionWidget::cleanup()
{
    delete m_widget;
    VMEnv::releaseInstance();
}

void tst_VMOutputOptionWidget::constructionWritesStartValues()
{
    VMEnv *env = VMEnv::instance();
    QCOMPARE(env->outputName(), QStringLiteral("Text merge"));
    QCOMPARE(m_nameEdit->text(), env->outputName());
    QCOMPARE(env->outputSuffix(), QStringLiteral("docx"));
    QCOMPARE(env->location(), 0);

    // The location is written on a change only: building another widget keeps the value.
    env->setLocation(1);
    VMOutputOptionWidget second(nullptr);
    QCOMPARE(env->location(), 1);
}

void tst_VMOutputOptionWidget::nameStoredAsTyped_data()
{
    QTest::addColumn<QString>("typed");

    QTest::newRow("colon_star_question_kept") << QStringLiteral("a:b*c?");
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

void tst_VMOutputOptionWidget::choicesStored_data()
{
    QTest::addColumn<QList<int>>("formats");
    QTest::addColumn<QList<int>>("locations");
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<int>("location");

    QTest::newRow("zyl") << QList<int>{2} << QList<int>() << QStringLiteral("zyl") << 0;
    QTest::newRow("zyl_then_doc") << QList<int>{2, 1} << QList<int>() << QStringLiteral("doc") << 0;
    QTest::newRow("custom_folder") << QList<int>() << QList<int>{1} << QStringLiteral("docx") << 1;
    QTest::newRow("custom_then_first_file") << QList<int>() << QList<int>{1, 0} << QStringLiteral("docx") << 0;
    QTest::newRow("cloud_and_doc") << QList<int>{1} << QList<int>{2} << QStringLiteral("doc") << 2;
}

void tst_VMOutputOptionWidget::choicesStored()
{
    QFETCH(QList<int>, formats);
    QFETCH(QList<int>, locations);
    QFETCH(QString, suffix);
    QFETCH(int, location);

    // Chosen with the keyboard, as a user without a mouse does.
    const auto choose = [](VLiteComboBox *combo, int index) {
        combo->setFocus();
        while (combo->currentIndex() != index)
            QTest::keyClick(combo, combo->currentIndex() < index ? Qt::Key_Down : Qt::Key_Up);
    };
    for (int index : formats)
        choose(m_suffixCombo, index);
    for (int index : locations)
        choose(m_locationCombo, index);

    VMEnv *env = VMEnv::instance();
    QCOMPARE(env->outputSuffix(), suffix);
    QCOMPARE(env->location(), location);
    auto *stack = m_widget->findChild<VMOpenLoationWidget *>();
    QCOMPARE(stack->currentIndex(), location);
    QCOMPARE(stack->customPage()->isVisible(), location == 1);
}

QTEST_MAIN(tst_VMOutputOptionWidget)
#include "tst_vmoutputoptionwidget.moc"
