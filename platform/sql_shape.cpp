#include "platform/sql_shape.h"

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

// The parts of a statement that are taken apart, from left to right.
class Scanner {
public:
    explicit Scanner(QStringView statement) : text_(statement) { shape_.reserve(256); }

    std::optional<SqlShape> run() {
        skipBlanks();
        const QStringView verb = wordAt(position_);
        if (verb.compare(u"CREATE", Qt::CaseInsensitive) == 0)
            return definition();
        takesLiterals_ = hasLiterals(verb);
        while (position_ < text_.size()) {
            if (!takeNext())
                return std::nullopt;
        }
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
        if (c == u'\'')
            return takeTextLiteral();
        if (c == u'"' || c == u'`')
            return copyQuoted(c);
        if (c == u';')
            return endStatement();
        if (isDigit(c))
            takeNumber();
        else if (isWord(c))
            copyWord();
        // Comments have no place in the system's statements; refusing them leaves no way to hide
        // a literal from this scan.
        else if (c == u'\0' || startsWith(u"--") || startsWith(u"/*"))
            return false;
        else
            copy(1);
        return true;
    }

    bool takeTextLiteral() {
        QString literal;
        qsizetype begin = position_ + 1;
        for (;;) {
            const qsizetype quote = text_.indexOf(u'\'', begin);
            if (quote < 0)
                return false;
            literal += text_.sliced(begin, quote - begin);
            begin = quote + 1;
            if (begin == text_.size() || text_[begin] != u'\'')
                break;
            literal += u'\'';
            ++begin;
        }
        if (takesLiterals_) {
            result_.literals.emplace_back(literal.toUtf8());
            shape_ += u'?';
            position_ = begin;
        } else {
            copy(begin - position_);
        }
        return true;
    }

    void takeNumber() {
        const QStringView word = wordAt(position_);
        bool isWhole = false;
        const qint64 number = word.toLongLong(&isWhole);
        const qsizetype behind = position_ + word.size();
        if (behind < text_.size() && text_[behind] == u'.') {
            copy(word.size() + 1 + wordAt(behind + 1).size());
            return;
        }
        if (!takesLiterals_ || !isWhole) {
            copy(word.size());
            return;
        }
        result_.literals.emplace_back(number);
        shape_ += u'?';
        position_ = behind;
    }

    void copyWord() {
        const QStringView word = wordAt(position_);
        copy(word.size());
        // Numbers behind ORDER BY and GROUP BY name columns; quotes behind an x are a blob.
        if (word.compare(u"BY", Qt::CaseInsensitive) == 0 ||
            (word.compare(u"x", Qt::CaseInsensitive) == 0 && position_ < text_.size() &&
             text_[position_] == u'\''))
            takesLiterals_ = false;
    }

    bool copyQuoted(QChar quote) {
        const qsizetype end = text_.indexOf(quote, position_ + 1);
        if (end < 0)
            return false;
        copy(end + 1 - position_);
        return true;
    }

    bool endStatement() {
        ++position_;
        skipBlanks();
        return position_ == text_.size();
    }

    std::optional<SqlShape> definition() {
        static const QRegularExpression fixedText(QStringLiteral("(\\bNCHAR\\s*\\(\\d+\\))"),
                                                  QRegularExpression::CaseInsensitiveOption);
        QString definition = text_.sliced(position_).toString();
        definition.replace(fixedText, QStringLiteral("\\1 COLLATE RTRIM"));
        return SqlShape{definition.toUtf8(), {}};
    }

    bool startsWith(QStringView mark) const { return text_.sliced(position_).startsWith(mark); }

    QStringView wordAt(qsizetype begin) const {
        qsizetype end = begin;
        while (end < text_.size() && isWord(text_[end]))
            ++end;
        return text_.sliced(begin, end - begin);
    }

    void skipBlanks() {
        while (position_ < text_.size() && isBlank(text_[position_]))
            ++position_;
    }

    void copy(qsizetype size) {
        shape_ += text_.sliced(position_, size);
        position_ += size;
    }

    QStringView text_;
    qsizetype position_ = 0;
    bool takesLiterals_ = false;
    QString shape_;
    SqlShape result_;
};

} // namespace

std::optional<SqlShape> takeSqlApart(QStringView statement) { return Scanner(statement).run(); }

} // namespace tidebrook
