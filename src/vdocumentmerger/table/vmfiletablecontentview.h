#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QVBoxLayout;

// The widget inside the content area that stacks the rows, and during a drag the drop
// indicator, in one vertical box. It always takes the viewport's width.
class VDOCUMENTMERGER_EXPORT VMFileTableContentView : public QWidget {
    Q_OBJECT
public:
    explicit VMFileTableContentView(QWidget *parent = nullptr);

    QVBoxLayout *boxLayout() const;
    QSize sizeHint() const override;

public slots:
    void onSigResized(QSize size);

private:
    QVBoxLayout *m_layout = nullptr;
};
