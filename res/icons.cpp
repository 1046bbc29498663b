#include "res/icons.h"

#include <QFile>

// The linker takes the files out of the library only for those who ask for one of them. The macro
// must stand outside of any namespace.
static void provideFiles() { Q_INIT_RESOURCE(tidebrook); }

namespace tidebrook {

namespace {

QByteArray readFile(const QString &name) {
    static const bool areProvided = (provideFiles(), true);
    Q_UNUSED(areProvided);
    QFile file(u":/tidebrook/" + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QByteArray iconSvg(const char *name) { return readFile(u"icons/" + QLatin1String(name) + u".svg"); }

QByteArray helpPage() { return readFile(QStringLiteral("help/Feedlark.htm")); }

} // namespace tidebrook
