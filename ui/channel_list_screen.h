#pragma once

#include "app/base/app_state.h"
#include "ui/kit/dialog_procedure.h"
#include "ui/kit/list_rows.h"

#include <QList>

namespace tidebrook {

class ListView;

/// The second screen: the channels of the category that was chosen in the first, each with its
/// unread and total counts. It ends with 1, which has the first screen refresh.
class ChannelListScreen : public DialogProcedure {
public:
    explicit ChannelListScreen(AppState &state) : state_(state) {}

    static constexpr int templateId = 134;

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void sized() override;
    void close() override;
    void helpRequested() override;
    std::optional<int> backCommand() const override;
    void prepareMenu(ScreenMenu &menu) override;

private:
    /// Null where there is none: a name may be empty.
    QString category() const { return state_.categories.value(state_.currentCategory); }
    void refresh();
    void showRows(std::optional<QList<ListRow>> rows);

    AppState &state_;
    Dialog *dialog_ = nullptr;
    ListView *list_ = nullptr;
};

} // namespace tidebrook
