#include "kit/accessible_page.h"

#include "kit/page/text_page.h"

#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>

namespace tidebrook {

AccessiblePage::AccessiblePage(TextPage &page) : QAccessibleWidget(&page, QAccessible::Document) {}

TextPage &AccessiblePage::page() const { return *qobject_cast<TextPage *>(object()); }

QString AccessiblePage::text(QAccessible::Text kind) const {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? page().document()->firstBlock().text()
                                                      : own;
}

QAccessible::State AccessiblePage::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.readOnly = true;
    state.multiLine = true;
    state.selectableText = true;
    return state;
}

void *AccessiblePage::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface *>(this);
    return QAccessibleWidget::interface_cast(type);
}

QTextCursor AccessiblePage::cursor(int start, int end) const {
    QTextCursor cursor(page().document());
    cursor.setPosition(std::clamp(start, 0, characterCount()));
    cursor.setPosition(std::clamp(end, 0, characterCount()), QTextCursor::KeepAnchor);
    return cursor;
}

void AccessiblePage::selection(int, int *start, int *end) const {
    *start = page().textCursor().selectionStart();
    *end = page().textCursor().selectionEnd();
}

int AccessiblePage::selectionCount() const { return page().textCursor().hasSelection() ? 1 : 0; }

void AccessiblePage::removeSelection(int) { setCursorPosition(cursorPosition()); }

void AccessiblePage::setSelection(int, int start, int end) {
    page().setTextCursor(cursor(start, end));
}

int AccessiblePage::cursorPosition() const { return page().textCursor().position(); }

QString AccessiblePage::text(int start, int end) const {
    return cursor(start, end)
        .selectedText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

// Qt counts an end of paragraph behind the last one.
int AccessiblePage::characterCount() const { return page().document()->characterCount() - 1; }

QRect AccessiblePage::characterRect(int offset) const {
    const QRect from = page().cursorRect(cursor(offset, offset));
    const QRect to = page().cursorRect(cursor(offset + 1, offset + 1));
    QRect place = from;
    if (to.top() == from.top())
        place.setRight(std::max(from.left(), to.left() - 1));
    return {page().viewport()->mapToGlobal(place.topLeft()), place.size()};
}

int AccessiblePage::offsetAtPoint(const QPoint &point) const {
    return page().cursorForPosition(page().viewport()->mapFromGlobal(point)).position();
}

void AccessiblePage::scrollToSubstring(int start, int) {
    QScrollBar &bar = *page().verticalScrollBar();
    bar.setValue(bar.value() + page().cursorRect(cursor(start, start)).top());
}

QString AccessiblePage::attributes(int offset, int *start, int *end) const {
    const QTextBlock block = page().document()->findBlock(offset);
    *start = block.position();
    *end = std::min(block.position() + block.length(), characterCount());
    return {};
}

} // namespace tidebrook
