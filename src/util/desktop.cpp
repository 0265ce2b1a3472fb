#include "util/desktop.h"

#include <chrono>
#include <ctime>
#include <utility>

#include "util/numbers.h"

namespace zandrel {

DesktopDoor Desktop = ClosedDesktop();

DesktopDoor ClosedDesktop() {
    DesktopDoor door;
    door.TickCount = [] {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
    };
    door.Yield = [] {};
    door.MessageBox = [](const std::string&, Box box) {
        if (box == Box::SaveQuestion) return Answer::Cancel;
        return box == Box::YesNo || box == Box::YesNoInformation ? Answer::No : Answer::Ok;
    };
    door.BusyPointer = [](bool) {};
    door.ChooseFile = [](const FileChoice&) { return std::string(); };
    door.SetClipboard = [](const std::string&) {};
    door.GetClipboard = [] { return std::string(); };
    door.EnterNumber = [](const NumberEntry&, const std::function<void(const std::string&)>&) {};
    door.StartTimer = [](Timer, int, const std::function<void()>&) {};
    door.StopTimer = [](Timer) {};
    door.TimeOfDay = [] {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        localtime_r(&now, &local);
        char text[16];
        return std::string(text, std::strftime(text, sizeof text, "%H:%M:%S", &local));
    };
    return door;
}

std::uint32_t TickCount() {
    return Desktop.TickCount();
}

void Yield() {
    Desktop.Yield();
}

Answer MessageBox(const std::string& text, Box box) {
    return Desktop.MessageBox(text, box);
}

void BusyPointer(bool busy) {
    Desktop.BusyPointer(busy);
}

void EnterNumber(const NumberEntry& entry, std::function<void(const std::string& text)> done) {
    Desktop.EnterNumber(entry, std::move(done));
}

std::string NumberEntryText(const std::string& text, const std::string& format) {
    return FormatNumber(SafeNumber(WithDecimalPoint(text)), format);
}

void StartTimer(Timer timer, int milliseconds, std::function<void()> fire) {
    Desktop.StartTimer(timer, milliseconds, std::move(fire));
}

void StopTimer(Timer timer) {
    Desktop.StopTimer(timer);
}

}  // namespace zandrel
