#pragma once

#include <QIconEngine>
#include <QStringList>

// Renders the SVG images of an icon set at any size. Image paths are looked up when drawing, so
// an icon made before a theme switch shows the new theme's images afterwards.
class VLiteIconEngine : public QIconEngine
{
public:
    // names: one per mode in the order Normal, Active, Selected, Disabled; empty for none.
    explicit VLiteIconEngine(const QStringList& names);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override;
    QIconEngine* clone() const override;
    QString key() const override;
    void virtual_hook(int id, void* data) override;

    static int modeIndex(QIcon::Mode mode);

private:
    // The mode's own image, or an empty string.
    QString ownPath(QIcon::Mode mode) const;

    QStringList m_names;
};
