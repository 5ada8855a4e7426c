#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Header button cycling through the sort states 0 (as added), 1 (ascending), 2 (descending).
class VDOCUMENTMERGER_EXPORT VMSortStateButton : public VLiteButton {
    Q_OBJECT
public:
    explicit VMSortStateButton(QWidget *parent = nullptr);

    // Another value than 0, 1 or 2 is stored and keeps the current icon.
    void setSortState(int state);
    int sortState() const;

signals:
    void sortStateClick(int newState);

public slots:
    void onClicked();

private:
    int m_sortState = 0;
};
