#pragma once

#include <QStackedWidget>

#include "vdocumentmerger_export.h"

class VMCloudDirWidget;
class VMCustomDirWidget;

// The page beside the location combo, one per location index: nothing for the first file's
// folder, the custom folder with its browse button, the cloud folder with its open button.
class VDOCUMENTMERGER_EXPORT VMOpenLoationWidget : public QStackedWidget {
    Q_OBJECT
public:
    explicit VMOpenLoationWidget(QWidget *parent);

    VMCustomDirWidget *customPage() const;
    VMCloudDirWidget *cloudPage() const;

private:
    VMCustomDirWidget *m_customPage = nullptr;
    VMCloudDirWidget *m_cloudPage = nullptr;
};
