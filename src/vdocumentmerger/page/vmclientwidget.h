#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QShowEvent;
class QVBoxLayout;
class VMBottomOptionWidget;

// The widget the host embeds: the file area above the bottom bar with the start button.
// The host owns it through its parent.
class VDOCUMENTMERGER_EXPORT VMClientWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMClientWidget(QWidget *parent);

    // The area the file list occupies (stretching above the bottom bar).
    QWidget *fileArea() const;
    VMBottomOptionWidget *bottomOptionWidget() const;

public slots:
    // The start button is usable from two selected files on.
    void onSelectedItemCountChange(int selected, int total);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QVBoxLayout *m_layout = nullptr;
    QWidget *m_fileArea = nullptr;
    VMBottomOptionWidget *m_bottomOptionWidget = nullptr;
};
