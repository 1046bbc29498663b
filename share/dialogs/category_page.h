#pragma once

#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"

#include <QList>
#include <QString>

#include <optional>

class QComboBox;

namespace tidebrook {

/// The wizard's last page: the category of what is added. It ends with the command that was given
/// last.
class CategoryPage : public FormProcedure {
public:
    /// Adds a feed, under the title that it gives itself ...
    CategoryPage(const ChannelAdding &adding, const QString &url);
    /// ... or channels whose names are known.
    CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

    bool initialise(Dialog &dialog) override;
    void command(int id) override;
    void close() override;

private:
    CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels, bool isProbed);

    void showCategories(const QStringList &names);
    void probe();
    void finish();
    void add();

    const ChannelAdding adding_;
    QList<ChannelRecord> channels_;
    const bool isProbed_; // the one channel's name is still to be found out
    bool isProbing_ = false;
    QComboBox *categories_ = nullptr;
};

} // namespace tidebrook
