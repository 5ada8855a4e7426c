#pragma once

#include "host/liolite.h"
#include "vdocumentmerger_export.h"

// Label that keeps a whole text and shows it shortened to its current width.
class VDOCUMENTMERGER_EXPORT VMElidedTextLabel : public VLiteLabel {
    Q_OBJECT
public:
    explicit VMElidedTextLabel(QWidget *parent = nullptr);

    void setText(const QString &text);
    QString fullText() const;
    void setElideMode(Qt::TextElideMode mode);
    Qt::TextElideMode textElideMode() const override;
    // Advance width of the whole text in the label's font.
    int textWidth() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString elided() const;

    Qt::TextElideMode m_elideMode;
    QString m_fullText;
};
