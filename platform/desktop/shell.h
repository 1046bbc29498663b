#pragma once

#include <QString>

namespace tidebrook {

/// Whether the desktop is asked to open this link: an address of the web, of a mailbox or of a file
/// server that is written in full, or one that begins with "//" or "www." instead of "http://".
/// What a feed sends must not reach any other program.
bool isOpenable(const QString &link);

/// Has the desktop open a link in the program that the user has chosen for it. False when it is not
/// one to be opened, or when no program opens it. The link is handed over as one argument
/// that never looks like an option, and through no command line; of a message only whom it goes to
/// and its texts, percent-encoded. May wait for some seconds.
bool openLink(const QString &link);

/// Has the desktop open its composer with a message without a recipient. The text's line breaks are
/// kept, the subject's are not. False when there is no composer. May wait for some seconds.
bool composeMail(const QString &subject, const QString &body);
bool composeSms(const QString &text);

} // namespace tidebrook
