#pragma once

#include <liolite/liolite_export.h>

#include <QLabel>

class LIOLITE_EXPORT VLiteLabel : public QLabel
{
    Q_OBJECT
public:
    explicit VLiteLabel(QWidget* parent = nullptr);
    explicit VLiteLabel(const QString& text, QWidget* parent = nullptr);
    ~VLiteLabel() override;

    void applyThemeClass(const QString& themeClass, bool cascade = false);
    QString themeClass() const;

    // With auto elide, a plain text wider than the label is shown shortened with "…" according
    // to textElideMode(); text() keeps the whole text.
    void setTextAutoElide(bool enable);
    bool textAutoElide() const;
    void setTextElideMode(Qt::TextElideMode mode);
    virtual Qt::TextElideMode textElideMode() const;

    // The text as it is shown at the current width.
    QString displayedText() const;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_autoElide = false;
    Qt::TextElideMode m_elideMode = Qt::ElideRight;
};
