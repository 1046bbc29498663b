#include "platform/sql/sql.h"

#include "platform/sql/sql_shape.h"

#include <QStringBuilder>

#include <utility>

namespace tidebrook {

namespace {

SqlColumn columnOf(const QByteArray &declaredType) {
    const qsizetype bracket = declaredType.indexOf('(');
    const QByteArray name =
        (bracket < 0 ? declaredType : declaredType.first(bracket)).trimmed().toUpper();
    if (name == "NCHAR" || name == "NVARCHAR") {
        const qsizetype end = declaredType.indexOf(')', bracket + 1);
        const int size = declaredType.mid(bracket + 1, end - bracket - 1).toInt();
        return {SqlColumn::Type::Text, size};
    }
    if (name == "BIGINT")
        return {SqlColumn::Type::Int64, 8};
    if (name == "SMALLINT")
        return {SqlColumn::Type::Int16, 2};
    if (name == "BIT")
        return {SqlColumn::Type::Boolean, 2};
    return {};
}

} // namespace

bool SqlRowset::next() {
    const SqliteStep step = statement_.step();
    failed_ = step != SqliteStep::Row && step != SqliteStep::Done;
    return step == SqliteStep::Row;
}

bool SqlCommand::prepare(SqlRowset &rows) {
    std::optional<SqlShape> shape = takeSqlApart(text_);
    if (!shape)
        return false;
    if (!orderOfEquals_.isEmpty())
        shape->shape += ", " + orderOfEquals_;
    rows.statement_ = session_->prepare(shape->shape);
    if (!rows.statement_)
        return false;
    rows.texts_.clear();
    rows.texts_.reserve(shape->literals.size());
    int position = 0;
    for (SqlShape::Literal &literal : shape->literals) {
        ++position;
        if (const qint64 *number = std::get_if<qint64>(&literal))
            rows.statement_.bind(position, *number);
        else
            rows.statement_.bind(
                position, rows.texts_.emplace_back(std::get<QByteArray>(std::move(literal))));
    }
    return true;
}

ExecuteStatus SqlCommand::execute() {
    SqlRowset rows;
    if (!prepare(rows))
        return ExecuteStatus::Failed;
    SqliteStep step = SqliteStep::Row;
    while (step == SqliteStep::Row)
        step = rows.statement_.step();
    if (step == SqliteStep::IntegrityViolation)
        return ExecuteStatus::IntegrityViolation;
    return step == SqliteStep::Done ? ExecuteStatus::Done : ExecuteStatus::Failed;
}

ExecuteStatus SqlCommand::execute(SqlRowset &rows) {
    if (!prepare(rows))
        return ExecuteStatus::Failed;
    rows.columns_.clear();
    for (int column = 0; column < rows.statement_.columnCount(); ++column)
        rows.columns_.push_back(columnOf(rows.statement_.declaredType(column)));
    return ExecuteStatus::Done;
}

} // namespace tidebrook
