#include "files/recentfiles.h"

#include <algorithm>

#include "files/wholefile.h"
#include "util/store.h"

namespace zandrel {

std::array<MenuItem, 4> mnuRecentFile;
MenuItem mnuRecentFileSep = {.Caption = "-", .Visible = false};

namespace {

constexpr const char* kSection = "RecentDatFiles";

std::string Key(int number) {
    return "RecentFile" + std::to_string(number);
}

std::string Stored(int number) {
    return GetSetting(kSection, Key(number), "");
}

void MoveDown(const std::string& path, int to) {
    if (!path.empty()) SaveSetting(kSection, Key(to), path);
}

}  // namespace

std::string ShortPath(const std::string& path) {
    std::size_t found = 0;
    for (std::size_t i = path.size(); i > 0; --i) {
        if (!IsSeparator(path[i - 1]) || ++found < 2) continue;
        return std::string("...") + path[i - 1] + path.substr(i);
    }
    return path;
}

void GetRecentFiles() {
    for (MenuItem& item : mnuRecentFile) item.Visible = false;
    mnuRecentFileSep.Visible = !Stored(1).empty();
    if (!mnuRecentFileSep.Visible) return;
    for (int i = 1; i <= static_cast<int>(mnuRecentFile.size()); ++i) {
        MenuItem& item = mnuRecentFile[static_cast<std::size_t>(i - 1)];
        item.Tag = Stored(i);
        item.Caption = "&" + std::to_string(i) + " " + ShortPath(item.Tag);
        if (item.Tag.empty()) return;
        item.Visible = true;
    }
}

void UpdateFileMenu(const std::string& path) {
    const bool listed = std::any_of(mnuRecentFile.begin(), mnuRecentFile.end(),
                                    [&path](const MenuItem& item) { return item.Tag == path; });
    if (listed) {
        int place = 1;
        while (place < 4 && Stored(place) != path) ++place;
        for (int j = place - 1; j >= 1; --j) MoveDown(Stored(j), j + 1);
    } else {
        for (int j = 3; j >= 1; --j) MoveDown(mnuRecentFile[static_cast<std::size_t>(j - 1)].Tag, j + 1);
    }
    SaveSetting(kSection, Key(1), path);
    GetRecentFiles();
}

}  // namespace zandrel
