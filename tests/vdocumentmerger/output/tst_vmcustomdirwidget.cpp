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
    void cleanup() { VMEnv::releaseInstance(); }
    void browse_data();
    void browse();
};

void tst_VMCustomDirWidget::browse_data()
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

void tst_VMCustomDirWidget::browse()
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

QTEST_MAIN(tst_VMCustomDirWidget)
#include "tst_vmcustomdirwidget.moc"
