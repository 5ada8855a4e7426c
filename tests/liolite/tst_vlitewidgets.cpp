#include <liolite/vdrawhelper.h>
#include <liolite/vlitebutton.h>
#include <liolite/vlitecheckbox.h>
#include <liolite/vliteclickablelabel.h>
#include <liolite/vlitecombobox.h>
#include <liolite/vlitecontentdlg.h>
#include <liolite/vlitelabel.h>
#include <liolite/vlitelineeditor.h>
#include <liolite/vlitestyle.h>
#include <liolite/vseparatorline.h>

#include <QAbstractItemView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOption>
#include <QtTest>

namespace {

// Records what the box asks its indicator to draw, as the add-on's icon check box does.
class RecordingCheckBox : public VLiteCheckBox
{
public:
    using VLiteCheckBox::VLiteCheckBox;
    int calls = 0;
    QStyle::State lastState;
    QRect lastRect;

protected:
    void drawIndicator(QPainter* painter, const QStyleOption* option, const QRect& rect) override
    {
        ++calls;
        lastState = option->state;
        lastRect = rect;
        VLiteCheckBox::drawIndicator(painter, option, rect);
    }
};

// Like the add-on's row labels: the elide mode comes from an override.
class MiddleElidingLabel : public VLiteLabel
{
public:
    using VLiteLabel::VLiteLabel;
    Qt::TextElideMode textElideMode() const override { return Qt::ElideMiddle; }
};

const QString LongName = QStringLiteral("Quarterly report of the northern region 2026 final version.docx");

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

Q_DECLARE_METATYPE(Qt::MouseButton)

class tst_VLiteWidgets : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void button_look_data();
    void button_look();
    void checkBox_indicatorReceivesState_data();
    void checkBox_indicatorReceivesState();
    void checkBox_defaultIndicatorDrawsCheckedInAccent();
    void checkBox_clickAnywhereToggles();
    void comboBox_currentIndexChangedBothSignals();
    void comboBox_checkMarksWidenEntries();
    void comboBox_popupWideEnoughForEveryEntry_data();
    void comboBox_popupWideEnoughForEveryEntry();
    void lineEditor_textChangedRelaysInnerEdit();
    void lineEditor_focusReachesInnerEditAndFrame();
    void label_autoElide_data();
    void label_autoElide();
    void label_autoElideFollowsWidthAndSwitch();
    void clickableLabel_data();
    void clickableLabel();
    void clickableLabel_underline();
    void separatorLine_paintsCentredLine_data();
    void separatorLine_paintsCentredLine();

    void dialog_execResult_data();
    void dialog_execResult();
    void dialog_buttonDefaultsAndUnknownKinds();
    void dialog_customContentWidgetReplacesText();
    void dialog_restylesAndDragsWhileOpen();
    void dialog_borderVisibleAtEveryScale_data();
    void dialog_borderVisibleAtEveryScale();
};

void tst_VLiteWidgets::cleanup()
{
    VLiteStyle::setScaleOverride(0);
    VLiteStyle::setTheme(QStringLiteral("light"));
}

void tst_VLiteWidgets::button_look_data()
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

void tst_VLiteWidgets::button_look()
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

void tst_VLiteWidgets::checkBox_indicatorReceivesState_data()
{
    QTest::addColumn<int>("checkState");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("flag");
    QTest::addColumn<double>("factor");

    QTest::newRow("unchecked") << int(Qt::Unchecked) << true << int(QStyle::State_Off) << 1.0;
    QTest::newRow("part_checked") << int(Qt::PartiallyChecked) << true << int(QStyle::State_NoChange) << 1.0;
    QTest::newRow("checked_disabled") << int(Qt::Checked) << false << int(QStyle::State_On) << 1.0;
    QTest::newRow("checked_at_200_percent") << int(Qt::Checked) << true << int(QStyle::State_On) << 2.0;
}

void tst_VLiteWidgets::checkBox_indicatorReceivesState()
{
    QFETCH(int, checkState);
    QFETCH(bool, enabled);
    QFETCH(int, flag);
    QFETCH(double, factor);

    VLiteStyle::setScaleOverride(factor);
    RecordingCheckBox box;
    box.setTristate(checkState == Qt::PartiallyChecked);
    box.setCheckState(Qt::CheckState(checkState));
    box.setEnabled(enabled);
    box.resize(box.sizeHint());
    box.grab();
    QCOMPARE(box.calls, 1);
    QVERIFY(box.lastState & QStyle::State(flag));
    QCOMPARE(bool(box.lastState & QStyle::State_Enabled), enabled);
    // The indicator scales with the screen.
    QCOMPARE(box.lastRect.size(), QSize(16, 16) * factor);
}

void tst_VLiteWidgets::checkBox_defaultIndicatorDrawsCheckedInAccent()
{
    VLiteCheckBox box;
    box.setFixedSize(16, 16);
    const QImage unchecked = box.grab().toImage();
    box.setChecked(true);
    const QImage checked = box.grab().toImage();
    const QColor accent = QColor("#417FF9");
    // Inside the box, off the tick.
    QCOMPARE(checked.pixelColor(3, 12).rgb(), accent.rgb());
    QVERIFY(unchecked.pixelColor(3, 12).rgb() != accent.rgb());
}

void tst_VLiteWidgets::checkBox_clickAnywhereToggles()
{
    VLiteCheckBox box(QStringLiteral("File name"));
    box.resize(box.sizeHint());
    QVERIFY(box.sizeHint().width() > 16 + QFontMetrics(box.font()).horizontalAdvance(QStringLiteral("File name")));
    QSignalSpy spy(&box, &QCheckBox::stateChanged);
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(box.width() - 3, box.height() / 2));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), int(Qt::Checked));
    QTest::mouseClick(&box, Qt::LeftButton, Qt::NoModifier, QPoint(4, box.height() / 2));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toInt(), int(Qt::Unchecked));
}

void tst_VLiteWidgets::comboBox_currentIndexChangedBothSignals()
{
    VLiteComboBox combo(nullptr, true);
    const QMap<QString, QVariant> extra{{QStringLiteral("tip"), QStringLiteral("cloud")}};
    combo.addItem(QStringLiteral(".docx"), QVariant(), {});
    combo.addItem(QStringLiteral(".doc"), QVariant(2), extra);
    combo.addItem(QStringLiteral(".zyl"), QVariant(), {});
    // The extra map is kept beside the item's data, not in its place.
    QCOMPARE(combo.itemData(1).toInt(), 2);
    QCOMPARE(combo.itemExtra(1), extra);
    QVERIFY(combo.itemExtra(0).isEmpty() && combo.itemExtra(7).isEmpty());

    QSignalSpy byIndex(&combo, QOverload<int>::of(&QComboBox::currentIndexChanged));
    QSignalSpy byText(&combo, SIGNAL(currentIndexChanged(QString)));
    // The same index again is silent; one out of range clears the choice.
    for (int choice : {2, 2, 1, 0, 0, 9})
        combo.setCurrentIndex(choice);
    const QList<int> expected{2, 1, 0, -1};

    QCOMPARE(byIndex.count(), expected.size());
    QCOMPARE(byText.count(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(byIndex.at(i).at(0).toInt(), expected[i]);
        QCOMPARE(byText.at(i).at(0).toString(), expected[i] < 0 ? QString() : combo.itemText(expected[i]));
    }
}

void tst_VLiteWidgets::comboBox_checkMarksWidenEntries()
{
    VLiteComboBox styled(nullptr, true);
    styled.addItem(QStringLiteral(".docx"));
    styled.addItem(QStringLiteral(".doc"));
    styled.setDisplayCheckState(true);
    const QSize withMark = styled.view()->sizeHintForIndex(styled.model()->index(0, 0));
    styled.setDisplayCheckState(false);
    const QSize without = styled.view()->sizeHintForIndex(styled.model()->index(0, 0));
    // Room for the check mark beside the text.
    QVERIFY(withMark.width() > without.width());
}

void tst_VLiteWidgets::comboBox_popupWideEnoughForEveryEntry_data()
{
    QTest::addColumn<int>("boxWidth");
    QTest::newRow("narrow_box") << 80;
    QTest::newRow("wide_box_keeps_its_width") << 400;
}

void tst_VLiteWidgets::comboBox_popupWideEnoughForEveryEntry()
{
    QFETCH(int, boxWidth);

    QWidget window;
    auto* combo = new VLiteComboBox(&window, true);
    combo->setFixedSize(boxWidth, 34);
    combo->setDisplayCheckState(true);
    for (const char* entry : {".docx", ".doc", "The first file's folder", ".zyl"})
        combo->addItem(QString::fromLatin1(entry), QVariant(), {});
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    combo->showPopup();
    QAbstractItemView* list = combo->view();
    QTRY_VERIFY(list->isVisible());
    const int available = list->viewport()->width();
    for (int row = 0; row < combo->count(); ++row)
        QVERIFY2(list->sizeHintForIndex(combo->model()->index(row, 0)).width() <= available,
                 qPrintable(combo->itemText(row)));
    QVERIFY(list->window()->width() >= boxWidth);
    combo->hidePopup();
}

void tst_VLiteWidgets::lineEditor_textChangedRelaysInnerEdit()
{
    VLiteLineEditor editor(nullptr, true);
    QSignalSpy spy(&editor, &VLiteLineEditor::textChanged);
    editor.setText(QStringLiteral("Text merge"));
    editor.setText(QStringLiteral("Text merge")); // the same text again is silent
    editor.innerEdit()->clear();
    QTest::keyClicks(editor.innerEdit(), QStringLiteral("ab"));
    QCOMPARE(editor.text(), QStringLiteral("ab"));

    QStringList texts;
    for (const QList<QVariant>& arguments : qAsConst(spy))
        texts << arguments.at(0).toString();
    QCOMPARE(texts, (QStringList{"Text merge", "", "a", "ab"}));
}

void tst_VLiteWidgets::lineEditor_focusReachesInnerEditAndFrame()
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

void tst_VLiteWidgets::label_autoElide_data()
{
    QTest::addColumn<int>("mode");

    QTest::newRow("right") << int(Qt::ElideRight);
    QTest::newRow("middle") << int(Qt::ElideMiddle);
    QTest::newRow("left") << int(Qt::ElideLeft);
}

void tst_VLiteWidgets::label_autoElide()
{
    QFETCH(int, mode);

    VLiteLabel label(LongName);
    label.setTextAutoElide(true);
    label.setTextElideMode(Qt::TextElideMode(mode));
    label.resize(120, 22);

    const QString shown = label.displayedText();
    QCOMPARE(label.text(), LongName);
    const QChar ellipsis(0x2026);
    QVERIFY2(shown.contains(ellipsis), qPrintable(shown));
    QVERIFY(QFontMetrics(label.font()).horizontalAdvance(shown) <= label.contentsRect().width());
    // What is painted is the shortened text.
    VLiteLabel reference(shown);
    reference.resize(label.size());
    QCOMPARE(label.grab().toImage(), reference.grab().toImage());
    const QString kept = QString(shown).remove(ellipsis);
    switch (mode) {
    case Qt::ElideRight:
        QVERIFY(shown.endsWith(ellipsis));
        QVERIFY(LongName.startsWith(kept));
        break;
    case Qt::ElideLeft:
        QVERIFY(shown.startsWith(ellipsis));
        QVERIFY(LongName.endsWith(kept));
        break;
    case Qt::ElideMiddle:
        QVERIFY(!shown.startsWith(ellipsis) && !shown.endsWith(ellipsis));
        QVERIFY(LongName.startsWith(shown.section(ellipsis, 0, 0)));
        QVERIFY(LongName.endsWith(shown.section(ellipsis, 1)));
        break;
    }
}

void tst_VLiteWidgets::label_autoElideFollowsWidthAndSwitch()
{
    // The subclass's mode is the one used.
    MiddleElidingLabel label(LongName);
    const int fullMinimum = label.minimumSizeHint().width();
    label.resize(100, 22);
    QCOMPARE(label.displayedText(), LongName);

    label.setTextAutoElide(true);
    QVERIFY(label.minimumSizeHint().width() < fullMinimum / 4);
    const QString narrow = label.displayedText();
    label.resize(220, 22);
    const QString wider = label.displayedText();
    QVERIFY(narrow.contains(QChar(0x2026)));
    QVERIFY(wider.size() > narrow.size());
    QVERIFY(!narrow.startsWith(QChar(0x2026)) && !narrow.endsWith(QChar(0x2026)));
    label.resize(QFontMetrics(label.font()).horizontalAdvance(LongName) + 10, 22);
    QCOMPARE(label.displayedText(), LongName);

    label.resize(80, 22);
    QVERIFY(label.displayedText() != LongName);
    label.setTextAutoElide(false);
    QCOMPARE(label.displayedText(), LongName);

    // Word-wrapped and rich text are left to QLabel.
    label.setTextAutoElide(true);
    label.setText(QStringLiteral("<b>") + LongName + QStringLiteral("</b>"));
    QCOMPARE(label.displayedText(), label.text());
}

void tst_VLiteWidgets::clickableLabel_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("releaseInside");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("clicks");

    QTest::newRow("left_click_inside") << Qt::LeftButton << true << true << 1;
    QTest::newRow("left_release_outside") << Qt::LeftButton << false << true << 0;
    QTest::newRow("right_click") << Qt::RightButton << true << true << 0;
    QTest::newRow("disabled") << Qt::LeftButton << true << false << 0;
}

void tst_VLiteWidgets::clickableLabel()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(bool, releaseInside);
    QFETCH(bool, enabled);
    QFETCH(int, clicks);

    VLiteClickableLabel label(QStringLiteral("Invert Selection"));
    label.resize(120, 22);
    label.setEnabled(enabled);
    QSignalSpy spy(&label, &VLiteClickableLabel::labelClickFinished);
    QVERIFY(spy.isValid());
    QTest::mousePress(&label, button, Qt::NoModifier, QPoint(10, 10));
    QTest::mouseRelease(&label, button, Qt::NoModifier, releaseInside ? QPoint(12, 10) : QPoint(400, 10));
    QCOMPARE(spy.count(), clicks);
    QCOMPARE(label.cursor().shape(), Qt::PointingHandCursor);
}

void tst_VLiteWidgets::clickableLabel_underline()
{
    VLiteClickableLabel label(QStringLiteral("Invert Selection"));
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    // Modes: never, on hover, always.
    for (int mode = 0; mode < 3; ++mode) {
        label.setUnderlineMode(mode);
        label.ensurePolished();
        QCOMPARE(label.font().underline(), mode == 2);
        QApplication::sendEvent(&label, &enter);
        QCOMPARE(label.font().underline(), mode > 0);
        QApplication::sendEvent(&label, &leave);
        QCOMPARE(label.font().underline(), mode == 2);
    }
}

void tst_VLiteWidgets::separatorLine_paintsCentredLine_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("lineWidth");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("painted");
    QTest::addColumn<QString>("theme");

    QTest::newRow("vertical_in_wider_widget") << int(Qt::Vertical) << QSize(9, 12) << 1 << 1.0 << 1 << "light";
    QTest::newRow("horizontal_scaled") << int(Qt::Horizontal) << QSize(20, 9) << 2 << 1.5 << 3 << "light";
    QTest::newRow("zero_width_draws_one") << int(Qt::Horizontal) << QSize(20, 5) << 0 << 1.0 << 1 << "light";
    QTest::newRow("thicker_than_widget_clipped") << int(Qt::Vertical) << QSize(2, 12) << 4 << 1.0 << 2 << "light";
    // The dark theme's colour differs from the light one.
    QTest::newRow("dark_theme") << int(Qt::Horizontal) << QSize(10, 1) << 1 << 1.0 << 1 << "dark";
}

void tst_VLiteWidgets::separatorLine_paintsCentredLine()
{
    QFETCH(int, orientation);
    QFETCH(QSize, size);
    QFETCH(int, lineWidth);
    QFETCH(double, factor);
    QFETCH(int, painted);
    QFETCH(QString, theme);

    VLiteStyle::setScaleOverride(factor);
    QWidget back;
    back.setAutoFillBackground(true);
    QPalette pal = back.palette();
    pal.setColor(QPalette::Window, Qt::black);
    back.setPalette(pal);
    back.resize(size);
    VSeparatorLine line(&back, Qt::Orientation(orientation));
    line.setLineWidth(lineWidth);
    line.setGeometry(QRect(QPoint(0, 0), size));
    // A switch after the line was made counts too.
    QVERIFY(VLiteStyle::setTheme(theme));
    const QImage image = back.grab().toImage();
    const QColor colour = VDrawHelper::getColorFromTheme("VSeparatorLine", VDrawHelper::Prop_Content, QColor());
    int count = 0;
    int first = -1;
    const bool vertical = orientation == Qt::Vertical;
    const int across = vertical ? size.width() : size.height();
    for (int i = 0; i < across; ++i) {
        const QPoint p = vertical ? QPoint(i, size.height() / 2) : QPoint(size.width() / 2, i);
        if (image.pixelColor(p).rgb() == colour.rgb()) {
            if (first < 0)
                first = i;
            ++count;
        }
    }
    QCOMPARE(count, painted);
    QCOMPARE(first, (across - painted) / 2);
}

void tst_VLiteWidgets::dialog_execResult_data()
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

void tst_VLiteWidgets::dialog_execResult()
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

void tst_VLiteWidgets::dialog_buttonDefaultsAndUnknownKinds()
{
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconNone);
    // Cancel's default visibility is seen when the dialog is shown below.
    QVERIFY(dlg.isButtonVisible(0));
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

void tst_VLiteWidgets::dialog_customContentWidgetReplacesText()
{
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconNone);
    dlg.setContent(QStringLiteral("text"));
    auto* text = dlg.findChild<QLabel*>(QStringLiteral("vlite_dlg_content"));
    QVERIFY(text);

    QPointer<QWidget> first = new QWidget;
    dlg.setCustomContentWidget(first, 24);
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

void tst_VLiteWidgets::dialog_restylesAndDragsWhileOpen()
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

void tst_VLiteWidgets::dialog_borderVisibleAtEveryScale_data()
{
    QTest::addColumn<double>("factor");
    QTest::newRow("100_percent") << 1.0;
    QTest::newRow("150_percent") << 1.5;
}

void tst_VLiteWidgets::dialog_borderVisibleAtEveryScale()
{
    QFETCH(double, factor);
    VLiteStyle::setScaleOverride(factor);
    VLiteContentDlg dlg(nullptr, VLiteContentDlg::IconInfo);
    dlg.setTitle(QStringLiteral("Tips"));
    dlg.setContent(QStringLiteral("The document does not exist. It may be removed or renamed"));
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    const QImage image = dlg.grab().toImage();

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

QTEST_MAIN(tst_VLiteWidgets)
#include "tst_vlitewidgets.moc"
