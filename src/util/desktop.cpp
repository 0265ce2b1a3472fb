#include "util/desktop.h"

#include <chrono>

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
    door.ChooseFileToSave = [](const std::string&) { return std::string(); };
    door.SetClipboard = [](const std::string&) {};
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

}  // namespace zandrel
