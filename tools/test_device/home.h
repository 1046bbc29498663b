#pragma once

#include "test_device/test_device.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace tidebrook {

/// As long as it lives, the user has this home, with documents in a folder of this name, and these
/// folders and files in it; a folder's name ends in "/".
class Home {
public:
    explicit Home(const QStringList &entries = {}, const QByteArray &content = "before",
                  const QString &documents = QStringLiteral("Papers"))
        : documents_(folder_.filePath(documents)) {
        QDir().mkpath(documents_);
        for (const QString &entry : entries) {
            QDir().mkpath(QFileInfo(filePath(entry)).path());
            if (!entry.endsWith(u'/'))
                writeFile(filePath(entry), content);
        }
        QDir(path()).mkdir(QStringLiteral(".config"));
        writeFile(path() + QStringLiteral("/.config/user-dirs.dirs"),
                  QStringLiteral("XDG_DOCUMENTS_DIR=\"$HOME/%1\"\n").arg(documents).toUtf8());
        qputenv("HOME", path().toLocal8Bit());
        qunsetenv("XDG_CONFIG_HOME"); // which is in the home then
    }
    ~Home() { qputenv("HOME", home_); }
    Home(const Home &) = delete;
    Home &operator=(const Home &) = delete;

    QString path() const { return folder_.path(); }
    QString documents() const { return documents_; }
    /// A document's path.
    QString filePath(const QString &name) const { return documents_ + u'/' + name; }
    /// Null for what is no file.
    QByteArray content(const QString &name) const { return contentOf(filePath(name)); }
    QStringList files() const { return QDir(documents_).entryList(QDir::Files); }

private:
    const QByteArray home_ = qgetenv("HOME");
    const QTemporaryDir folder_;
    const QString documents_;
};

} // namespace tidebrook
