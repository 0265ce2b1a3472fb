#include "link/scan.h"

#include "image/history.h"
#include "image/image.h"
#include "link/identify.h"
#include "link/packets.h"
#include "link/progress.h"
#include "link/transfers.h"
#include "tuning/binding.h"
#include "util/desktop.h"

namespace zandrel {

void mnuScan_Click() {
    if (LogRuns()) return;
    const LongOperation running;
    cmdReadAll.Enabled = false;
    ShowProgress(ProgressScan, "");
    Yield();  // the window stands on the screen before the long loop starts
    mnuScan_Code();
}

void mnuScan_Code() {
    BusyPointer(true);
    if (DataChanged) BeforeUnsavedIsReplaced();
    ReadData.fill({});
    BlockInForce.fill(false);
    ClearHistory();
    cmdWriteAll.Enabled = false;
    bool complete = true;
    for (int b = 0; b < 256; ++b) {
        ByteString frame(1, static_cast<char>(b));
        int timeOut = 500;
        int retries = 0;
        if (ReadPacket(frame, false, timeOut, retries) == LinkResult::Success) {
            ReadData[static_cast<std::size_t>(b)] = frame.substr(2);
        }
        Yield();  // the user may have cancelled
        ProgressScan.Bar = b / 2.55;
        if (ProgressScan.Cancelled) {
            complete = false;
            break;
        }
    }
    if (complete) {
        BlockChanged.fill(false);
        MapCellChanged = {};
        cmdUpdate.Enabled = false;
    }
    HideProgress(ProgressScan);
    DisplayAllData();
    BusyPointer(false);
    cmdReadAll.Enabled = true;
}

}  // namespace zandrel
