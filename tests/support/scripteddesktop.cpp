#include "support/scripteddesktop.h"

#include <gtest/gtest.h>

#include <array>
#include <deque>
#include <optional>
#include <utility>

namespace zandrel {
namespace {

struct ScriptedMessage {
    std::string Text;
    std::optional<Box> Kind;
    Answer Reply;
};

std::deque<ScriptedMessage> Script;
std::function<void()> YieldAction;
int Yields = 0;

struct ScriptedTimer {
    std::function<void()> Fire;  // empty while the timer doesn't run
    int Starts = 0;
    int Interval = 0;
};

std::array<ScriptedTimer, static_cast<std::size_t>(Timer::Count)> Timers;
std::string ClipboardText;
std::string Time;
std::deque<std::optional<std::string>> NumberAnswers;
NumberEntry LastEntry;
std::string Pointers;

ScriptedTimer& Of(Timer timer) {
    return Timers[static_cast<std::size_t>(timer)];
}

void AskNumber(const NumberEntry& entry, const std::function<void(const std::string& text)>& done) {
    LastEntry = entry;
    if (NumberAnswers.empty()) {
        ADD_FAILURE() << "Unexpected number dialog: " << entry.Caption;
        return;
    }
    const std::optional<std::string> answer = NumberAnswers.front();
    NumberAnswers.pop_front();
    if (answer) done(*answer);
}

Answer Ask(const std::string& text, Box box) {
    if (Script.empty()) {
        ADD_FAILURE() << "Unexpected message: " << text;
        return Answer::Cancel;
    }
    const ScriptedMessage expected = Script.front();
    Script.pop_front();
    EXPECT_EQ(text, expected.Text);
    if (expected.Kind) {
        EXPECT_EQ(box, *expected.Kind) << text;
    }
    return expected.Reply;
}

}  // namespace

void OpenScriptedDesktop() {
    Script.clear();
    YieldAction = [] {};
    Yields = 0;
    Timers.fill(ScriptedTimer());
    ClipboardText.clear();
    Time = "00:00:00";
    NumberAnswers.clear();
    LastEntry = NumberEntry();
    Pointers.clear();
    Desktop = ClosedDesktop();
    Desktop.MessageBox = Ask;
    Desktop.BusyPointer = [](bool busy) { Pointers += busy ? '1' : '0'; };
    Desktop.SetClipboard = [](const std::string& text) { ClipboardText = text; };
    Desktop.GetClipboard = [] { return ClipboardText; };
    Desktop.EnterNumber = AskNumber;
    Desktop.StartTimer = [](Timer timer, int milliseconds, std::function<void()> fire) {
        Of(timer).Fire = std::move(fire);
        Of(timer).Interval = milliseconds;
        ++Of(timer).Starts;
    };
    Desktop.StopTimer = [](Timer timer) { Of(timer).Fire = nullptr; };
    Desktop.TimeOfDay = [] { return Time; };
    Desktop.Yield = [] {
        ++Yields;
        YieldAction();
    };
}

void ExpectMessage(const std::string& text, Answer answer) {
    Script.push_back({text, std::nullopt, answer});
}

void ExpectBox(const std::string& text, Box box, Answer answer) {
    Script.push_back({text, box, answer});
}

bool NoMessageLeft() {
    for (const ScriptedMessage& message : Script) ADD_FAILURE() << "Not asked: " << message.Text;
    return Script.empty();
}

void OnYield(std::function<void()> action) {
    YieldAction = std::move(action);
}

int YieldCount() {
    return Yields;
}

void HoldClock(std::uint32_t milliseconds) {
    Desktop.TickCount = [milliseconds] { return milliseconds; };
}

void HoldTimeOfDay(const std::string& text) {
    Time = text;
}

std::string& Clipboard() {
    return ClipboardText;
}

void AnswerNumber(std::optional<std::string> text) {
    NumberAnswers.push_back(std::move(text));
}

const NumberEntry& LastNumberEntry() {
    return LastEntry;
}

bool NoNumberLeft() {
    for (const std::optional<std::string>& answer : NumberAnswers) {
        ADD_FAILURE() << "No number dialog for: " << answer.value_or("(cancel)");
    }
    return NumberAnswers.empty();
}

void FireTimer(Timer timer) {
    ASSERT_TRUE(TimerRuns(timer)) << "The timer does not run";
    const std::function<void()> fire = std::exchange(Of(timer).Fire, nullptr);
    fire();
}

bool TimerRuns(Timer timer) {
    return static_cast<bool>(Of(timer).Fire);
}

int TimerStarts(Timer timer) {
    return Of(timer).Starts;
}

int TimerInterval(Timer timer) {
    return Of(timer).Interval;
}

const std::string& BusyPointers() {
    return Pointers;
}

}  // namespace zandrel
