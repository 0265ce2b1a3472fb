// The one door to the desktop: clock, yield, message boxes, file choice, clipboard and the busy pointer.
// The program opens it at start (shell/windows); a test scripts it. Until then the clock is real, a
// question is answered with its last button and everything else does nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace zandrel {

/// Buttons and icon of a message box.
enum class Box : int {
    Plain = 0,             // OK, no icon
    Critical = 16,         // OK
    Exclamation = 48,      // OK
    SaveQuestion = 51,     // Yes, No, Cancel, exclamation
    YesNo = 52,            // Yes, No, exclamation
    Information = 64,      // OK
    YesNoInformation = 68  // Yes, No, information
};

/// The button that closed a message box.
enum class Answer : int { Ok = 1, Cancel = 2, Yes = 6, No = 7 };

struct DesktopDoor {
    std::function<std::uint32_t()> TickCount;                            // milliseconds, monotonic
    std::function<void()> Yield;                                         // a turn of the event loop
    std::function<Answer(const std::string& text, Box box)> MessageBox;  // waits for the answer
    std::function<void(bool busy)> BusyPointer;
    std::function<std::string(const std::string& proposed)> ChooseFileToSave;  // empty = cancelled
    std::function<void(const std::string& text)> SetClipboard;
};

/// The open door. Written at start and by tests, nobody else.
extern DesktopDoor Desktop;

/// A door that has nobody behind it: real clock, no yield, boxes answered with their last button.
DesktopDoor ClosedDesktop();

/// Milliseconds since some moment before the program's start; wraps after 49 days.
std::uint32_t TickCount();

/// Gives control to the event loop once: the user may click, edit, cancel or close, so that the caller
/// looks again before it goes on. A packet exchange never calls it.
void Yield();

/// Shows `text` and waits for the answer.
Answer MessageBox(const std::string& text, Box box);

void BusyPointer(bool busy);

}  // namespace zandrel
