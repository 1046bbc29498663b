#include "ctl/wrapping.h"

#include "ctl/columns.h"
#include "ctl/output.h"

#include <QTextBoundaryFinder>

namespace tidebrook {

namespace {

QStringView withoutEndBlanks(QStringView text) {
    while (text.endsWith(u' '))
        text.chop(1);
    return text;
}

} // namespace

QString wrapped(const ReadableLine &line, int columns) {
    const QString text = line.isWrappable ? printable(line.text) : line.text;
    if (columns == 0 || !line.isWrappable)
        return line.lead + text;
    QTextBoundaryFinder ends(QTextBoundaryFinder::Line, text);
    QString lines = line.lead;
    int left = columns - columnsOf(line.lead);
    const int leftOnNext = columns - columnsOf(line.hanging);
    bool isBegun = false;
    for (qsizetype begin = 0, end = 0; begin < text.size(); begin = end) {
        end = ends.toNextBoundary();
        if (end < 0)
            end = text.size();
        const QStringView part = QStringView(text).sliced(begin, end - begin);
        if (isBegun && columnsOf(withoutEndBlanks(part)) > left) {
            lines.truncate(withoutEndBlanks(lines).size());
            lines += u'\n' + line.hanging;
            left = leftOnNext;
        }
        lines += part;
        left -= columnsOf(part);
        isBegun = true;
    }
    return withoutEndBlanks(lines).toString();
}

} // namespace tidebrook
