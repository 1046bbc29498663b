#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace tidebrook {

/// What the command line asks for.
struct Arguments {
    QString home; // empty: the standard device root
    QString command;
    QStringList operands; // behind the command
    QStringList options;  // the command's own options that were given, by their long names
    QString order;
    QString jobs;
    QString timeout;
    QString category;
    QString feed;
    bool isQuiet = false;
    bool wantsHelp = false;
    bool wantsVersion = false;

    /// Whether an own option of the command was given, by its long name.
    bool has(QStringView option) const { return options.contains(option); }
    /// Whether the form of a table is asked for.
    bool hasTableForm() const { return has(u"json") || has(u"header"); }
};

/// Takes a command line apart. Nothing, with `error` telling why, when it has an unknown option.
std::optional<Arguments> parseArguments(const QStringList &commandLine, QString *error);

/// The long names, without dashes, of the options that every command takes.
QStringList optionsOfAllCommands();
/// The long name of the option that a word is, if the next word is its value; else empty.
QString optionBeforeValue(const QString &word);

} // namespace tidebrook
