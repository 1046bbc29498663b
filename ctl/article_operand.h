#pragma once

#include "ctl/device.h"

#include <QJsonObject>
#include <QString>

#include <optional>

namespace tidebrook {

/// The article of a channel that an operand names, without its description: by its title, as it is
/// stored or as the list prints it, else by its guid, else by its number in the list by date, else
/// by a beginning of its title that no other one has, in any case. Nothing, and the failure is
/// reported, when there is no such channel or article, or when there are several.
std::optional<ListedArticle> wantedArticle(CommandDevice &device, const QString &channel,
                                           const QString &operand);

/// An article as an object of JSON, without its text.
QJsonObject articleObject(const ListedArticle &article);

/// The letter of the lists: "r" for a read article, "u" for an unread one.
QString readLetter(const ListedArticle &article);

} // namespace tidebrook
