#include "platform/sql/sql.h"

#include "platform/sql/sql_shape.h"

#include <utility>

namespace tidebrook {

SqliteStep SqlCommand::execute(const QString &statement) {
    SqliteStatement prepared = query(statement);
    SqliteStep step = prepared.step();
    while (step == SqliteStep::Row)
        step = prepared.step();
    return step;
}

SqliteStatement SqlCommand::query(const QString &statement, const QByteArray &orderOfEquals) {
    std::optional<SqlShape> shape = takeSqlApart(statement);
    if (!shape)
        return {};
    if (!orderOfEquals.isEmpty())
        shape->shape += ", " + orderOfEquals;
    return session_.prepare(shape->shape, std::move(shape->literals));
}

} // namespace tidebrook
