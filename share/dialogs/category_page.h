#pragma once

#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"

#include <QList>

class QComboBox;

namespace tidebrook {

/// The wizard's last page: the category of the new channels. It ends with the last command.
class CategoryPage : public FormProcedure {
public:
    /// A single channel without a name gets the title of its feed.
    CategoryPage(const ChannelAdding &adding, const QList<ChannelRecord> &channels);

    void command(int id) override;
    void close() override;

private:
    void initialise() override;
    void showCategories(const QStringList &names);
    bool hasNoName() const;
    void probe();
    void finish();
    void add();

    const ChannelAdding adding_;
    QList<ChannelRecord> channels_;
    bool isProbing_ = false;
    QComboBox *categories_ = nullptr;
};

} // namespace tidebrook
