#pragma once

#include "app/app_state.h"

namespace tidebrook {

// Each box can name its subject, the category or channel that it is about, below its text.

/// Shows a warning, both texts by their ids in the string table, until the user has read it.
void ShowMessage(AppState &state, int captionId, int textId, const QString &subject = {});

/// Shows an error until the user has read it. A `textId` of 0 stands for the message of the code
/// that the registry's "ERRORNO" holds, which stays there; the call then returns before the box is
/// shown, because reading it may wait.
void ShowError(AppState &state, int textId, const QString &subject = {});

/// Shows the error of the code that "ERRORNO" holds, as `ShowError` does, about the channel whose
/// update failed, or about the category where the channel is null. A list of screens that has the
/// focus selects the row of what failed.
void ShowUpdateError(AppState &state, const QString &category, const QString &channel);

/// Shows what a change ended with (`startChange`), unless it is done: a name that is taken as a
/// warning, anything else as an error.
void showChangeEnd(AppState &state, int messageId);

/// Records, as "ERRORNO", the code of the problem that a text of the string table describes, and
/// returns the text's id. For 0 and for other texts nothing is recorded. On any thread; it may
/// wait.
int recordProblem(Device &device, int textId);

/// Shows a problem, and records its code soon.
void tellProblem(AppState &state, int textId);

/// Asks a question. True for Yes.
bool askUser(AppState &state, int captionId, int textId, const QString &subject = {});

} // namespace tidebrook
