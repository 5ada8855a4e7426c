#pragma once

#include <liolite/liolite_export.h>

#include <QDialog>
#include <QPoint>

class QHBoxLayout;
class QLabel;
class QVBoxLayout;
class VLiteButton;

// Modal message dialog with its own title bar (icon, title, close button), a content text or a
// custom content widget, and up to three buttons.
//
// exec() returns the result of the clicked button (set with setButtonResult; by default 1 for
// the confirm button, 0 for cancel and 3 for the third), or ResultClosed (2) when the dialog was
// closed without a button: close button, Esc or reject(). clickedButton() then tells which
// button was clicked, BtnNone when none was.
class LIOLITE_EXPORT VLiteContentDlg : public QDialog
{
    Q_OBJECT
public:
    using IconType = int;
    enum : int {
        IconNone = 0,
        IconQuestion = 1,
        IconWarning = 2,
        IconFailure = 3,
        IconInfo = 4,
        IconSuccess = 5
    };

    using BtnType = int;
    enum : int { BtnNone = -1, BtnConfirm = 0, BtnCancel = 1, BtnThird = 2 };

    enum : int { ResultClosed = 2 };

    explicit VLiteContentDlg(QWidget* parent = nullptr, IconType iconType = IconNone);
    ~VLiteContentDlg() override;

    void setTitle(const QString& title);
    QString title() const;
    void setTitleIcon(IconType iconType);
    IconType titleIcon() const;
    // When on, dragging the title bar moves the dialog.
    void setTitleHitTest(bool enable);
    bool titleHitTest() const;

    // Plain text; long paths wrap at their separators.
    void setContent(const QString& text);
    QString content() const;
    // Replaces the content text with widget, which the dialog takes over (the previous custom
    // widget is deleted). height is its fixed height in logical pixels, -1 for its own size.
    void setCustomContentWidget(QWidget* widget, int height);
    QWidget* customContentWidget() const;

    void setButtonText(BtnType btn, const QString& text);
    QString buttonText(BtnType btn) const;
    void setButtonResult(BtnType btn, int result);
    int buttonResult(BtnType btn) const;
    void setButtonVisible(BtnType btn, bool visible);
    bool isButtonVisible(BtnType btn) const;
    // Null for an unknown kind. Owned by the dialog.
    VLiteButton* button(BtnType btn) const;

    BtnType clickedButton() const;

public slots:
    // Closes without a button: result ResultClosed.
    void reject() override;

protected:
    // Re-applies the current theme to the frame, title, content and buttons. Also run on every
    // theme switch while the dialog exists.
    virtual void changeStyle();

    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onButtonClicked(BtnType btn);
    void updateIcon();

    struct ButtonSlot {
        VLiteButton* button = nullptr;
        int result = 0;
    };

    IconType m_iconType = IconNone;
    BtnType m_clicked = BtnNone;
    bool m_titleHitTest = false;
    bool m_dragging = false;
    QPoint m_dragOffset;

    QWidget* m_titleBar = nullptr;
    QLabel* m_iconLabel = nullptr;
    QLabel* m_titleLabel = nullptr;
    VLiteButton* m_closeButton = nullptr;
    QWidget* m_body = nullptr;
    QVBoxLayout* m_bodyLayout = nullptr;
    QLabel* m_contentLabel = nullptr;
    QWidget* m_customContent = nullptr;
    QString m_content;
    ButtonSlot m_buttons[3];
};
