#include "ui/kit/label_editor.h"

#include "platform/text.h"

#include <algorithm>

namespace tidebrook {

LabelEditor::LabelEditor(int limit, QWidget *parent) : QLineEdit(parent) {
    if (limit > 0)
        setMaxLength(limit);
    setAutoFillBackground(true);
    connect(this, &QLineEdit::textEdited, this, &LabelEditor::clean);
}

void LabelEditor::clean(const QString &text) {
    QString cleaned = withoutControls(text);
    if (!cleaned.isEmpty() && cleaned.back().isHighSurrogate())
        cleaned.chop(1);
    if (cleaned == text)
        return;
    const int cursor = cursorPosition();
    setText(cleaned);
    setCursorPosition(std::min(cursor, static_cast<int>(cleaned.size())));
    setModified(true);
}

} // namespace tidebrook
