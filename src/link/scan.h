// Inventory of a build that the catalogue does not know: asks for each of the 256 possible blocks and keeps
// whatever answers, checksum byte included.
#pragma once

namespace zandrel {

/// Shows the scan window and runs the scan behind it. Nothing while a log runs.
void mnuScan_Click();

/// The scan itself. Half a second for a block that does not answer; one yield a block.
void mnuScan_Code();

}  // namespace zandrel
