#include "files/recentfiles.h"

#include <gtest/gtest.h>

#include "support/cleanstate.h"
#include "util/store.h"

namespace zandrel {
namespace {

class RecentFiles : public CleanState {
  protected:
    static std::string Key(int n) { return "RecentFile" + std::to_string(n); }

    static void Keep(const std::vector<std::string>& paths) {
        for (std::size_t i = 0; i < paths.size(); ++i)
            SaveSetting("RecentDatFiles", Key(static_cast<int>(i) + 1), paths[i]);
    }

    static std::vector<std::string> Stored() {
        std::vector<std::string> paths;
        for (int n = 1; n <= 4; ++n) paths.push_back(GetSetting("RecentDatFiles", Key(n), "-"));
        return paths;
    }

    // Captions of the items that show.
    static std::vector<std::string> Menu() {
        std::vector<std::string> captions;
        for (const MenuItem& item : mnuRecentFile) {
            if (item.Visible) captions.push_back(item.Caption);
        }
        return captions;
    }

    using Texts = std::vector<std::string>;
};

TEST_F(RecentFiles, EmptyStore_ShowsNothing) {
    GetRecentFiles();
    EXPECT_EQ(Menu(), Texts{});
    EXPECT_FALSE(mnuRecentFileSep.Visible);
}

TEST_F(RecentFiles, Design_ShowsNothing) {
    EXPECT_EQ(Menu(), Texts{});
    EXPECT_FALSE(mnuRecentFileSep.Visible);
}

TEST_F(RecentFiles, NewPaths_GoToTheHeadAndTheFifthFallsOut) {
    for (const char* path : {"/m/a.dat", "/m/b.dat", "/m/c.dat", "/m/d.dat"}) UpdateFileMenu(path);
    EXPECT_EQ(Stored(), (Texts{"/m/d.dat", "/m/c.dat", "/m/b.dat", "/m/a.dat"}));
    UpdateFileMenu("/m/e.dat");
    EXPECT_EQ(Stored(), (Texts{"/m/e.dat", "/m/d.dat", "/m/c.dat", "/m/b.dat"}));
    EXPECT_EQ(Menu(), (Texts{"&1 .../m/e.dat", "&2 .../m/d.dat", "&3 .../m/c.dat", "&4 .../m/b.dat"}));
    EXPECT_EQ(mnuRecentFile[3].Tag, "/m/b.dat");
    EXPECT_TRUE(mnuRecentFileSep.Visible);
}

TEST_F(RecentFiles, PathInTheList_MovesToTheHeadFromEveryPlace) {
    const Texts paths = {"/m/a.dat", "/m/b.dat", "/m/c.dat", "/m/d.dat"};
    for (std::size_t place = 0; place < 4; ++place) {
        Keep(paths);
        GetRecentFiles();
        UpdateFileMenu(paths[place]);
        Texts expected = {paths[place]};
        for (const std::string& path : paths) {
            if (path != paths[place]) expected.push_back(path);
        }
        EXPECT_EQ(Stored(), expected) << place;
    }
}

TEST_F(RecentFiles, ComparisonKnowsCase) {
    Keep({"/m/a.dat"});
    GetRecentFiles();
    UpdateFileMenu("/m/A.dat");
    EXPECT_EQ(Stored(), (Texts{"/m/A.dat", "/m/a.dat", "-", "-"}));
}

TEST_F(RecentFiles, FewerThanFour_OnlyTheseShow) {
    UpdateFileMenu("/m/a.dat");
    EXPECT_EQ(Menu(), (Texts{"&1 .../m/a.dat"}));
    EXPECT_EQ(Stored(), (Texts{"/m/a.dat", "-", "-", "-"}));
    UpdateFileMenu("/m/b.dat");
    EXPECT_EQ(Menu(), (Texts{"&1 .../m/b.dat", "&2 .../m/a.dat"}));
    EXPECT_EQ(mnuRecentFile[2].Caption, "&3 ");
    EXPECT_FALSE(mnuRecentFile[2].Visible);
}

TEST_F(RecentFiles, GapInTheStore_EndsTheList) {
    Keep({"/m/a.dat", "", "/m/c.dat"});
    GetRecentFiles();
    EXPECT_EQ(Menu(), (Texts{"&1 .../m/a.dat"}));
    Keep({"", "/m/b.dat"});
    GetRecentFiles();
    EXPECT_EQ(Menu(), Texts{});
    EXPECT_FALSE(mnuRecentFileSep.Visible);
}

TEST_F(RecentFiles, SamePathTwiceInTheStore_TheFirstPlaceCounts) {
    Keep({"/m/a.dat", "/m/b.dat", "/m/b.dat", "/m/d.dat"});
    GetRecentFiles();
    UpdateFileMenu("/m/b.dat");
    EXPECT_EQ(Stored(), (Texts{"/m/b.dat", "/m/a.dat", "/m/b.dat", "/m/d.dat"}));
}

// Another run of the program has written the list meanwhile.
TEST_F(RecentFiles, PathInTheMenuButNoLongerInTheStore_StillGoesToTheHead) {
    Keep({"/m/a.dat", "/m/b.dat"});
    GetRecentFiles();
    Keep({"/m/x.dat", "/m/y.dat", "/m/z.dat", "/m/w.dat"});
    UpdateFileMenu("/m/b.dat");
    EXPECT_EQ(Stored(), (Texts{"/m/b.dat", "/m/x.dat", "/m/y.dat", "/m/z.dat"}));
}

TEST_F(RecentFiles, ShortForm_IsTheLastFolderAndTheName) {
    struct Row {
        const char* Path;
        const char* Short;
    };
    for (const Row& row :
         {Row{"a.dat", "a.dat"}, Row{"/a.dat", "/a.dat"}, Row{"maps/a.dat", "maps/a.dat"},
          Row{"/maps/a.dat", ".../maps/a.dat"}, Row{"/home/tom/my maps/a.dat", ".../my maps/a.dat"},
          Row{"/home/\u30C1\u30E5/\u0434.dat", ".../\u30C1\u30E5/\u0434.dat"}, Row{"//a.dat", "...//a.dat"},
          Row{"/x/y/", ".../y/"}, Row{"", ""}}) {
        EXPECT_EQ(ShortPath(row.Path), row.Short) << row.Path;
    }
}

}  // namespace
}  // namespace zandrel
