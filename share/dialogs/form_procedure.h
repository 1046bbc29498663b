#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "kit/waiting.h"
#include "res/ids.h"

#include <memory>
#include <optional>

namespace tidebrook {

/// The common part of the dialogs about channels: the title over a line, two soft keys, of which
/// one goes on and the other leads back, and a task that the dialog can wait for.
class FormProcedure : public DialogProcedure {
public:
    void close() override { leave(0); }

protected:
    struct Keys {
        MenuBarId menuBarId;
        int backCommand;
        int nextCommand; ///< disabled while the dialog waits
    };
    FormProcedure(AppState &state, const Keys &keys) : state_(state), keys_(keys) {}

    void initialise() override;

    AppState &state() const { return state_; }

    /// Waits for a blocking task, whose result `take` gets unless the dialog is left before. False,
    /// and nothing is started, when the dialog waits already, or when there is no thread, which
    /// shows an error.
    template <class Work, class Take> bool await(Work work, Take take) {
        if (waiting_)
            return false;
        beginWaiting();
        task_ = state_.blockingTasks.run(&dialog(), std::move(work),
                                         [this, take = std::move(take)](auto result) {
                                             endWaiting();
                                             take(std::move(result));
                                         });
        if (task_ == nullptr)
            reportNoThread();
        return task_ != nullptr;
    }
    void beginWaiting() { waiting_.emplace(dialog(), keys_.nextCommand); }
    void endWaiting() { waiting_.reset(); }

    /// Ends the dialog, and stops the task that it waits for.
    void leave(int result);

private:
    void reportNoThread();

    AppState &state_;
    const Keys keys_;
    std::shared_ptr<StopSignal> task_;
    std::optional<Waiting> waiting_;
};

} // namespace tidebrook
