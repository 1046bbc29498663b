#include "app/list_font.h"

#include "app/data_jobs.h"
#include "kit/dialog.h"
#include "kit/list_view.h"
#include "kit/screen_menu.h"
#include "kit/screen_stack.h"
#include "res/commands.h"

#include <algorithm>
#include <utility>

namespace tidebrook {

namespace {

constexpr QStringView fontSizeValue = u"FontSize";

int indexOfSize(int points) {
    const auto *found = std::find(fontSizes.begin(), fontSizes.end(), points);
    return found == fontSizes.end() ? 0 : static_cast<int>(found - fontSizes.begin());
}

void applyListFont(AppState &state) {
    state.listFont = state.stack.font();
    state.listFont.setPointSize(state.fontSize);
    for (ListView *list : state.lists) {
        if (list != nullptr)
            list->setFont(state.listFont);
    }
}

} // namespace

void setFontKeys(Dialog &dialog) {
    for (const QKeyCombination bigger :
         {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::SHIFT | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal})
        dialog.setKey(bigger, CommandFontBigger);
    dialog.setKey(Qt::CTRL | Qt::Key_Minus, CommandFontSmaller);
    dialog.setKey(Qt::CTRL | Qt::Key_0, CommandFontSmall);
}

bool chooseFontSize(AppState &state, int command) {
    const int present = CommandFontSmall + fontSizeIndex(state);
    if (command == CommandFontBigger)
        command = std::min<int>(present + 1, CommandFontBig);
    else if (command == CommandFontSmaller)
        command = std::max<int>(present - 1, CommandFontSmall);
    if (command < CommandFontSmall || command > CommandFontBig)
        return false;
    state.fontSize = fontSizes[static_cast<std::size_t>(command - CommandFontSmall)];
    state.isFontSizeKnown = true;
    applyListFont(state);
    storeSetting(state, fontSizeValue, static_cast<quint32>(state.fontSize));
    return true;
}

void readFontSize(AppState &state, QObject *receiver) {
    state.settings.ask(
        receiver,
        [&settings = state.device.settings] {
            quint32 size = 0;
            settings.RegReadDword(programKey, fontSizeValue, size);
            return static_cast<int>(size);
        },
        [&state](int size) {
            if (std::exchange(state.isFontSizeKnown, true))
                return; // the user was faster
            state.fontSize = fontSizes[static_cast<std::size_t>(indexOfSize(size))];
            applyListFont(state);
        });
}

int fontSizeIndex(const ListFont &font) { return indexOfSize(font.fontSize); }

void checkFontSize(const ListFont &font, ScreenMenu &menu) {
    menu.radioCheck(CommandFontSmall, CommandFontBig, CommandFontSmall + fontSizeIndex(font));
}

} // namespace tidebrook
