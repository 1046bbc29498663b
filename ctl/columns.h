#pragma once

#include <QString>

namespace tidebrook {

/// How many columns the terminal has that is open as `descriptor`; 80 where it does not say so.
int terminalColumns(int descriptor);

/// How many columns a text takes there. Characters of East Asia take two.
int columnsOf(QStringView text);

/// A text without what goes beyond `columns`.
QString cutToColumns(QString text, int columns);

} // namespace tidebrook
