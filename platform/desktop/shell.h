#pragma once

#include <QString>

namespace tidebrook {

/// Whether the desktop may be asked to open this link: a whole address of http, https, ftp or
/// mailto, or one that begins with "//" or "www." instead of "http://". What a feed sends must not
/// reach any other program.
bool isOpenable(const QString &link);

/// Has the desktop open a link in the program that the user has chosen for it. False when it may
/// not be opened, or when no program opens it. The link is passed as one argument that never looks
/// like an option, without a shell; of a message only its recipients and texts. May take some
/// seconds.
bool openLink(const QString &link);

/// Has the desktop open its composer with a message without a recipient. The text keeps its line
/// breaks, the subject does not. False when there is no composer. May take some seconds.
bool composeMail(const QString &subject, const QString &body);
bool composeSms(const QString &text);

} // namespace tidebrook
