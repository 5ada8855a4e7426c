#pragma once

#include <QWidget>

#include "vdocumentmerger_export.h"

class VLiteButton;
class VMElidedTextLabel;

// The custom output folder: its path, elided in the middle, and a button to choose another.
// Starts on the desktop folder and writes every chosen folder into VMEnv.
class VDOCUMENTMERGER_EXPORT VMCustomDirWidget : public QWidget {
    Q_OBJECT
public:
    explicit VMCustomDirWidget(QWidget *parent);

private slots:
    void onBrowse();

private:
    void fitLabelWidth();

    VMElidedTextLabel *m_folderLabel = nullptr;
    VLiteButton *m_browseButton = nullptr;
};
