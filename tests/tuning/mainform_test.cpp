#include "tuning/mainform.h"

#include <gtest/gtest.h>

#include "image/image.h"
#include "support/cleanstate.h"
#include "support/scripteddesktop.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

constexpr char kQuestion[] = "You have made setting changes that have not been saved.\nDo you want to save?";

class UnsavedData : public CleanState {
  protected:
    UnsavedData() {
        mnuSaveAs_Click = [this] {
            ++saves_;
            if (saveWorks_) DataChanged = false;
        };
        DataChanged = true;
    }
    static Answer Asked() {
        Answer answer{};
        CheckUnsavedData(answer);
        return answer;
    }
    int saves_ = 0;
    bool saveWorks_ = true;
};

TEST_F(UnsavedData, NothingChangedOrNotWanted_IsNotAsked) {
    DataChanged = false;
    EXPECT_EQ(Asked(), Answer::No);
    DataChanged = true;
    mnuCheckUnsavedData.Checked = false;
    EXPECT_EQ(Asked(), Answer::No);
    EXPECT_TRUE(DataChanged);
}

TEST_F(UnsavedData, Yes_Saves) {
    ExpectBox(kQuestion, Box::SaveQuestion, Answer::Yes);
    EXPECT_EQ(Asked(), Answer::Yes);
    EXPECT_EQ(saves_, 1);
}

TEST_F(UnsavedData, YesAndTheSaveFails_IsACancel) {
    saveWorks_ = false;
    ExpectMessage(kQuestion, Answer::Yes);
    EXPECT_EQ(Asked(), Answer::Cancel);
    EXPECT_TRUE(DataChanged);
}

TEST_F(UnsavedData, No_DropsTheChanges) {
    ExpectMessage(kQuestion, Answer::No);
    EXPECT_EQ(Asked(), Answer::No);
    EXPECT_FALSE(DataChanged);
    EXPECT_EQ(saves_, 0);
}

TEST_F(UnsavedData, Cancel_ChangesNothing) {
    ExpectMessage(kQuestion, Answer::Cancel);
    EXPECT_EQ(Asked(), Answer::Cancel);
    EXPECT_TRUE(DataChanged);
}

TEST_F(UnsavedData, WithoutAWayToSave_NothingIsAsked) {
    mnuSaveAs_Click = nullptr;
    EXPECT_EQ(Asked(), Answer::No);
    EXPECT_TRUE(DataChanged);
}

TEST_F(UnsavedData, Caption_NamesVersionAndTitle) {
    VerName = "RB26DETT";
    VerNumber = "6.42";
    SetCaption("track.dat");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v6.42] - track.dat");
    VerNumber = "8.02";
    SetCaption("");
    EXPECT_EQ(MainFormState.Caption, "Zandrel [RB26DETT v8.02] - track.dat");
}

}  // namespace
}  // namespace zandrel
