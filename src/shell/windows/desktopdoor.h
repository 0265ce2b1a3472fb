// Opens the door to the desktop: message boxes, file choice, clipboard, busy pointer and the turns of the
// event loop.
#pragma once

namespace zandrel {

class frmMain;

/// From now on `Desktop` leads to the screen, with boxes over `main`. The door outlives the window.
void OpenDesktop(frmMain& main);

}  // namespace zandrel
