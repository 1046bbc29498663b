#include "kit/icon.h"

#include "res/icons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace tidebrook {

namespace {

QPixmap draw(const char *name, const QSize &size, const QColor &colour) {
    const qreal ratio = qGuiApp->devicePixelRatio();
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(iconSvg(name).replace("currentColor", colour.name().toLatin1()));
    if (!renderer.isValid())
        return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&pixmap);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(size)));
    return pixmap;
}

} // namespace

QPixmap icon(const char *name, const QSize &size, const QPalette &palette) {
    if (size.isEmpty())
        return {};
    const QColor colour = palette.color(QPalette::WindowText);
    const QString key = QStringLiteral("icon %1 %2x%3 %4 %5")
                            .arg(QLatin1String(name))
                            .arg(size.width())
                            .arg(size.height())
                            .arg(colour.name())
                            .arg(qGuiApp->devicePixelRatio());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = draw(name, size, colour);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace tidebrook
