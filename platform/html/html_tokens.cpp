#include "platform/html/html_tokens.h"

namespace tidebrook {

bool HtmlTokens::next() {
    while (at_ < html_.size()) {
        if (html_[at_] == u'<') {
            if (takeMarkup())
                return true;
            continue;
        }
        const qsizetype begin = html_.indexOf(u'<', at_);
        const qsizetype end = begin < 0 ? html_.size() : begin;
        kind_ = Kind::Text;
        text_ = html_.mid(at_, end - at_);
        at_ = end;
        return true;
    }
    return false;
}

void HtmlTokens::skipContents() {
    const qsizetype end = find(u"</" + tag_.name, at_);
    if (end >= 0)
        at_ = indexOrEnd(u">", end) + 1;
}

// What was sought in vain is not sought again: a document may have many beginnings without an end.
qsizetype HtmlTokens::find(const QString &text, qsizetype from) {
    if (missing_.contains(text))
        return -1;
    const qsizetype found = html_.indexOf(text, from, Qt::CaseInsensitive);
    if (found < 0)
        missing_.insert(text);
    return found;
}

qsizetype HtmlTokens::indexOrEnd(QStringView text, qsizetype from) const {
    const qsizetype found = html_.indexOf(text, from, Qt::CaseInsensitive);
    return found < 0 ? html_.size() : found;
}

void HtmlTokens::skipSpaces() {
    while (at_ < html_.size() && html_[at_].isSpace())
        at_ += 1;
}

QStringView HtmlTokens::takeUntil(QStringView ends) {
    const qsizetype from = at_;
    while (at_ < html_.size() && !html_[at_].isSpace() && !ends.contains(html_[at_]))
        at_ += 1;
    return html_.mid(from, at_ - from);
}

// False for what is left out.
bool HtmlTokens::takeMarkup() {
    const qsizetype commentEnd = isAt(u"<!--") ? find(QStringLiteral("-->"), at_ + 2) : -1;
    if (commentEnd >= 0) {
        at_ = commentEnd + 3;
        return false;
    }
    if (isAt(u"<!") || isAt(u"<?")) {
        at_ = indexOrEnd(u">", at_) + 1;
        return false;
    }
    const qsizetype name = isAt(u"</") ? at_ + 2 : at_ + 1;
    if (name < html_.size() && html_[name].unicode() < 0x80 && html_[name].isLetter()) {
        takeTag(name);
    } else {
        kind_ = Kind::Text;
        text_ = html_.mid(at_++, 1);
    }
    return true;
}

void HtmlTokens::takeTag(qsizetype nameAt) {
    kind_ = Kind::Tag;
    tag_.isEnd = nameAt == at_ + 2;
    tag_.attributes.clear();
    at_ = nameAt;
    tag_.name = takeUntil(u"/>").toString().toLower();
    takeAttributes();
}

void HtmlTokens::takeAttributes() {
    while (at_ < html_.size() && html_[at_] != u'>') {
        const QString name = takeUntil(u"=/>").toString().toLower();
        skipSpaces();
        const bool hasValue = at_ < html_.size() && html_[at_] == u'=';
        const QString value = hasValue ? takeValue() : QString();
        if (!hasValue && isAt(u"/"))
            at_ += 1;
        if (!name.isEmpty() && !tag_.attributes.contains(name))
            tag_.attributes.insert(name, value);
    }
    at_ += 1;
}

QString HtmlTokens::takeValue() {
    at_ += 1;
    skipSpaces();
    if (!isAt(u"\"") && !isAt(u"'"))
        return takeUntil(u">").toString();
    const QStringView quote = html_.mid(at_, 1);
    at_ += 1;
    const qsizetype close = html_.indexOf(quote, at_);
    const qsizetype end = close < 0 ? indexOrEnd(u">", at_) : close;
    QString value = html_.mid(at_, end - at_).toString();
    at_ = close < 0 ? end : end + 1;
    return value;
}

} // namespace tidebrook
