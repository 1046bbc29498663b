#pragma once

#include "share/add_mode.h"
#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"
#include "store/records.h"

#include <QList>
#include <QString>

class QAbstractButton;

namespace tidebrook {

class ListView;

/// The wizard's second page: the channels to add of a list. It ends with the last command.
class ChannelChoicePage : public FormProcedure {
public:
    ChannelChoicePage(const ChannelAdding &adding, AddMode mode, const QString &source);

    void command(int id) override;
    void sized() override;

private:
    void initialise() override;
    void openList();
    void showChannels(const QList<ChannelRecord> &channels);
    void checkAll(bool isChecked);
    bool areAllChecked() const;
    QList<ChannelRecord> checkedChannels();
    void goOn();

    const ChannelAdding adding_;
    const AddMode mode_;
    const QString source_;
    ListView *list_ = nullptr;
    QAbstractButton *all_ = nullptr;
    QList<ChannelRecord> channels_; // one for each row
};

} // namespace tidebrook
