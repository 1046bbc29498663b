#pragma once

#include "share/add_mode.h"
#include "share/dialogs/channel_adding.h"
#include "share/dialogs/form_procedure.h"

#include <QString>

#include <optional>

class QAbstractButton;
class QLineEdit;

namespace tidebrook {

/// The wizard's first page: an address is typed in, or a file chosen. What an address leads to is
/// looked at to know which page is next. It stays open while the user goes back to it, and ends
/// with the command that was given last.
class HowToAddPage : public FormProcedure {
public:
    explicit HowToAddPage(const ChannelAdding &adding);

    bool initialise(Dialog &dialog) override;
    void command(int id) override;

private:
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
