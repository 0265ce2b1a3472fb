#include "link/progress.h"

namespace zandrel {

ProgressForm Progress2;
ProgressForm ProgressScan;
bool CloseAsked = false;

namespace {
int RunningOperations = 0;
}

void ShowProgress(ProgressForm& form, const std::string& status) {
    form.Visible = true;
    form.Status = status;
    form.Bar = 0;
    form.Cancelled = CloseAsked;
}

void HideProgress(ProgressForm& form) {
    form.Visible = false;
}

bool LongOperationRuns() {
    return RunningOperations > 0;
}

LongOperation::LongOperation() {
    ++RunningOperations;
}

LongOperation::~LongOperation() {
    --RunningOperations;
}

}  // namespace zandrel
