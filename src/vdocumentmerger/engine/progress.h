#pragma once

#include <QProgressBar>

#include "shell/ithemeobject.h"
#include "vdocumentmerger_export.h"

// Thin rounded progress bar in the colours of its theme class, styled once, on its first show.
class VDOCUMENTMERGER_EXPORT Progress : public QProgressBar, public IThemeObject {
    Q_OBJECT
public:
    explicit Progress(QWidget *parent = nullptr);
    ~Progress() override;

    QString themeClassName() const override;
    void setThemeClassName(const QString &themeClass) override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void applyStyle(const QColor &background, const QColor &chunk);

    bool m_stylePending = true;
};
