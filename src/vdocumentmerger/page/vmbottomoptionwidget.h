#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QHBoxLayout;
class VLiteButton;
class VMOutputOptionWidget;

// The bar under the file area: the output options and the "start merge" button, which
// starts disabled.
class VDOCUMENTMERGER_EXPORT VMBottomOptionWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMBottomOptionWidget(QWidget *parent);

    void setStartEnabled(bool enabled);

signals:
    // On every click of the enabled start button.
    void sigStartMerger();

private:
    QHBoxLayout *m_layout = nullptr;
    VMOutputOptionWidget *m_outputOptionWidget = nullptr;
    VLiteButton *m_startButton = nullptr;
};
