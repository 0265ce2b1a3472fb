// The one door to the desktop: clock, yield, message boxes, file choice, clipboard and the busy pointer.
// The program opens it at start (shell/windows); a test scripts it. Until then the clock is real, a
// question is answered with its last button and everything else does nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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

/// What the one-number dialog asks: its caption, the picture of its number ("0.00"), the number as it opens.
struct NumberEntry {
    std::string Caption, Format, Text;
};

/// What a file dialog asks: to open a file, or where to save one. Filters as "Data Files(*.dat)", the one
/// that shows first as its place in the list.
struct FileChoice {
    bool Save = false;
    std::vector<std::string> Filters = {};
    int FilterIndex = 0;  // from 0
    std::string Folder = {};
    std::string Name = {};
    std::string Suffix = {};  // of a name that has none
};

/// The timers of the program.
enum class Timer { Update, Count };

struct DesktopDoor {
    std::function<std::uint32_t()> TickCount;                            // milliseconds, monotonic
    std::function<void()> Yield;                                         // a turn of the event loop
    std::function<Answer(const std::string& text, Box box)> MessageBox;  // waits for the answer
    std::function<void(bool busy)> BusyPointer;
    std::function<std::string(const FileChoice& choice)> ChooseFile;  // the path; empty = cancelled
    std::function<void(const std::string& text)> SetClipboard;
    std::function<std::string()> GetClipboard;
    std::function<void(const NumberEntry& entry, std::function<void(const std::string& text)> done)>
        EnterNumber;
    std::function<void(Timer timer, int milliseconds, std::function<void()> fire)> StartTimer;
    std::function<void(Timer timer)> StopTimer;
    std::function<std::string()> TimeOfDay;  // local, "14:03:22"
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

/// Opens the one-number dialog and goes on; `done` gets the number after OK, in the entry's picture. After
/// Cancel it does not run.
void EnterNumber(const NumberEntry& entry, std::function<void(const std::string& text)> done);

/// The number of `text` in the picture `format`, as the one-number dialog shows it; no number counts as 0.
std::string NumberEntryText(const std::string& text, const std::string& format);

/// Runs `fire` once after so many milliseconds, counted anew if it runs already.
void StartTimer(Timer timer, int milliseconds, std::function<void()> fire);
void StopTimer(Timer timer);

}  // namespace zandrel
