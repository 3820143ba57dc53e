#pragma once

class QMainWindow;

namespace lvx::desktop {

/// Shows all keys of a window's menus in a table, made from the menus themselves: what an action's key is, stands there.
/// The table sorts and copies. It closes with its window.
void showShortcuts(QMainWindow& window);

}  // namespace lvx::desktop
