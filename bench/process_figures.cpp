#include "bench/process_figures.h"

#include "bench/runner.h"

#include <QDir>
#include <QFile>

#include <unistd.h>

#include <chrono>
#include <thread>
#include <utility>
#include <vector>

namespace tidebrook {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds stillness = 200ms;
const auto pageBytes = static_cast<quint64>(sysconf(_SC_PAGESIZE));
const double pageKibibytes = static_cast<double>(pageBytes) / 1024;

QString folderOf(pid_t process) { return QStringLiteral("/proc/%1").arg(process); }

QByteArray contentOf(const QString &path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw MeasurementError(path + u": " + file.errorString());
    return file.readAll();
}

qint64 fieldOf(const QByteArray &content, const QByteArray &name) {
    for (const QByteArray &line : content.split('\n')) {
        if (line.startsWith(name) && line.mid(name.size()).startsWith(':'))
            return line.mid(name.size() + 1).simplified().split(' ').first().toLongLong();
    }
    throw MeasurementError(
        QStringLiteral("the system does not tell \"%1\"").arg(QString::fromLatin1(name)));
}

/// Sums a field up over the threads.
qint64 sumOf(pid_t process, const QByteArray &field) {
    const QDir tasks(folderOf(process) + u"/task");
    const QStringList threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    if (threads.isEmpty())
        throw MeasurementError(QStringLiteral("process %1 has ended").arg(process));
    qint64 sum = 0;
    for (const QString &thread : threads) {
        QFile status(tasks.filePath(thread) + u"/status");
        if (status.open(QIODevice::ReadOnly)) // else it has ended just now
            sum += fieldOf(status.readAll(), field);
    }
    return sum;
}

Memory rollupOf(pid_t process) {
    const QByteArray rollup = contentOf(folderOf(process) + u"/smaps_rollup");
    const auto kibibytes = [&rollup](const QByteArray &field) {
        return static_cast<double>(fieldOf(rollup, field));
    };
    return {.proportional = kibibytes("Pss"),
            .resident = kibibytes("Rss"),
            .anonymous = kibibytes("Anonymous")};
}

// Pages by their file (device and inode) and the place in it.
using FilePages = QSet<std::pair<QByteArray, quint64>>;

/// Adds the pages of a mapping that are in memory and still the file's: no copy of the process's.
void addPages(FilePages &pages, QFile &pagemap, const QByteArray &mapping) {
    constexpr quint64 presentFilePage = quint64{0b101} << 61U;
    constexpr auto entrySize = static_cast<qint64>(sizeof(quint64));
    const QList<QByteArray> fields = mapping.simplified().split(' ');
    if (fields.size() < 6 || fields[4] == "0")
        return;
    const QList<QByteArray> range = fields[0].split('-');
    const quint64 first = range[0].toULongLong(nullptr, 16) / pageBytes;
    const quint64 end = range[1].toULongLong(nullptr, 16) / pageBytes;
    const quint64 offset = fields[2].toULongLong(nullptr, 16) / pageBytes;
    std::vector<quint64> entries(end - first);
    const qint64 size = std::ssize(entries) * entrySize;
    if (!pagemap.seek(static_cast<qint64>(first) * entrySize) ||
        pagemap.read(reinterpret_cast<char *>(entries.data()), size) != size)
        throw MeasurementError(pagemap.fileName() + u": " + pagemap.errorString());
    for (quint64 i = 0; i < entries.size(); ++i) {
        if ((entries[i] & presentFilePage) == presentFilePage)
            pages.insert({fields[3] + ' ' + fields[4], offset + i});
    }
}

FilePages filePagesOf(pid_t process) {
    QFile pagemap(folderOf(process) + u"/pagemap");
    if (!pagemap.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw MeasurementError(pagemap.fileName() + u": " + pagemap.errorString());
    FilePages pages;
    for (const QByteArray &mapping : contentOf(folderOf(process) + u"/maps").split('\n'))
        addPages(pages, pagemap, mapping);
    return pages;
}

} // namespace

std::array<Memory, 2> memoryOf(pid_t one, pid_t other) {
    std::array memories{rollupOf(one), rollupOf(other)};
    const FilePages ofOne = filePagesOf(one);
    const FilePages ofOther = filePagesOf(other);
    const auto shared = static_cast<double>((ofOne & ofOther).size());
    const auto alone = [shared](const Memory &memory, const FilePages &pages) {
        return memory.anonymous + (static_cast<double>(pages.size()) - shared / 2) * pageKibibytes;
    };
    memories[0].alone = alone(memories[0], ofOne);
    memories[1].alone = alone(memories[1], ofOther);
    return memories;
}

QSet<QString> filesOf(pid_t process) {
    QSet<QString> files;
    for (const QByteArray &line : contentOf(folderOf(process) + u"/maps").split('\n')) {
        const qsizetype path = line.indexOf('/');
        if (path >= 0)
            files.insert(QString::fromLocal8Bit(line.mid(path)));
    }
    return files;
}

QSet<QString> librariesOf(pid_t process) {
    QSet<QString> files = filesOf(process);
    files.removeIf([](const QString &path) { return !path.contains(u".so"); });
    return files;
}

qint64 sleepsOf(pid_t process) { return sumOf(process, "voluntary_ctxt_switches"); }

void awaitIdle(pid_t process) {
    for (qint64 before = -1, now = sleepsOf(process); now != before; now = sleepsOf(process)) {
        before = now;
        std::this_thread::sleep_for(stillness);
        throwIfInterrupted();
    }
}

} // namespace tidebrook
