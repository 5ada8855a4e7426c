#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QShowEvent;
class QVBoxLayout;
class VMBottomOptionWidget;
class VMFileOptionWidget;

// The widget the host embeds: the file area above the bottom bar with the output options and
// the start button.
// The host owns it through its parent.
class VDOCUMENTMERGER_EXPORT VMClientWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMClientWidget(QWidget *parent);

    // The import page or the file list, stretching above the bottom bar.
    VMFileOptionWidget *fileArea() const;
    VMBottomOptionWidget *bottomOptionWidget() const;

public slots:
    // The start button is usable from two selected files on.
    void onSelectedItemCountChange(int selected, int total);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QVBoxLayout *m_layout = nullptr;
    VMFileOptionWidget *m_fileArea = nullptr;
    VMBottomOptionWidget *m_bottomOptionWidget = nullptr;
};
