#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VLiteButton;
class VLiteLabel;

// The cloud output folder: its display name and a link-like button that opens it on the
// cloud drive, or asks the user to sign in first.
class VDOCUMENTMERGER_EXPORT VMCloudDirWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMCloudDirWidget(QWidget *parent);

private slots:
    void onOpenCloudDir();

private:
    VLiteLabel *m_textLabel = nullptr;
    VLiteButton *m_openButton = nullptr;
};
