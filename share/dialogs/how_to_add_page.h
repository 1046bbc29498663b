#pragma once

#include "share/add_mode.h"
#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"

#include <QString>

#include <optional>

class QAbstractButton;
class QLineEdit;

namespace tidebrook {

/// The wizard's first page: the user types an address or chooses a file. The document at the
/// address decides which page is next. It ends with the last command.
class HowToAddPage : public FormProcedure {
public:
    explicit HowToAddPage(const ChannelAdding &adding);

    void command(int id) override;

private:
    void initialise() override;
    void chooseWay();
    void dropSecondScheme();
    void goOnWithUrl();
    void goOnWithFile();
    void handleType();
    void openNext(AddMode mode, const QString &source);

    const ChannelAdding adding_;
    QAbstractButton *fromUrl_ = nullptr;
    QLineEdit *edit_ = nullptr;
    QString url_;
    std::optional<QString> type_; // of what the address leads to
};

} // namespace tidebrook
