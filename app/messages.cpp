#include "app/messages.h"

#include "kit/message_box.h"
#include "kit/screen_stack.h"
#include "res/strings.h"
#include "store/error_codes.h"

namespace tidebrook {

namespace {

void showErrorText(ScreenStack &stack, const QString &text) {
    const QString shown = text.isEmpty() ? resourceString(unidentifiedProblemString) : text;
    MessageBox::ask(stack, MessageBox::Kind::Error, resourceString(errorString), shown);
}

quint32 codeOf(int textId) {
    switch (textId) {
    case databaseProblemString:
        return DatabaseFailed;
    case fileProblemString:
        return FileNotWritten;
    case memoryProblemString:
        return NoMemory;
    case unidentifiedProblemString:
        return NothingKnown;
    default:
        return 0;
    }
}

} // namespace

void ShowMessage(AppState &state, int captionId, int textId) {
    MessageBox::ask(state.stack, MessageBox::Kind::Warning, resourceString(captionId),
                    resourceString(textId));
}

void ShowError(AppState &state, int textId) {
    if (textId != 0) {
        showErrorText(state.stack, resourceString(textId));
        return;
    }
    SettingsStore &settings = state.device.settings;
    ScreenStack &stack = state.stack;
    state.settings.ask(
        &stack, [&settings] { return settings.dword(programKey, u"ERRORNO"); },
        [&stack](quint32 code) { showErrorText(stack, errorMessage(code)); });
}

int recordProblem(Device &device, int textId) {
    if (const quint32 code = codeOf(textId); code != 0)
        SetLastErrorCode(device.registry, code);
    return textId;
}

void tellProblem(AppState &state, int textId) {
    state.settings.tell([&device = state.device, textId] { recordProblem(device, textId); });
    ShowError(state, textId);
}

bool askUser(AppState &state, int captionId, int textId) {
    return MessageBox::ask(state.stack, MessageBox::Kind::Question, resourceString(captionId),
                           resourceString(textId));
}

} // namespace tidebrook
