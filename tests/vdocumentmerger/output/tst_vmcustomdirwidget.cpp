#include <QDir>
#include <QFileDialog>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "host/liolite.h"
#include "output/vmcustomdirwidget.h"
#include "shell/vmenv.h"
#include "table/vmelidedtextlabel.h"

class tst_VMCustomDirWidget : public QObject {
    Q_OBJECT

private slots:
    void cleanup();

    void normalizedDir_data();
    void normalizedDir();
    void browse_data();
    void browse();
    void labelFitsPath_data();
    void labelFitsPath();

private:
    // Answers the next folder dialog: accepts it on folder, or cancels it when folder is empty.
    static void answerFolderDialog(const QString &folder);
    static bool browseTo(VMCustomDirWidget &w, const QString &folder);
};

void tst_VMCustomDirWidget::cleanup()
{
    VMEnv::releaseInstance();
}

void tst_VMCustomDirWidget::answerFolderDialog(const QString &folder)
{
    QTimer::singleShot(0, [folder] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog) {
            answerFolderDialog(folder);
            return;
        }
        if (folder.isEmpty()) {
            dialog->reject();
            return;
        }
        dialog->selectFile(folder);
        static_cast<QDialog *>(dialog)->accept();
    });
}

bool tst_VMCustomDirWidget::browseTo(VMCustomDirWidget &w, const QString &folder)
{
    auto *button = w.findChild<VLiteButton *>(QStringLiteral("VMCustomDirBrowseButton"));
    if (!button)
        return false;
    answerFolderDialog(folder);
    QTest::mouseClick(button, Qt::LeftButton);
    return true;
}

void tst_VMCustomDirWidget::normalizedDir_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("stored");

    QTest::newRow("separator_appended") << QStringLiteral("/home/u/Docs") << QStringLiteral("/home/u/Docs/");
    QTest::newRow("trailing_separator_kept_single") << QStringLiteral("/home/u/Docs/")
                                                    << QStringLiteral("/home/u/Docs/");
    QTest::newRow("root_gains_no_second") << QStringLiteral("/") << QStringLiteral("/");
    QTest::newRow("blank_in_name") << QStringLiteral("/tmp/my docs") << QStringLiteral("/tmp/my docs/");
    QTest::newRow("cancelled") << QString() << QString();
}

void tst_VMCustomDirWidget::normalizedDir()
{
    QFETCH(QString, chosen);
    QFETCH(QString, stored);
    QCOMPARE(VMCustomDirWidget::normalizedDir(chosen), QDir::toNativeSeparators(stored));
}

void tst_VMCustomDirWidget::browse_data()
{
    QTest::addColumn<bool>("cancel");
    QTest::newRow("chosen") << false;
    QTest::newRow("cancelled") << true;
}

void tst_VMCustomDirWidget::browse()
{
    QFETCH(bool, cancel);
    QTemporaryDir target;
    QVERIFY(target.isValid());
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);

    VMCustomDirWidget w(nullptr);
    auto *label = w.findChild<VMElidedTextLabel *>(QStringLiteral("VMCustomDirLabel"));
    QVERIFY(label);
    QCOMPARE(label->fullText(), desktop);
    QCOMPARE(VMEnv::instance()->customDir(), desktop);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));

    QVERIFY(browseTo(w, cancel ? QString() : target.path()));
    const QString expected = cancel ? desktop : QDir::toNativeSeparators(target.path()) + QDir::separator();
    QCOMPARE(label->fullText(), expected);
    QCOMPARE(VMEnv::instance()->customDir(), expected);
}

void tst_VMCustomDirWidget::labelFitsPath_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<bool>("longPath");

    QTest::newRow("short_scale_1") << 1.0 << false;
    QTest::newRow("long_scale_1") << 1.0 << true;
    QTest::newRow("long_scale_1.5") << 1.5 << true;
}

void tst_VMCustomDirWidget::labelFitsPath()
{
    QFETCH(double, scale);
    QFETCH(bool, longPath);
    const double previous = VLiteStyle::scaleOverride();
    auto restore = qScopeGuard([previous] { VLiteStyle::setScaleOverride(previous); });
    VLiteStyle::setScaleOverride(scale);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    QString folder = QStringLiteral("/usr");
    if (longPath) {
        folder = root.filePath(QStringLiteral("a_folder_with_a_rather_long_name_that_will_not_fit"));
        QVERIFY(QDir().mkpath(folder));
    }
    VMCustomDirWidget w(nullptr);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QVERIFY(browseTo(w, folder));
    auto *label = w.findChild<VMElidedTextLabel *>(QStringLiteral("VMCustomDirLabel"));
    QVERIFY(label);
    QTRY_COMPARE(label->fullText(), QDir::toNativeSeparators(folder) + QDir::separator());

    const int maximum = int(156 * scale);
    if (!longPath) {
        QVERIFY(label->textWidth() < maximum);
        QCOMPARE(label->width(), label->textWidth());
        QCOMPARE(label->displayedText(), label->fullText());
        return;
    }
    QVERIFY(label->textWidth() > maximum);
    QCOMPARE(label->width(), maximum);
    // Elided in the middle: both ends of the path stay readable.
    const QString shown = label->displayedText();
    QVERIFY2(shown.contains(QChar(0x2026)), qPrintable(shown));
    QVERIFY(shown.startsWith(label->fullText().left(3)));
    QVERIFY(shown.endsWith(QStringLiteral("fit/")));
}

QTEST_MAIN(tst_VMCustomDirWidget)
#include "tst_vmcustomdirwidget.moc"
