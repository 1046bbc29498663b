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
        ASSERT_EQ(run(u"CREATE TABLE T (NAME NCHAR(51)  PRIMARY KEY, LINK NVARCHAR(513), "
                      u"N SMALLINT, FLAG BIT, STAMP BIGINT)"),
                  SqliteStep::Done);
    }

    SqliteStep run(QStringView statement) {
        return SqlCommand(*session_).execute(statement.toString());
    }

    QStringList texts(QStringView statement) {
        SqliteStatement rows = SqlCommand(*session_).query(statement.toString());
        QStringList found;
        while (rows.next())
            found.append(rows.text(0));
        return rows.failed() ? QStringList(QStringLiteral("failed")) : found;
    }

    QTemporaryDir folder_;
    std::unique_ptr<SqliteDatabase> session_;
};

TEST_F(SqlTest, OnlyOneStatementRunsAtATime) {
    run(u"INSERT INTO T VALUES ('kept', 'l', 1, 0, 5)");
    for (const QStringView text :
         {u"SELECT NAME FROM T; DELETE FROM T", u"DELETE FROM T WHERE NAME='x'; DELETE FROM T",
          u"SELECT NAME FROM T -- comment", u"SELECT NAME FROM T /* comment */", u"",
          u"SELECT 'unfinished FROM T"}) {
        EXPECT_EQ(run(text), SqliteStep::Failed) << text.toUtf8().constData();
    }
    EXPECT_EQ(run(u"SELECT NAME FROM T ; \n"), SqliteStep::Done);
    EXPECT_EQ(texts(u"SELECT NAME FROM T"), QStringList(QStringLiteral("kept")));
}

TEST_F(SqlTest, TrailingBlanksDoNotTellNamesApart) {
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('World', 'l', 1, 0, 5)"), SqliteStep::Done);
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('World  ', 'l', 1, 0, 5)"),
              SqliteStep::IntegrityViolation);
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('world', 'l', 1, 0, 5)"), SqliteStep::Done);
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE NAME = 'World '"),
              QStringList(QStringLiteral("World")));
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE LINK = 'l '"), QStringList());
}

TEST_F(SqlTest, LiteralsTakenOutMeanWhatTheyMeantInPlace) {
    run(u"INSERT INTO T VALUES ('a ? ''b'' -- ; c', NULL, '12', 1, '4000000000')");
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE STAMP < '4000000001' and N = 12 and FLAG = 1"),
              QStringList(QStringLiteral("a ? 'b' -- ; c")));
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE STAMP < '500'"), QStringList());
}

} // namespace
} // namespace tidebrook
