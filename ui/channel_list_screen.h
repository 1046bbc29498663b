#pragma once

#include "app/data_jobs.h"
#include "ui/stepped_list_screen.h"

namespace tidebrook {

/// The second screen: the channels of the category that was opened, each with its unread and total
/// counts. It ends with 1, on which the first screen refreshes.
class ChannelListScreen : public SteppedListScreen {
public:
    explicit ChannelListScreen(AppState &state);

    void command(int id) override;
    void close() override { leave(); }

private:
    void initialise() override;
    Collector collector() const override;
    void open(int row) override;
    void openTapped() override;
    int emptyString() const override;
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
