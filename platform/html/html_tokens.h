#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringView>

namespace tidebrook {

/// A start tag or an end tag.
struct HtmlTag {
    QString name; ///< in lower case
    bool isEnd = false;
    /// By names in lower case; of several of the same name the first counts. The values are as the
    /// document writes them, with their entities.
    QHash<QString, QString> attributes;
};

/// Takes HTML apart into texts and tags, in a time that grows with its length. Unclosed, nested and
/// misspelt elements are allowed. Comments, declarations and processing instructions are left out.
/// The document outlives this.
class HtmlTokens {
public:
    enum class Kind { Text, Tag };

    explicit HtmlTokens(QStringView html) : html_(html) {}

    /// Goes to the next token, to the first one at first. False at the end of the document.
    bool next();
    Kind kind() const { return kind_; }
    /// The text of a `Text` token, with its entities. It is "<" alone where this begins no tag; no
    /// other text contains one.
    QStringView text() const { return text_; }
    /// The tag of a `Tag` token.
    const HtmlTag &tag() const { return tag_; }
    /// After a start tag: goes behind the end tag of this name. An element that is never closed
    /// keeps its contents, else the rest of the document would go too.
    void skipContents();

private:
    bool isAt(QStringView text) const { return html_.mid(at_).startsWith(text); }
    qsizetype indexOrEnd(QStringView text, qsizetype from) const;
    qsizetype find(const QString &text, qsizetype from);
    void skipSpaces();
    QStringView takeUntil(QStringView ends);
    bool takeMarkup();
    void takeTag(qsizetype nameAt);
    void takeAttributes();
    QString takeValue();

    QStringView html_;
    qsizetype at_ = 0;
    Kind kind_ = Kind::Text;
    QStringView text_;
    HtmlTag tag_;
    QSet<QString> missing_; // what is not to be found behind the place any more
};

} // namespace tidebrook
