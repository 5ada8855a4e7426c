#include <liolite/vdrawhelper.h>
#include <liolite/vlitebutton.h>
#include <liolite/vlitecontentdlg.h>
#include <liolite/vlitestyle.h>

#include <QLabel>
#include <QPointer>
#include <QtTest>

namespace {

class CountingDlg : public VLiteContentDlg
{
public:
    using VLiteContentDlg::VLiteContentDlg;
    int styleChanges = 0;

protected:
    void changeStyle() override
    {
        ++styleChanges;
        VLiteContentDlg::changeStyle();
    }
};

// Runs action once the dialog's own event loop is running and the dialog is shown.
void whenShown(VLiteContentDlg* dlg, const std::function<void()>& action)
{
    QTimer::singleShot(0, dlg, [dlg, action] {
        if (dlg->isVisible())
            action();
        else
            dlg->done(-100);
    });
}

QColor pixelAt(QWidget* widget, const QPoint& pos)
{
    return widget->grab().toImage().pixelColor(pos);
}

} // namespace

class tst_VLiteContentDlg : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void exec_result_data();
    void exec_result();
    void buttons_defaultsAndUnknownKinds();
    void customContentWidget_replacesText();
    void openDialog_restylesAndDrags();
    void frame_borderVisibleAtEveryScale_data();
    void frame_borderVisibleAtEveryScale();
};

void tst_VLiteContentDlg::cleanup()
{
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VLiteContentDlg::exec_result_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expectedResult");
    QTest::addColumn<int>("expectedButton");

    QTest::newRow("confirm_button") << "button0" << 1 << int(VLiteContentDlg::BtnConfirm);
    QTest::newRow("third_button") << "button2" << 9 << int(VLiteContentDlg::BtnThird);
    QTest::newRow("close_button") << "close" << 2 << int(VLiteContentDlg::BtnNone);
    QTest::newRow("window_close") << "windowclose" << 2 << int(VLiteContentDlg::BtnNone);
    QTest::newRow("enter_triggers_confirm") << "enter" << 1 << int(VLiteContentDlg::BtnConfirm);
}

void tst_VLiteContentDlg::exec_result()
{
    QFETCH(QString, action);
    QFETCH(int, expectedResult);
    QFETCH(int, expectedButton);

    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconNone);
    const char* texts[] = {"open file", "open directory", "later"};
    for (int kind = 0; kind < 3; ++kind) {
        dlg.setButtonText(kind, QString::fromLatin1(texts[kind]));
        dlg.setButtonResult(kind, QList<int>{1, 7, 9}[kind]);
    }
    dlg.setButtonVisible(2, true);

    whenShown(&dlg, [&dlg, action] {
        if (action.startsWith(QLatin1String("button")))
            QTest::mouseClick(dlg.button(action.right(1).toInt()), Qt::LeftButton);
        else if (action == QLatin1String("close"))
            QTest::mouseClick(dlg.findChild<VLiteButton*>(QStringLiteral("vlite_dlg_close")), Qt::LeftButton);
        else if (action == QLatin1String("enter"))
            QTest::keyClick(dlg.button(0), Qt::Key_Return);
        else if (action == QLatin1String("windowclose"))
            dlg.close();
    });
    QCOMPARE(dlg.exec(), expectedResult);
    QCOMPARE(dlg.clickedButton(), expectedButton);
    QVERIFY(!dlg.isVisible());

    // The next run starts without a clicked button; Escape closes it.
    whenShown(&dlg, [&dlg] { QTest::keyClick(&dlg, Qt::Key_Escape); });
    QCOMPARE(dlg.exec(), 2);
    QCOMPARE(dlg.clickedButton(), int(VLiteContentDlg::BtnNone));
}

void tst_VLiteContentDlg::buttons_defaultsAndUnknownKinds()
{
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconNone);
    QVERIFY(dlg.isButtonVisible(0));
    QVERIFY(dlg.isButtonVisible(1));
    QVERIFY(!dlg.isButtonVisible(2));
    QVERIFY(dlg.buttonResult(0) != 2);
    QVERIFY(dlg.buttonResult(1) != 2);

    // Unknown kinds are ignored rather than reaching into the button array.
    for (const int kind : {-1, 3, 100}) {
        QVERIFY(!dlg.button(kind));
        dlg.setButtonText(kind, QStringLiteral("x"));
        dlg.setButtonResult(kind, 5);
        dlg.setButtonVisible(kind, true);
        QVERIFY(!dlg.isButtonVisible(kind));
        QCOMPARE(dlg.buttonText(kind), QString());
    }

    dlg.setButtonVisible(0, false);
    bool confirmShown = true;
    bool cancelShown = false;
    whenShown(&dlg, [&] {
        confirmShown = dlg.button(0)->isVisible();
        cancelShown = dlg.button(1)->isVisible();
        QTest::mouseClick(dlg.button(1), Qt::LeftButton);
    });
    dlg.exec();
    QVERIFY(!confirmShown);
    QVERIFY(cancelShown);
    QCOMPARE(dlg.clickedButton(), int(VLiteContentDlg::BtnCancel));
}

void tst_VLiteContentDlg::customContentWidget_replacesText()
{
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconNone);
    dlg.setContent(QStringLiteral("text"));
    auto* text = dlg.findChild<QLabel*>(QStringLiteral("vlite_dlg_content"));
    QVERIFY(text);

    QPointer<QWidget> first = new QWidget;
    dlg.setCustomContentWidget(first, 24);
    QCOMPARE(dlg.customContentWidget(), first.data());
    QCOMPARE(first->parentWidget()->window(), &dlg);
    QVERIFY(text->isHidden());
    QCOMPARE(first->height(), int(VLiteStyle::dpiScaled(24)));

    QPointer<QWidget> second = new QWidget;
    second->setFixedHeight(5);
    dlg.setCustomContentWidget(second, -1);
    QVERIFY(first.isNull());
    QCOMPARE(second->height(), 5);

    dlg.setCustomContentWidget(nullptr, -1);
    QVERIFY(second.isNull());
    QVERIFY(!text->isHidden());
    QCOMPARE(dlg.content(), QStringLiteral("text"));
}

void tst_VLiteContentDlg::openDialog_restylesAndDrags()
{
    CountingDlg dlg(nullptr, VLiteContentDlg::IconFailure);
    dlg.setTitle(QStringLiteral("Merge failed"));
    dlg.setContent(QStringLiteral("Failed to merge the current document, Please set it again"));
    dlg.move(100, 100);
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const int before = dlg.styleChanges;

    auto* title = dlg.findChild<QLabel*>(QStringLiteral("vlite_dlg_title"));
    auto* content = dlg.findChild<QLabel*>(QStringLiteral("vlite_dlg_content"));
    QVERIFY(title && content);
    const QPoint inside(dlg.width() / 2, dlg.height() - 3);
    const QColor lightSurface = pixelAt(&dlg, inside);
    QCOMPARE(lightSurface, VDrawHelper::getColorFromTheme("VLiteContentDlg", "background", QColor()));

    QVERIFY(VLiteStyle::setTheme(QStringLiteral("dark")));
    QCOMPARE(dlg.styleChanges, before + 1);
    const QColor darkSurface = VDrawHelper::getColorFromTheme("VLiteContentDlg", "background", QColor());
    QTRY_COMPARE(pixelAt(&dlg, inside), darkSurface);
    QVERIFY(darkSurface.lightness() < lightSurface.lightness());
    QTRY_COMPARE(title->palette().color(QPalette::WindowText),
                 VDrawHelper::getColorFromTheme("VLiteContentDlg", "title", QColor()));
    QCOMPARE(content->palette().color(QPalette::WindowText),
             VDrawHelper::getColorFromTheme("VLiteContentDlg", "content", QColor()));

    // Dragging the title moves the dialog only while the title takes the hit test.
    const QPoint grab(5, title->height() / 2);
    const QPoint by(40, 25);
    const auto drag = [&] {
        QTest::mousePress(title, Qt::LeftButton, Qt::NoModifier, grab);
        QMouseEvent move(QEvent::MouseMove, grab + by, title->mapToGlobal(grab + by), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(title, &move);
        QTest::mouseRelease(title, Qt::LeftButton, Qt::NoModifier, grab + by);
    };
    const QPoint start = dlg.pos();
    dlg.setTitleHitTest(false);
    drag();
    QCOMPARE(dlg.pos(), start);
    dlg.setTitleHitTest(true);
    drag();
    QTRY_COMPARE(dlg.pos(), start + by);
}

void tst_VLiteContentDlg::frame_borderVisibleAtEveryScale_data()
{
    QTest::addColumn<double>("factor");
    QTest::newRow("100_percent") << 1.0;
    QTest::newRow("150_percent") << 1.5;
}

void tst_VLiteContentDlg::frame_borderVisibleAtEveryScale()
{
    QFETCH(double, factor);
    VLiteStyle::setScaleOverride(factor);
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconInfo);
    dlg.setTitle(QStringLiteral("Tips"));
    dlg.setContent(QStringLiteral("The document does not exist. It may be removed or renamed"));
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const QImage image = dlg.grab().toImage();
    VLiteStyle::setScaleOverride(0);

    // No part of the dialog (title bar, body, button row) may paint over its frame.
    const QRgb border = VDrawHelper::getColorFromTheme("VLiteContentDlg", "border", QColor()).rgb();
    // The look's 1px border, scaled and rounded like every pixel size of a look.
    const int thickness = qMax(1, qRound(factor));
    for (int t = 0; t < thickness; ++t) {
        for (int y = 0; y < image.height(); y += 3) {
            QCOMPARE(image.pixel(t, y), border);
            QCOMPARE(image.pixel(image.width() - 1 - t, y), border);
        }
        for (int x = 0; x < image.width(); x += 3) {
            QCOMPARE(image.pixel(x, t), border);
            QCOMPARE(image.pixel(x, image.height() - 1 - t), border);
        }
    }
    QVERIFY(image.width() >= int(380 * factor));
}

QTEST_MAIN(tst_VLiteContentDlg)
#include "tst_vlitecontentdlg.moc"
