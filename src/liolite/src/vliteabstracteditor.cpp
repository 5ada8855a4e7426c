#include <liolite/vliteabstracteditor.h>

#include <QEvent>
#include <QVariant>
#include <QStyle>

VLiteAbstractEditor::VLiteAbstractEditor(QWidget* parent)
    : VLiteWidget(parent)
{
    setProperty("editorFocus", false);
}

bool VLiteAbstractEditor::editorHasFocus() const
{
    return m_editorFocus;
}

void VLiteAbstractEditor::watchFocusOf(QWidget* editor)
{
    if (editor) {
        editor->installEventFilter(this);
        setFocusProxy(editor);
    }
}

bool VLiteAbstractEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn)
        setEditorFocus(true);
    else if (event->type() == QEvent::FocusOut)
        setEditorFocus(false);
    return VLiteWidget::eventFilter(watched, event);
}

void VLiteAbstractEditor::setEditorFocus(bool focused)
{
    if (m_editorFocus == focused)
        return;
    m_editorFocus = focused;
    setProperty("editorFocus", focused);
    // Property selectors are only matched again on a fresh polish.
    style()->unpolish(this);
    style()->polish(this);
    update();
}
