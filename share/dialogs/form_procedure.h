#pragma once

#include "app/app_state.h"
#include "kit/dialog_procedure.h"
#include "kit/waiting.h"
#include "res/ids.h"

#include <memory>
#include <optional>

namespace tidebrook {

class StopSignal;

/// What the dialogs about channels have in common: a title over a line, two soft keys, of which one
/// goes on and the other leads back, and blockingTasks, which end when the dialog is left.
class FormProcedure : public DialogProcedure {
public:
    void close() override { leave(0); }
    void helpRequested() override;
    std::optional<int> backCommand() const override { return backCommand_; }
    /// Enter goes on.
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;

protected:
    FormProcedure(AppState &state, int backCommand, int nextCommand)
        : state_(state), backCommand_(backCommand), nextCommand_(nextCommand) {}
    ~FormProcedure() override;

    AppState &state() const { return state_; }
    Dialog &dialog() const { return *dialog_; }

    bool prepare(Dialog &dialog, MenuBarId menuBarId);

    /// Waits for a task, whose result `take` gets, unless the dialog is left before that. False,
    /// and nothing is begun, when it waits already, or there is no thread, which is told.
    template <class Work, class Take> bool await(Work work, Take take) {
        if (waiting_)
            return false;
        waiting_.emplace(*dialog_, nextCommand_);
        task_ = state_.blockingTasks.run(dialog_, std::move(work),
                                         [this, take = std::move(take)](auto result) {
                                             waiting_.reset();
                                             take(std::move(result));
                                         });
        if (task_ == nullptr)
            tellNoThread();
        return task_ != nullptr;
    }
    /// The same for what comes another way: from here until `endWaiting`.
    void beginWaiting() { waiting_.emplace(*dialog_, nextCommand_); }
    void endWaiting() { waiting_.reset(); }

    /// Ends the dialog, and calls off what it waits for.
    void leave(int result);

private:
    void tellNoThread();

    AppState &state_;
    const int backCommand_;
    const int nextCommand_;
    Dialog *dialog_ = nullptr;
    std::shared_ptr<StopSignal> task_;
    std::optional<Waiting> waiting_;
};

} // namespace tidebrook
