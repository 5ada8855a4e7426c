#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

// Four dots lit in turn, then a pause: shown while a row waits for its page count. Runs while
// visible; hiding stops it.
class VDOCUMENTMERGER_EXPORT VMItemLoadingWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMItemLoadingWidget(QWidget *parent = nullptr);
    ~VMItemLoadingWidget() override;

    void start();
    void stop();
    bool isRunning() const;
    // Index of the lit dot, -1 when none is lit.
    int litDot() const;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int m_timerId = -1;
    unsigned int m_step = 0;
    unsigned int m_dotCount = 4;
    unsigned int m_pauseTicks = 2;
};
