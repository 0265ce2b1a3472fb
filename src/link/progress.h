// The two progress windows as records; the windows mirror them. Cancelled is set by cmdCancel and looked
// at between exchanges.
#pragma once

#include <string>

namespace zandrel {

struct ProgressForm {
    bool Visible = false;
    std::string Status = {};
    double Bar = 0;  // 0 to 100
    bool Cancelled = false;
};
extern ProgressForm Progress2;     // auto detection and map writes, modeless and on top
extern ProgressForm ProgressScan;  // version scan, modal

/// The user has closed the main window while a long operation runs: whatever still begins within it is
/// cancelled at once. Written by the main window.
extern bool CloseAsked;

/// Shows a progress window anew: not cancelled, bar at 0, over the main window.
void ShowProgress(ProgressForm& form, const std::string& status);
void HideProgress(ProgressForm& form);

/// True while a long operation runs inside a click; it must not be started twice, and the program does not
/// end before it has.
bool LongOperationRuns();

/// Counts as running as long as it lives.
class LongOperation {
  public:
    LongOperation();
    ~LongOperation();
    LongOperation(const LongOperation&) = delete;
    LongOperation& operator=(const LongOperation&) = delete;
};

}  // namespace zandrel
