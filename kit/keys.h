#pragma once

#include <Qt>

namespace tidebrook {

constexpr bool isEnter(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }
constexpr bool isBack(int key) { return key == Qt::Key_Escape || key == Qt::Key_Back; }
constexpr bool isHelp(int key) { return key == Qt::Key_F1 || key == Qt::Key_Help; }
constexpr bool isMenu(int key) { return key == Qt::Key_F10 || key == Qt::Key_Menu; }

} // namespace tidebrook
