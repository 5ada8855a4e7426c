#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "cloud/vmcloudhelper.h"
#include "fakemainwindow.h"
#include "host/liolite.h"
#include "output/vmclouddirwidget.h"
#include "output/vmcustomdirwidget.h"
#include "output/vmopenloationwidget.h"
#include "output/vmoutputoptionwidget.h"
#include "shell/vmenv.h"
#include "table/vmelidedtextlabel.h"

// The output options: name, format, location, and the custom and cloud folder pages.
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
    void customFolderBrowse_data();
    void customFolderBrowse();
    void cloudFolderOpen_data();
    void cloudFolderOpen();

private:
    InitializedHost m_host;
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

void tst_VMOutputOptionWidget::customFolderBrowse_data()
{
    QTest::addColumn<QString>("folder"); // under a fresh temporary folder; empty: cancel
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("mustElide");

    QTest::newRow("cancelled") << QString() << 1.0 << false;
    QTest::newRow("short_path_fits") << QStringLiteral("/usr") << 1.0 << false;
    QTest::newRow("root_gains_no_second_separator") << QStringLiteral("/") << 1.0 << false;
    QTest::newRow("long_path_elided") << QStringLiteral("a_folder_with_a_rather_long_name_that_will_not_fit")
                                      << 1.0 << true;
    QTest::newRow("long_path_elided_scale_1.5") << QStringLiteral("another folder with a long name, not fitting")
                                                << 1.5 << true;
}

void tst_VMOutputOptionWidget::customFolderBrowse()
{
    QFETCH(QString, folder);
    QFETCH(double, scale);
    QFETCH(bool, mustElide);
    const double previous = VLiteStyle::scaleOverride();
    auto restore = qScopeGuard([previous] { VLiteStyle::setScaleOverride(previous); });
    VLiteStyle::setScaleOverride(scale);
    QTemporaryDir root;
    QVERIFY(root.isValid());
    if (!folder.isEmpty() && QDir::isRelativePath(folder)) {
        folder = root.filePath(folder);
        QVERIFY(QDir().mkpath(folder));
    }

    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    VMCustomDirWidget w(nullptr);
    auto *label = w.findChild<VMElidedTextLabel *>();
    auto *button = w.findChild<VLiteButton *>();
    QVERIFY(label && button);
    QCOMPARE(label->fullText(), desktop);
    QCOMPARE(VMEnv::instance()->customDir(), desktop);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));

    bool answered = false;
    QTimer::singleShot(0, [&] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        answered = true;
        if (folder.isEmpty()) {
            dialog->reject();
            return;
        }
        dialog->selectFile(folder);
        static_cast<QDialog *>(dialog)->accept();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(answered);

    QString expected = desktop;
    if (!folder.isEmpty())
        expected = folder == QLatin1String("/") ? QDir::toNativeSeparators(folder)
                                                : QDir::toNativeSeparators(folder) + QDir::separator();
    QCOMPARE(label->fullText(), expected);
    QCOMPARE(VMEnv::instance()->customDir(), expected);
    const int maximum = int(156 * scale);
    QVERIFY(!mustElide || label->textWidth() > maximum);
    if (label->textWidth() < maximum) {
        QCOMPARE(label->width(), label->textWidth());
        QCOMPARE(label->displayedText(), expected);
    } else {
        QCOMPARE(label->width(), maximum);
        // Elided in the middle: both ends of the path stay readable.
        const QString shown = label->displayedText();
        QVERIFY2(shown.contains(QChar(0x2026)), qPrintable(shown));
        QCOMPARE(shown.left(3), expected.left(3));
        QCOMPARE(shown.right(3), expected.right(3));
    }
}

void tst_VMOutputOptionWidget::cloudFolderOpen_data()
{
    QTest::addColumn<bool>("loggedIn");
    QTest::addColumn<bool>("confirm");
    QTest::addColumn<int>("loginCalls");
    QTest::addColumn<int>("openRequests");

    QTest::newRow("logged_in_opens_without_asking") << true << false << 0 << 1;
    QTest::newRow("logged_out_confirm_starts_login") << false << true << 1 << 0;
    QTest::newRow("logged_out_closed_does_nothing") << false << false << 0 << 0;
}

void tst_VMOutputOptionWidget::cloudFolderOpen()
{
    QFETCH(bool, loggedIn);
    QFETCH(bool, confirm);
    QFETCH(int, loginCalls);
    QFETCH(int, openRequests);
    m_host.account.setLoggedIn(loggedIn);
    const int loginsBefore = m_host.account.loginCalls().size();
    QSignalSpy opened(VMCloudHelper::instance(), &VMCloudHelper::openFolderFinished);
    QVERIFY(opened.isValid());

    VMCloudDirWidget w(nullptr);
    VLiteButton *button = w.findChild<VLiteButton *>();
    QVERIFY(button);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));

    QString title, content;
    QStringList buttons;
    QTimer::singleShot(0, [&] {
        auto *dlg = qobject_cast<VLiteContentDlg *>(QApplication::activeModalWidget());
        if (!dlg)
            return;
        title = dlg->title();
        content = dlg->content();
        for (int b : {VLiteContentDlg::BtnConfirm, VLiteContentDlg::BtnCancel, VLiteContentDlg::BtnThird}) {
            if (dlg->isButtonVisible(b))
                buttons << dlg->buttonText(b);
        }
        if (confirm)
            dlg->button(VLiteContentDlg::BtnConfirm)->click();
        else
            dlg->reject();
    });
    QTest::mouseClick(button, Qt::LeftButton);

    if (loggedIn) {
        // The request fails here (no drive service) and its reply is not shown.
        QTRY_COMPARE(opened.count(), openRequests);
        QVERIFY(title.isEmpty());
        QVERIFY(!QApplication::activeModalWidget());
    } else {
        QCOMPARE(title, QStringLiteral("Tips"));
        QCOMPARE(content, QStringLiteral("Sorry! You need to login in order to use %1.")
                              .arg(yrt::product::getZYLDriveDisplayName()));
        QCOMPARE(buttons, QStringList{QStringLiteral("Confirm")});
        QTest::qWait(0);
        QCOMPARE(opened.count(), openRequests);
    }
    QCOMPARE(m_host.account.loginCalls().size() - loginsBefore, loginCalls);
}

QTEST_MAIN(tst_VMOutputOptionWidget)
#include "tst_vmoutputoptionwidget.moc"
