#pragma once

#include <string>

class QWidget;

/// Windows as the window manager sees them, those of other programs too.
namespace lvx::test {

/// Asks the window manager to close a window, as a click on its close mark does.
void closeByManager(QWidget* window);
/// The same for any window of the display.
void closeByManager(unsigned long window);
/// The window of the display whose title contains `title`; 0 where there is none.
[[nodiscard]] unsigned long findWindow(const std::string& title);
/// The same, waited for; 0 when it doesn't come in 20 seconds.
[[nodiscard]] unsigned long waitForForeignWindow(const std::string& title);

}  // namespace lvx::test
