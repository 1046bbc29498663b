#pragma once

#include <QLineEdit>

namespace tidebrook {

/// One line of text of at most so many UTF-16 units. Characters that have no place in a line,
/// such as tabs and line ends, become blanks when they are pasted, and a character of two units
/// that does not fit is left out whole.
class LabelEditor : public QLineEdit {
    Q_OBJECT

public:
    LabelEditor(int limit, QWidget *parent);

private:
    void clean(const QString &text);
};

} // namespace tidebrook
