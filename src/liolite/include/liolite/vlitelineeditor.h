#pragma once

#include <liolite/vliteabstracteditor.h>

class QLineEdit;

// One-line text editor in a themed frame. With clearButton, a button that clears the text
// shows while there is text.
class LIOLITE_EXPORT VLiteLineEditor : public VLiteAbstractEditor
{
    Q_OBJECT
public:
    explicit VLiteLineEditor(QWidget* parent = nullptr, bool clearButton = false);

    void setText(const QString& text);
    QString text() const;
    void setPlaceholderText(const QString& text);
    // Owned by the editor.
    QLineEdit* innerEdit() const;

signals:
    void textChanged(const QString& text);

private:
    QLineEdit* m_edit = nullptr;
};
