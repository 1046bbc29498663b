#pragma once

#include "res/ids.h"

#include <span>

namespace tidebrook {

/// An entry of a menu: a command, a menu of its own, or (without a text) a separator.
struct MenuEntry {
    int command = 0;
    const char16_t *text = nullptr;
    std::span<const MenuEntry> entries;
};

/// A soft key sends its command or, on the right, opens its menu. One without a text is blank.
struct SoftKey {
    int command = 0;
    int textId = 0; ///< in the string table
    std::span<const MenuEntry> menu;
};

/// The two soft keys at the bottom of a screen.
struct MenuBarResource {
    MenuBarId id;
    SoftKey left;
    SoftKey right;
};

const MenuBarResource &menuBarResource(MenuBarId id);

} // namespace tidebrook
