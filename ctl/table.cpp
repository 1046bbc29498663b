#include "ctl/table.h"

#include "ctl/output.h"
#include "feed/feed_records.h"

#include <QJsonDocument>

namespace tidebrook {

Table::Table(const Arguments &arguments, const QStringList &columns)
    : isJson_(arguments.has(u"json")), hasHeader_(arguments.has(u"header")), columns_(columns) {}

void Table::add(const QStringList &fields, const QJsonObject &object) {
    if (!isQuiet())
        addFault(fields, object);
}

void Table::addFault(const QStringList &fields, const QJsonObject &object) {
    begin();
    if (isJson_)
        printDocument((hasRow_ ? ",\n" : "\n") + jsonLine(object));
    else
        printFault(fields);
    hasRow_ = true;
}

int Table::end() {
    if (!isQuiet())
        begin();
    if (isJson_ && isBegun_)
        printDocument(hasRow_ ? "\n]\n" : "]\n");
    return ExitDone;
}

void Table::begin() {
    if (isBegun_)
        return;
    isBegun_ = true;
    if (isJson_)
        printDocument("[");
    else if (hasHeader_)
        printFields(columns_);
}

QByteArray jsonLine(const QJsonObject &object) {
    const QString json = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    const QString harmless = printable(json);
    QString line;
    for (qsizetype i = 0; i < json.size(); ++i) {
        if (json[i] == harmless[i])
            line += json[i];
        else
            line += QStringLiteral("\\u%1").arg(json[i].unicode(), 4, 16, QChar(u'0'));
    }
    return line.toUtf8();
}

QJsonValue jsonText(const QString &text) {
    return text.isEmpty() || isMissing(text) ? QJsonValue() : QJsonValue(text);
}

} // namespace tidebrook
