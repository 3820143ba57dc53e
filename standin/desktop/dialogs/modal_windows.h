#pragma once

class QWidget;

/// The program's modal windows, taken together: dialogs, message boxes, file boxes. The program can end while any of them
/// stand over one another, deep inside a command that waits for an answer.
namespace lvx::desktop {

/// Gives up every modal window, as by Escape, and from here on any that wants to open: a command that waits for the user
/// unwinds by the answers of somebody who cancels everything. Windows' thread only, from any event. The windows are gone
/// once the commands that opened them have run on.
void giveUpModalWindows();
/// Modal windows open again.
void allowModalWindows();
/// True between the two.
[[nodiscard]] bool areModalWindowsRefused();

/// What a modal window has to stand over: the one that is open already, else `wanted`, else nothing.
[[nodiscard]] QWidget* modalParent(QWidget* wanted);
/// Gives `owner` the keyboard back once a modal window over it has closed. Window managers do it too, but lose their way
/// when two close at once.
void returnToOwner(QWidget* owner);

}  // namespace lvx::desktop
