#include "link/progress.h"

namespace zandrel {

ProgressForm Progress2;
ProgressForm ProgressScan = {.Modal = true};

namespace {
int RunningOperations = 0;
}

void ShowProgress(ProgressForm& form, const std::string& status) {
    form.Visible = true;
    form.Status = status;
    form.Bar = 0;
    form.Cancelled = false;
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
