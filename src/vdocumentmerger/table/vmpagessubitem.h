#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QStackedLayout;
class VLiteButton;
class VLiteLabel;

// Page-count column of a row: page 0 the count ("-" until one is known), page 1 "read fail"
// with a reload button.
class VDOCUMENTMERGER_EXPORT VMPagesSubItem : public QWidget {
    Q_OBJECT
public:
    explicit VMPagesSubItem(QWidget *parent = nullptr);

    // 0: count, 1: read fail.
    void setCurrentIndex(int index);
    int currentIndex() const;
    VLiteLabel *countLabel() const;
    VLiteLabel *readFailLabel() const;
    VLiteButton *reloadButton() const;

signals:
    void sigReload();

private:
    QStackedLayout *m_stack = nullptr;
    VLiteLabel *m_countLabel = nullptr;
    VLiteLabel *m_readFailLabel = nullptr;
    VLiteButton *m_reloadButton = nullptr;
};
