#include "support/scripteddesktop.h"

#include <gtest/gtest.h>

#include <deque>
#include <optional>

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
    Desktop = ClosedDesktop();
    Desktop.MessageBox = Ask;
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

}  // namespace zandrel
