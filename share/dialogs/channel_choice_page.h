#pragma once

#include "share/add_mode.h"
#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"
#include "share/opml_reader.h"

#include <QList>
#include <QString>

#include <memory>

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
    void showEntries(std::shared_ptr<OpmlReader> reader);
    void checkAll(bool isChecked);
    bool areAllChecked() const;
    QList<ChannelRecord> checkedChannels();
    void goOn();

    const ChannelAdding adding_;
    const AddMode mode_;
    const QString source_;
    ListView *list_ = nullptr;
    QAbstractButton *all_ = nullptr;
    std::shared_ptr<OpmlReader> reader_; // while its list is shown
    QList<int> rowMap_;                  // the entry of each row
};

} // namespace tidebrook
