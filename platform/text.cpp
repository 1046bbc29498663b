#include "platform/text.h"

namespace tidebrook {

QStringView cutText(QStringView text, qsizetype capacity) {
    if (text.size() <= capacity)
        return text;
    if (capacity > 0 && text[capacity - 1].isHighSurrogate() && text[capacity].isLowSurrogate())
        --capacity;
    return text.first(capacity);
}

QStringView TrimTrailingBlanks(QStringView text) {
    while (text.size() > 1 && (text.back() == u' ' || text.back() == u'\0'))
        text.chop(1);
    return text;
}

QString withoutControls(QString text) {
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control)
            c = u' ';
    }
    return text;
}

} // namespace tidebrook
