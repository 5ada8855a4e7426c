#pragma once

#include <liolite/vlitewidget.h>

// Base of the framed editors: a themed frame that knows whether its editor has the focus
// (property "editorFocus", usable in the theme's look).
class LIOLITE_EXPORT VLiteAbstractEditor : public VLiteWidget
{
    Q_OBJECT
public:
    explicit VLiteAbstractEditor(QWidget* parent = nullptr);

    bool editorHasFocus() const;

protected:
    // Called by subclasses for the widget that takes the focus.
    void watchFocusOf(QWidget* editor);
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setEditorFocus(bool focused);

    bool m_editorFocus = false;
};
