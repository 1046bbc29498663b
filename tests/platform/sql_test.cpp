#include "platform/sql/sql.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace tidebrook {
namespace {

class SqlTest : public testing::Test {
protected:
    void SetUp() override {
        session_ =
            SqliteDatabase::open(folder_.filePath(QStringLiteral("test.db")), {.create = true});
        ASSERT_TRUE(session_);
        ASSERT_TRUE(command().define("CREATE TABLE T (NAME NCHAR(51)  PRIMARY KEY, "
                                     "LINK NVARCHAR(513), N SMALLINT, FLAG BIT, STAMP BIGINT)"));
    }

    SqlCommand command() { return SqlCommand(*session_); }

    QStringList texts(const SqlText &statement) {
        SqliteStatement rows = command().query(statement);
        QStringList found;
        while (rows.next())
            found.append(rows.text(0));
        return rows.failed() ? QStringList(QStringLiteral("failed")) : found;
    }

    QTemporaryDir folder_;
    std::unique_ptr<SqliteDatabase> session_;
};

TEST_F(SqlTest, TrailingBlanksDoNotTellNamesApart) {
    const auto insert = [&](QStringView name) {
        return command().execute({"INSERT INTO T VALUES ('%s', 'l', 1, 0, 5)", name});
    };
    EXPECT_EQ(insert(u"World"), SqliteStep::Done);
    EXPECT_EQ(insert(u"World  "), SqliteStep::IntegrityViolation);
    EXPECT_EQ(insert(u"world"), SqliteStep::Done);
    EXPECT_EQ(texts({"SELECT NAME FROM T WHERE NAME = '%s'", u"World "}),
              QStringList(QStringLiteral("World")));
    EXPECT_EQ(texts({"SELECT NAME FROM T WHERE LINK = '%s'", u"l "}), QStringList());
}

TEST_F(SqlTest, ATextNeverLeavesItsHole) {
    for (const QStringView bad : {u"'", u"a'b", u"a''b'", u"x', NULL, 1, 0, 5); DELETE FROM T --"})
        EXPECT_EQ(command().execute({"INSERT INTO T VALUES ('%s', NULL, 1, 0, 5)", bad}),
                  SqliteStep::Failed)
            << bad.toUtf8().constData();
    const QStringView odd = u"a ? ''b'' %s %d -- ; c''";
    EXPECT_EQ(command().execute({"INSERT INTO T VALUES ('%s', NULL, '%d', %d, %lu)", odd, 12, true,
                                 4'000'000'000}),
              SqliteStep::Done);
    EXPECT_EQ(texts({"SELECT NAME FROM T WHERE STAMP < '%I64d' and N = '%d' and FLAG = 1",
                     4'000'000'001, 12}),
              QStringList(QStringLiteral("a ? 'b' %s %d -- ; c'")));
    EXPECT_EQ(texts({"SELECT NAME FROM T WHERE STAMP < '%I64d'", 500}), QStringList());
    EXPECT_EQ(command().execute("DELETE FROM T WHERE NAME='x'; DELETE FROM T"), SqliteStep::Failed);
    EXPECT_EQ(texts("SELECT count(*) FROM T"), QStringList(QStringLiteral("1")));
}

} // namespace
} // namespace tidebrook
