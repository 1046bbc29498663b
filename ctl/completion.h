#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tidebrook {

/// How a command is called.
struct CommandSyntax {
    QString name;
    /// As the help shows it. It is read as well: an operand in capitals is completed by what it
    /// names (CATEGORY, CHANNEL, ARTICLE, SETTING, COMMAND, FILE, DIR), one in small letters by
    /// itself. `A|B` is either, `[A]` may be missing, and " | " divides forms that begin with
    /// different words.
    QString usage;
    QStringList options; // long names without dashes
    QString summary;
};

/// A word that may stand on the command line, with a few words about it. Without a text it stands
/// for every file, or for every folder when `about` is "DIR".
struct Completion {
    QString text;
    QString about;
};

/// What may stand in the place of the last of the words, which follow the program's name; the
/// others are whole. Names are those of the device that the words choose, articles those that the
/// reader lists. What cannot be read, as there is no device, completes nothing: no failure is
/// reported, and nothing is made or waited for.
QList<Completion> completionsOf(const QList<CommandSyntax> &commands, QStringList words);

} // namespace tidebrook
