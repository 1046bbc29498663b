#include "res/icons.h"

#include <QFile>

// Without a call the linker leaves the files out. The macro works outside of namespaces only.
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
