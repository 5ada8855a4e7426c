#include "vliteiconengine.h"

#include "vlitethemestore.h"

#include <QHash>
#include <QImage>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

// Buttons ask for sizes on every paint; parse each image once.
QSize naturalSize(const QString& path)
{
    static QHash<QString, QSize> sizes;
    auto it = sizes.constFind(path);
    if (it == sizes.constEnd())
        it = sizes.insert(path, QSvgRenderer(path).defaultSize());
    return *it;
}

} // namespace

VLiteIconEngine::VLiteIconEngine(const QStringList& names)
    : m_names(names)
{
    while (m_names.size() < 4)
        m_names.append(QString());
}

int VLiteIconEngine::modeIndex(QIcon::Mode mode)
{
    switch (mode) {
    case QIcon::Normal: return 0;
    case QIcon::Active: return 1;
    case QIcon::Selected: return 2;
    case QIcon::Disabled: return 3;
    }
    return 0;
}

QString VLiteIconEngine::ownPath(QIcon::Mode mode) const
{
    return VLiteThemeStore::instance()->iconPath(m_names.at(modeIndex(mode)));
}

void VLiteIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state)
{
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    QPixmap pm = pixmap(rect.size() * ratio, mode, state);
    if (pm.isNull())
        return;
    pm.setDevicePixelRatio(ratio);
    const QSize logical = pm.size() / ratio;
    const QPoint topLeft(rect.x() + (rect.width() - logical.width()) / 2,
                         rect.y() + (rect.height() - logical.height()) / 2);
    painter->drawPixmap(topLeft, pm);
}

QPixmap VLiteIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    Q_UNUSED(state)
    if (size.isEmpty())
        return QPixmap();

    QString path = ownPath(mode);
    bool dimmed = false;
    if (path.isEmpty() && mode != QIcon::Normal) {
        // Like Qt's own engines: a mode without its image shows the normal one, faded when disabled.
        path = ownPath(QIcon::Normal);
        dimmed = mode == QIcon::Disabled;
    }
    if (path.isEmpty())
        return QPixmap();

    const QString cacheKey = QStringLiteral("liolite:%1:%2x%3:%4")
                                 .arg(path).arg(size.width()).arg(size.height()).arg(dimmed ? 1 : 0);
    QPixmap pm;
    if (QPixmapCache::find(cacheKey, &pm))
        return pm;

    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return QPixmap();
    const QSize target = actualSize(size, mode, state);
    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        if (dimmed)
            p.setOpacity(0.4);
        renderer.render(&p, QRectF(QPointF(0, 0), QSizeF(target)));
    }
    pm = QPixmap::fromImage(image);
    QPixmapCache::insert(cacheKey, pm);
    return pm;
}

QSize VLiteIconEngine::actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    Q_UNUSED(state)
    QString path = ownPath(mode);
    if (path.isEmpty())
        path = ownPath(QIcon::Normal);
    if (path.isEmpty())
        return QSize();
    const QSize natural = naturalSize(path);
    if (natural.isEmpty())
        return size;
    return natural.scaled(size, Qt::KeepAspectRatio);
}

QList<QSize> VLiteIconEngine::availableSizes(QIcon::Mode mode, QIcon::State state) const
{
    Q_UNUSED(state)
    const QString path = ownPath(mode);
    if (path.isEmpty())
        return {};
    const QSize natural = naturalSize(path);
    return {natural.isEmpty() ? QSize(16, 16) : natural};
}

QIconEngine* VLiteIconEngine::clone() const
{
    return new VLiteIconEngine(m_names);
}

QString VLiteIconEngine::key() const
{
    return QStringLiteral("liolite");
}

void VLiteIconEngine::virtual_hook(int id, void* data)
{
    if (id == QIconEngine::IsNullHook) {
        bool hasAny = false;
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Active, QIcon::Selected, QIcon::Disabled})
            hasAny = hasAny || !ownPath(mode).isEmpty();
        *static_cast<bool*>(data) = !hasAny;
        return;
    }
    QIconEngine::virtual_hook(id, data);
}
