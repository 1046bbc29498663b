#pragma once

#include <QAccessibleWidget>
#include <QTextCursor>

namespace tidebrook {

class TextPage;

/// A page as screen readers see it: a document to read, named by its first line.
class AccessiblePage : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit AccessiblePage(TextPage &page);

    using QAccessibleWidget::text;
    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    // Offsets are positions in the page's text.
    void selection(int index, int *start, int *end) const override;
    int selectionCount() const override;
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    int cursorPosition() const override;
    void setCursorPosition(int position) override { setSelection(0, position, position); }
    QString text(int start, int end) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int *start, int *end) const override;

private:
    TextPage &page() const;
    QTextCursor cursor(int start, int end) const;
};

} // namespace tidebrook
