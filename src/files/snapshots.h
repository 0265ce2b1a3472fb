// The folder "Snapshots" in the program folder: images kept without a word before they are replaced or sent,
// and after they were read. They are ordinary data files, named by build and local time; the newest 50 stay.
#pragma once

#include <string>
#include <vector>

namespace zandrel {

struct DataText;

/// A snapshot on disk, and its text in the menu.
struct Snapshot {
    std::string Path, Caption;
};

/// The local time as snapshots are named by it: "2026-11-21 14.03.22".
std::string SnapshotTime();

/// Keeps the image and its notes. An image that names no Power-FC is not kept; a failure is a line in the
/// diagnostics log.
void KeepSnapshot(const std::string& time = SnapshotTime());

/// The same with an image that is not in force.
void KeepSnapshotOf(const DataText& data, const std::string& time = SnapshotTime());

/// What is there, newest first.
std::vector<Snapshot> ListSnapshots();

/// Opens the one at `index` (from 0) of the list as it was made last.
void OpenSnapshot(int index);

/// True if `folder` is the one of the snapshots.
bool IsSnapshotFolder(const std::string& folder);

}  // namespace zandrel
