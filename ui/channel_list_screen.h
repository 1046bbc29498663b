#pragma once

#include "app/data_jobs.h"
#include "ui/stepped_list_screen.h"

namespace tidebrook {

/// The second screen: the channels of the category that was chosen in the first, each with its
/// unread and total counts. It ends with 1, which has the first screen refresh.
class ChannelListScreen : public SteppedListScreen {
public:
    explicit ChannelListScreen(AppState &state);

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void close() override { leave(); }
    std::optional<int> commandOfKey(const QKeyEvent &event) const override;

private:
    Collector collector() const override;
    void open(int row) override;
    void openTapped() override;
    void filled() override;

    void updateChannel();
    void newChannel();
    void deleteChannel();
    void exportSelected();
    void showProperties();
    JobEnd changeEnd();
    void openArticles();
    void showCounts(const QString &channel, int unread, int total);
};

} // namespace tidebrook
