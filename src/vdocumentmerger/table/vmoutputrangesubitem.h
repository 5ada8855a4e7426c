#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class QStackedLayout;
class VMItemLoadingWidget;
class VMRangeOperateWidget;

// Range column of a row: page 0 the loading spinner, page 1 the two range spin boxes.
class VDOCUMENTMERGER_EXPORT VMOutputRangeSubItem : public QWidget {
    Q_OBJECT
public:
    explicit VMOutputRangeSubItem(QWidget *parent = nullptr);

    // 0: spinner, 1: range.
    void setCurrentIndex(int index);
    int currentIndex() const;
    VMItemLoadingWidget *loadingWidget() const;
    VMRangeOperateWidget *rangeWidget() const;

private:
    QStackedLayout *m_stack = nullptr;
    VMItemLoadingWidget *m_loadingWidget = nullptr;
    VMRangeOperateWidget *m_rangeWidget = nullptr;
};
