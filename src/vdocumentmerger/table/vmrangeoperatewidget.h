#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QSpinBox;

// First and last page of a row. The wheel never changes them: it is passed on unaccepted to
// the parents, so that it scrolls the list.
class VDOCUMENTMERGER_EXPORT VMRangeOperateWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMRangeOperateWidget(QWidget *parent = nullptr);

    QSpinBox *fromSpinBox() const;
    QSpinBox *toSpinBox() const;

public slots:
    void onResetStyleSheet();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QSpinBox *m_fromSpinBox = nullptr;
    QSpinBox *m_toSpinBox = nullptr;
};
