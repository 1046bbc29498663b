#pragma once

#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"

#include <QList>
#include <QString>

#include <optional>

class QComboBox;

namespace tidebrook {

/// The wizard's last page: the category of the new channels. It ends with the last command.
class CategoryPage : public FormProcedure {
public:
    /// Adds a feed, under its own title ...
    CategoryPage(const ChannelAdding &adding, const QString &url);
    /// ... or channels whose names are known.
    CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

    void command(int id) override;
    void close() override;

private:
    CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels, bool isProbed);

    void initialise() override;
    void showCategories(const QStringList &names);
    void probe();
    void finish();
    void add();

    const ChannelAdding adding_;
    QList<ChannelRecord> channels_;
    const bool isProbed_; // the name of the one channel is read from the feed
    bool isProbing_ = false;
    QComboBox *categories_ = nullptr;
};

} // namespace tidebrook
