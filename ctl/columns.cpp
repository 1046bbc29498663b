#include "ctl/columns.h"

#include "platform/base/text.h"

#include <QList>

#include <algorithm>
#include <clocale>
#include <cwchar>

#include <sys/ioctl.h>

namespace tidebrook {

int terminalColumns(int descriptor) {
    constexpr int usualColumns = 80;
    winsize size{};
    const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : usualColumns;
}

int columnsOf(QStringView text) {
    static const locale_t characters = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t before = uselocale(characters);
    int columns = 0;
    for (const uint character : text.toUcs4())
        columns += std::max(wcwidth(static_cast<wchar_t>(character)), 0);
    uselocale(before);
    return columns;
}

QString cutToColumns(QString text, int columns) {
    while (columnsOf(text) > columns && !text.isEmpty())
        text = cutText(text, text.size() - 1).toString();
    return text;
}

} // namespace tidebrook
