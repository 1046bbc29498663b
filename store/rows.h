#pragma once

#include <QString>
#include <QtGlobal>

namespace tidebrook {

/// A row of a channel list, as it stands in the row buffer. The name fills its place, or is
/// followed by zeros.
struct ChannelRow {
    char16_t name[50];
    qint32 unread;
    qint32 total;

    QString nameText() const { return QString::fromUtf16(name, textLength(name, 50)); }

    static qsizetype textLength(const char16_t *text, qsizetype capacity) {
        qsizetype length = 0;
        while (length < capacity && text[length] != 0)
            ++length;
        return length;
    }
};
static_assert(sizeof(ChannelRow) == 108);

/// A row of an article list, as it stands in the row buffer.
struct ArticleRow {
    char16_t title[255];
    char16_t publicationDate[40];
    quint16 read; // lowest bit

    QString titleText() const {
        return QString::fromUtf16(title, ChannelRow::textLength(title, 255));
    }
    QString publicationDateText() const {
        return QString::fromUtf16(publicationDate, ChannelRow::textLength(publicationDate, 40));
    }
    bool isRead() const { return (read & 1) != 0; }
};
static_assert(sizeof(ArticleRow) == 592);

} // namespace tidebrook
