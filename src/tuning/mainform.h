// The main window's own state: place on the screen, caption, and the question about unsaved data.
#pragma once

#include <functional>
#include <string>

#include "util/controls.h"
#include "util/desktop.h"

namespace zandrel {

/// Place and state of the main window. Lengths in twips (1/1440 inch); WindowState 0 normal, 1 minimised,
/// 2 maximised.
struct MainForm {
    float Left = 450, Top = 450, Height = 8130, Width = 11205;
    int WindowState = 0;
    std::string Caption;
    std::string FileTitle;
};
extern MainForm MainFormState;

extern MenuItem mnuCheckUnsavedData;

/// A text that is not empty becomes the file title. The caption is "Zandrel [engine vnumber] - title".
void SetCaption(const std::string& text);

/// Asks whether unsaved data is to be saved, and saves it. Answer 2 (Cancel): the caller stops. Without a
/// way to save nothing is asked.
void CheckUnsavedData(Answer& answer);

/// Saves the image under a name that the user chooses. Set by files/.
inline std::function<void()> mnuSaveAs_Click;

/// Ends the comparison with a second file. Set by files/.
inline std::function<void()> EndComparison = [] {};

}  // namespace zandrel
