#include "platform/sql/sql.h"

#include <QRegularExpression>

#include <utility>

namespace tidebrook {

namespace {

// Turns each doubled quote of a literal into one. False when there is a lone one.
bool takeQuotesApart(QByteArray &literal) {
    if (QByteArray(literal).replace("''", "").contains('\''))
        return false;
    literal.replace("''", "'");
    return true;
}

} // namespace

void SqlText::take(QStringView text) {
    QByteArray utf8 = text.toUtf8();
    if (utf8.contains('\''))
        isSafe_ = takeQuotesApart(utf8) && isSafe_;
    values_.emplace_back(std::move(utf8));
}

SqliteStep SqlCommand::execute(SqlText statement) {
    SqliteStatement prepared = query(std::move(statement));
    SqliteStep step = prepared.step();
    while (step == SqliteStep::Row)
        step = prepared.step();
    return step;
}

SqliteStatement SqlCommand::query(SqlText statement) {
    return statement.isSafe_
               ? session_.prepareFormat(statement.format_, std::move(statement.values_))
               : SqliteStatement();
}

bool SqlCommand::define(const char *definition) {
    static const QRegularExpression fixedText(QStringLiteral("(\\bNCHAR\\(\\d+\\))"));
    QString text = QString::fromLatin1(definition);
    return session_.run(text.replace(fixedText, QStringLiteral("\\1 COLLATE RTRIM")).toUtf8());
}

} // namespace tidebrook
