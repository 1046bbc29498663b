#include "app/messages.h"

#include "kit/list_view.h"
#include "kit/message_box.h"
#include "kit/screen_stack.h"
#include "res/strings.h"
#include "store/error_codes.h"

#include <functional>

namespace tidebrook {

namespace {

void showErrorText(ScreenStack &stack, const QString &text, const QString &subject) {
    const QString shown = text.isEmpty() ? resourceString(unidentifiedProblemString) : text;
    MessageBox::ask(stack, MessageBox::Kind::Error, resourceString(errorString), shown, subject);
}

// `prepare` is called just before the box is shown.
void showStoredError(
    AppState &state, const QString &subject, const std::function<void()> &prepare = [] {}) {
    SettingsStore &settings = state.device.settings;
    state.settings.ask(
        &state.stack, [&settings] { return settings.dword(programKey, u"ERRORNO"); },
        [&stack = state.stack, subject, prepare](quint32 code) {
            prepare();
            showErrorText(stack, errorMessage(code), subject);
        });
}

// Where the user is elsewhere, on a box or at a label, the selection stays.
void showRow(ListView *list, const QString &text) {
    if (list == nullptr || list->window()->focusWidget() != list)
        return;
    if (const int row = list->findRow(text); row >= 0)
        list->selectRow(row);
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

void ShowMessage(AppState &state, int captionId, int textId, const QString &subject) {
    MessageBox::ask(state.stack, MessageBox::Kind::Warning, resourceString(captionId),
                    resourceString(textId), subject);
}

void ShowError(AppState &state, int textId, const QString &subject) {
    if (textId != 0)
        showErrorText(state.stack, resourceString(textId), subject);
    else
        showStoredError(state, subject);
}

void ShowUpdateError(AppState &state, const QString &category, const QString &channel) {
    showStoredError(state, channel.isNull() ? category : channel, [&state, category, channel] {
        showRow(state.lists[CategoryScreen], category);
        if (state.categories.value(state.currentCategory) == category)
            showRow(state.lists[ChannelScreen], channel);
    });
}

void showChangeEnd(AppState &state, int messageId) {
    if (messageId == nameExistsString)
        ShowMessage(state, warningString, messageId);
    else if (messageId != 0)
        ShowError(state, messageId);
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

bool askUser(AppState &state, int captionId, int textId, const QString &subject) {
    return MessageBox::ask(state.stack, MessageBox::Kind::Question, resourceString(captionId),
                           resourceString(textId), subject);
}

} // namespace tidebrook
