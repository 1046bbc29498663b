#pragma once

#include <QByteArray>

namespace tidebrook {

/// A well-formed RSS 2.0 feed in UTF-8 of about 1,600 bytes an item, the same for the same
/// arguments on every machine and in every run.
///
/// The items are those numbered `first` to `first + items - 1`, the highest, which is the newest,
/// first. An item depends on its number and the seed alone: a feed with a higher `first` is what a
/// publisher's feed would have become later. Every item has a title, link and guid of its own, a
/// date, a category, and a description of some 1,200 characters of HTML, in CDATA where the number
/// is even and with its markup as entities where it is odd. Some titles contain apostrophes, some
/// ampersands, some letters beyond ASCII.
QByteArray generatedFeed(int items, quint32 seed, int first = 0);

} // namespace tidebrook
