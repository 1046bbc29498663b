#include "platform/sql/sql_shape.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace tidebrook {

namespace {

bool isBlank(QChar c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

bool isWord(QChar c) {
    return isDigit(c) || (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' ||
           c == u'$' || c.unicode() > 0x7F;
}

// Goes through a statement from left to right.
class Scanner {
public:
    explicit Scanner(QStringView statement) : text_(statement) {
        shape_.reserve(128);          // more than most shapes have characters,
        result_.literals.reserve(12); // and more literals than most statements
    }

    std::optional<SqlShape> run() {
        skipBlanks();
        const QStringView verb = text_.sliced(position_, endOfWord(position_) - position_);
        if (verb.compare(u"CREATE", Qt::CaseInsensitive) == 0)
            return definition();
        takesLiterals_ = hasLiterals(verb);
        plainBegin_ = position_;
        while (position_ < text_.size()) {
            if (!takeNext())
                return std::nullopt;
        }
        flushPlain(position_);
        result_.shape = shape_.toUtf8();
        return std::move(result_);
    }

private:
    static bool hasLiterals(QStringView verb) {
        static constexpr std::array<QStringView, 4> verbs{u"SELECT", u"INSERT", u"UPDATE",
                                                          u"DELETE"};
        return std::any_of(verbs.begin(), verbs.end(), [verb](QStringView known) {
            return verb.compare(known, Qt::CaseInsensitive) == 0;
        });
    }

    bool takeNext() {
        const QChar c = text_[position_];
        if (isBlank(c))
            ++position_;
        else if (isWord(c))
            takeWord();
        else
            return takeSign(c);
        return true;
    }

    bool takeSign(QChar sign) {
        switch (sign.unicode()) {
        case u'\'':
            return takeTextLiteral();
        case u'"':
        case u'`':
            return passQuoted(sign);
        case u';':
            return endStatement();
        case u'-':
        case u'/':
            // A comment could hide a literal from this scan.
            if (position_ + 1 < text_.size() &&
                (text_[position_ + 1] == u'-' || text_[position_ + 1] == u'*'))
                return false;
            break;
        case u'\0':
            return false;
        default:
            break;
        }
        ++position_;
        return true;
    }

    bool takeTextLiteral() {
        const qsizetype end = endOfLiteral();
        if (end < 0)
            return false;
        if (takesLiterals_) {
            QByteArray literal = text_.sliced(position_ + 1, end - position_ - 2).toUtf8();
            if (hasQuotes_)
                literal.replace("''", "'");
            putLiteral(std::move(literal), end);
        }
        position_ = end;
        return true;
    }

    // The position behind the literal's closing quote; negative without one.
    qsizetype endOfLiteral() {
        hasQuotes_ = false;
        for (qsizetype begin = position_ + 1;;) {
            const qsizetype quote = text_.indexOf(u'\'', begin);
            if (quote < 0)
                return -1;
            if (quote + 1 == text_.size() || text_[quote + 1] != u'\'')
                return quote + 1;
            hasQuotes_ = true;
            begin = quote + 2;
        }
    }

    void takeWord() {
        const qsizetype end = endOfWord(position_);
        const QStringView word = text_.sliced(position_, end - position_);
        if (isDigit(word.front()))
            takeNumber(word, end);
        else if (word.size() <= 2)
            noteShortWord(word, end);
        if (position_ < end)
            position_ = end;
    }

    void takeNumber(QStringView word, qsizetype end) {
        if (end < text_.size() && text_[end] == u'.') { // a fraction stays where it is
            position_ = endOfWord(end + 1);
            return;
        }
        bool isWhole = false;
        const qint64 number = word.toLongLong(&isWhole);
        if (takesLiterals_ && isWhole)
            putLiteral(number, end);
    }

    // After ORDER BY and GROUP BY a number names a column; after an x a literal is a blob.
    void noteShortWord(QStringView word, qsizetype end) {
        const bool isBlob = end < text_.size() && text_[end] == u'\'' &&
                            word.compare(u"x", Qt::CaseInsensitive) == 0;
        if (isBlob || word.compare(u"BY", Qt::CaseInsensitive) == 0)
            takesLiterals_ = false;
    }

    bool passQuoted(QChar quote) {
        const qsizetype end = text_.indexOf(quote, position_ + 1);
        position_ = end + 1;
        return end >= 0;
    }

    bool endStatement() {
        flushPlain(position_);
        ++position_;
        skipBlanks();
        plainBegin_ = position_;
        return position_ == text_.size();
    }

    std::optional<SqlShape> definition() {
        static const QRegularExpression fixedText(QStringLiteral("(\\bNCHAR\\s*\\(\\d+\\))"),
                                                  QRegularExpression::CaseInsensitiveOption);
        QString definition = text_.sliced(position_).toString();
        definition.replace(fixedText, QStringLiteral("\\1 COLLATE RTRIM"));
        return SqlShape{definition.toUtf8(), {}};
    }

    qsizetype endOfWord(qsizetype begin) const {
        while (begin < text_.size() && isWord(text_[begin]))
            ++begin;
        return begin;
    }

    void skipBlanks() {
        while (position_ < text_.size() && isBlank(text_[position_]))
            ++position_;
    }

    // Puts a literal that ends at `end` in the place of its text.
    void putLiteral(SqliteValue literal, qsizetype end) {
        result_.literals.push_back(std::move(literal));
        flushPlain(position_);
        shape_ += u'?';
        plainBegin_ = end;
    }

    void flushPlain(qsizetype end) { shape_ += text_.sliced(plainBegin_, end - plainBegin_); }

    QStringView text_;
    qsizetype position_ = 0;
    qsizetype plainBegin_ = 0; // of the text that belongs to the shape as it is
    bool takesLiterals_ = false;
    bool hasQuotes_ = false; // the literal being taken has doubled ones
    QString shape_;
    SqlShape result_;
};

} // namespace

std::optional<SqlShape> takeSqlApart(QStringView statement) { return Scanner(statement).run(); }

} // namespace tidebrook
