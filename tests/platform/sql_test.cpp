#include "platform/sql.h"
#include "platform/sql_shape.h"
#include "support/text_printing.h"

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
                  ExecuteStatus::Done);
    }

    ExecuteStatus run(QStringView statement) {
        SqlCommand command(*session_);
        command.setText(statement.toString());
        return command.execute();
    }

    QStringList texts(QStringView statement) {
        SqlCommand command(*session_);
        command.setText(statement.toString());
        SqlRowset rows;
        QStringList found;
        if (command.execute(rows) != ExecuteStatus::Done)
            return {QStringLiteral("failed")};
        while (rows.next())
            found.append(rows.text(0));
        return found;
    }

    QTemporaryDir folder_;
    std::unique_ptr<SqliteDatabase> session_;
};

TEST_F(SqlTest, ARefusedKeyIsToldApartFromAFailure) {
    const QStringView insert = u"INSERT INTO T VALUES ('Bob''s', 'l', 1, 0, 5)";
    EXPECT_EQ(run(insert), ExecuteStatus::Done);
    EXPECT_EQ(run(insert), ExecuteStatus::IntegrityViolation);
    EXPECT_EQ(run(u"INSERT INTO NOWHERE VALUES (1)"), ExecuteStatus::Failed);
    EXPECT_EQ(texts(u"SELECT NAME FROM T"), QStringList(QStringLiteral("Bob's")));
}

TEST_F(SqlTest, OnlyOneStatementRunsAtATime) {
    run(u"INSERT INTO T VALUES ('kept', 'l', 1, 0, 5)");
    for (const QStringView text :
         {u"SELECT NAME FROM T; DELETE FROM T", u"DELETE FROM T WHERE NAME='x'; DELETE FROM T",
          u"SELECT NAME FROM T -- comment", u"SELECT NAME FROM T /* comment */", u"",
          u"SELECT 'unfinished FROM T"}) {
        EXPECT_EQ(run(text), ExecuteStatus::Failed) << text.toUtf8().constData();
    }
    EXPECT_EQ(run(u"SELECT NAME FROM T ; \n"), ExecuteStatus::Done);
    EXPECT_EQ(texts(u"SELECT NAME FROM T"), QStringList(QStringLiteral("kept")));
}

TEST_F(SqlTest, TrailingBlanksDoNotTellNamesApart) {
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('World', 'l', 1, 0, 5)"), ExecuteStatus::Done);
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('World  ', 'l', 1, 0, 5)"),
              ExecuteStatus::IntegrityViolation);
    EXPECT_EQ(run(u"INSERT INTO T VALUES ('world', 'l', 1, 0, 5)"), ExecuteStatus::Done);
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE NAME = 'World '"),
              QStringList(QStringLiteral("World")));
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE LINK = 'l '"), QStringList());
}

TEST_F(SqlTest, LiteralsTakenOutMeanWhatTheyMeantInPlace) {
    run(u"INSERT INTO T VALUES ('a ? ''b'' -- ; c', NULL, '12', 1, '4000000000')");
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE STAMP < '4000000001' and N = 12 and FLAG = 1"),
              QStringList(QStringLiteral("a ? 'b' -- ; c")));
    EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE STAMP < '500'"), QStringList());
    run(u"INSERT INTO T VALUES ('b', NULL, '2', 0, 1)");
    EXPECT_EQ(texts(u"SELECT NAME FROM T ORDER BY 1 DESC").first(), QStringLiteral("b"));
    EXPECT_EQ(texts(u"SELECT N + 1.5 FROM T WHERE NAME = 'b'"), QStringList(QStringLiteral("3.5")));
}

TEST_F(SqlTest, ColumnsComeWithTheirDeclaredTypes) {
    SqlCommand command(*session_);
    command.setText(QStringLiteral("SELECT NAME, LINK, N, FLAG, STAMP FROM T"));
    SqlRowset rows;
    ASSERT_EQ(command.execute(rows), ExecuteStatus::Done);
    ASSERT_EQ(rows.columns().size(), 5u);
    EXPECT_EQ(rows.columns()[0].type, SqlColumn::Type::Text);
    EXPECT_EQ(rows.columns()[0].declaredSize, 51);
    EXPECT_EQ(rows.columns()[1].declaredSize, 513);
    EXPECT_EQ(rows.columns()[2].type, SqlColumn::Type::Int16);
    EXPECT_EQ(rows.columns()[3].type, SqlColumn::Type::Boolean);
    EXPECT_EQ(rows.columns()[4].type, SqlColumn::Type::Int64);
}

TEST_F(SqlTest, AQueryBeingReadDoesNotDisturbAnotherOfItsShape) {
    for (const QStringView name : {u"a", u"b", u"c"})
        run(QStringLiteral("INSERT INTO T VALUES ('%1', 'l', 1, 0, 5)").arg(name));
    SqlCommand command(*session_);
    command.setText(QStringLiteral("SELECT NAME FROM T WHERE N = 1"));
    SqlRowset outer;
    ASSERT_EQ(command.execute(outer), ExecuteStatus::Done);
    QStringList seen;
    while (outer.next()) {
        seen.append(outer.text(0));
        EXPECT_EQ(texts(u"SELECT NAME FROM T WHERE N = 1").size(), 3);
    }
    EXPECT_EQ(seen.size(), 3);
}

TEST(SqlShape, StatementsThatDifferInLiteralsShareAShape) {
    const auto one = takeSqlApart(u"UPDATE T SET A = 'it''s' WHERE B=1 and C = ''");
    const auto other = takeSqlApart(u"UPDATE T SET A = '?' WHERE B=22 and C = 'x'");
    ASSERT_TRUE(one && other);
    EXPECT_EQ(one->shape, other->shape);
    EXPECT_EQ(one->literals, (std::vector<SqlShape::Literal>{"it's", qint64{1}, ""}));
}

TEST_F(SqlTest, ATransactionIsUndoneUnlessItIsCommitted) {
    {
        SqliteTransaction transaction(*session_);
        run(u"INSERT INTO T VALUES ('undone', 'l', 1, 0, 5)");
        SqliteTransaction inner(*session_);
        EXPECT_TRUE(inner.commit());
    }
    EXPECT_EQ(texts(u"SELECT NAME FROM T"), QStringList());
}

} // namespace
} // namespace tidebrook
