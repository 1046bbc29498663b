#include "kit/label_editor.h"

#include "platform/base/text.h"

namespace tidebrook {

LabelEditor::LabelEditor(int limit, QWidget *parent) : QLineEdit(parent) {
    if (limit > 0)
        setMaxLength(limit);
    setAutoFillBackground(true);
    connect(this, &QLineEdit::textEdited, this, &LabelEditor::clean);
}

void LabelEditor::clean(const QString &text) {
    // What was put in ends at the cursor. It was cut to the room that was left for it.
    QString before = withoutControls(text.left(cursorPosition()));
    if (!before.isEmpty() && before.back().isHighSurrogate())
        before.chop(1);
    const QString cleaned = before + withoutControls(text.mid(cursorPosition()));
    if (cleaned == text)
        return;
    setText(cleaned);
    setCursorPosition(static_cast<int>(before.size()));
    setModified(true);
}

} // namespace tidebrook
