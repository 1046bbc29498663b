#pragma once

#include <QString>

#include <span>

namespace tidebrook {

/// An entry of a menu: a command, a menu of its own, or (without a text) a line between entries.
struct MenuEntry {
    int command = 0;
    const char16_t *text = nullptr;
    std::span<const MenuEntry> entries;

    bool isSeparator() const { return text == nullptr; }
};

/// The entries of a menu resource (40003 to 40006); none when there is no such menu.
std::span<const MenuEntry> menuEntries(int id);

/// A soft key: it sends its command, or opens its menu. One without a text is blank.
struct SoftKey {
    int command = 0;
    int textId = 0; // in the string table
    int menuId = 0;
};

/// The two soft keys at the bottom of a screen.
struct MenuBarResource {
    int id = 0;
    SoftKey left;
    SoftKey right;
};

/// The menu bar of an id; nullptr when there is none.
const MenuBarResource *menuBarResource(int id);

} // namespace tidebrook
