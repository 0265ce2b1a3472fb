// The desktop as a test has it: message boxes are scripted question by question, the clock can be held,
// and what happens inside a yield is written down beforehand.
#pragma once

#include <functional>
#include <string>

#include "util/desktop.h"

namespace zandrel {

/// Opens the scripted desktop: no question expected, real clock, yields do nothing.
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

}  // namespace zandrel
