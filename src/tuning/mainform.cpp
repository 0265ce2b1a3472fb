#include "tuning/mainform.h"

#include "image/image.h"
#include "util/diagnostics.h"

namespace zandrel {

MainForm MainFormState;
MenuItem mnuCheckUnsavedData = {.Caption = "Check Unsaved Data", .Checked = true};

void SetCaption(const std::string& text) {
    if (!text.empty()) MainFormState.FileTitle = text;
    MainFormState.Caption = "Zandrel [" + VerName + " v" + VerNumber + "] - " + MainFormState.FileTitle;
}

void CheckUnsavedData(Answer& answer) {
    answer = Answer::No;
    if (!mnuCheckUnsavedData.Checked || !DataChanged || !mnuSaveAs_Click) return;
    answer = MessageBox("You have made setting changes that have not been saved.\nDo you want to save?",
                        Box::SaveQuestion);
    if (answer == Answer::Yes) {
        mnuSaveAs_Click();
        if (DataChanged) answer = Answer::Cancel;
    } else if (answer == Answer::No) {
        DataChanged = false;
    }
}

}  // namespace zandrel
