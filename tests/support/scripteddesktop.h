// The desktop as a test has it: message boxes are scripted question by question, the clock and the time of
// day can be held, a timer fires when the test says so, the clipboard and the one-number dialog are the
// test's, and what happens inside a yield is written down beforehand.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "util/desktop.h"

namespace zandrel {

/// Opens the scripted desktop: no question expected, real clock, yields do nothing, no timer runs, the
/// clipboard is empty, the one-number dialog has no answer and the time of day is 00:00:00.
void OpenScriptedDesktop();

/// The next message box has to be `text`; it is answered with `answer`. An unasked or different question
/// fails the test.
void ExpectMessage(const std::string& text, Answer answer = Answer::Ok);

/// The same, and the box's kind has to be `box`.
void ExpectBox(const std::string& text, Box box, Answer answer = Answer::Ok);

/// True if every expected message was shown.
bool NoMessageLeft();

/// Runs at each yield from now on.
void OnYield(std::function<void()> action);

/// How often control was yielded since the desktop was opened.
int YieldCount();

/// Holds the clock at `milliseconds` until it is set again.
void HoldClock(std::uint32_t milliseconds);

/// Holds the time of day at `text`, as "14:03:22".
void HoldTimeOfDay(const std::string& text);

/// What the clipboard holds; the program reads and writes it.
std::string& Clipboard();

/// The next one-number dialog is closed with OK and `text` in its box, or with Cancel if there is none. A
/// dialog that nobody expects fails the test.
void AnswerNumber(std::optional<std::string> text);

/// What the last one-number dialog asked; empty before the first.
const NumberEntry& LastNumberEntry();

/// True if every expected one-number dialog was opened.
bool NoNumberLeft();

/// Runs out the timer, as the time would. A timer that doesn't run fails the test.
void FireTimer(Timer timer);

/// True from a start until the timer has fired or was stopped.
bool TimerRuns(Timer timer);

/// How often the timer was started since the desktop was opened.
int TimerStarts(Timer timer);

/// The milliseconds of the timer's last start; 0 before the first.
int TimerInterval(Timer timer);

/// How often the busy pointer was set and taken back since the desktop was opened, as "1", "0" in order.
const std::string& BusyPointers();

}  // namespace zandrel
