#pragma once

#include "ctl/arguments.h"

#include <QJsonObject>
#include <QStringList>

namespace tidebrook {

/// The rows of a listing command on standard output, each written at once: as lines of
/// tab-separated fields, with the names of the columns in the first one (--header), or as one JSON
/// document, an array with an object for each row (--json). `docs/commands.md` names the fields.
class Table {
public:
    Table(const Arguments &arguments, const QStringList &columns);

    /// Writes a row, unless the program is quiet: `fields` to a line, `object` to a document.
    void add(const QStringList &fields, const QJsonObject &object);
    /// The same for a row that says what is wrong, which is written also when the program is quiet.
    void addFault(const QStringList &fields, const QJsonObject &object);

    /// Ends the table, and returns `ExitDone`. One whose command failed halfway is not ended, so
    /// that no program takes the document for a whole one.
    int end();

private:
    void begin();

    const bool isJson_;
    const bool hasHeader_;
    const QStringList columns_;
    bool isBegun_ = false;
    bool hasRow_ = false;
};

/// An object as a line of JSON, with what could disturb a terminal written as escapes.
QByteArray jsonLine(const QJsonObject &object);

/// A text as a value: null for an empty one, and for the mark of a text that a feed did not supply.
QJsonValue jsonText(const QString &text);

} // namespace tidebrook
