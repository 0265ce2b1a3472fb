// A Power-FC that was read whole, and what the tests of the writes look at: the frames it was sent and the
// flags that stay up.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "link/linkfixture.h"

namespace zandrel {

inline constexpr char kNotResponding[] = "Interface not responding!";
inline constexpr char kFirstReadAllUpdate[] =
    "First Read All, make changes, then Update.\nYou can't Update to a different Power-FC version.";
inline constexpr char kFirstReadAllWrite[] =
    "First Read All, make changes, then WriteAll.\nYou can't Update to a different Power-FC version.";

// Builds of each kind that is written in its own way.
inline constexpr char kPlain[] = "RB26DETT6.42";        // injection 0x86, ignition 0x81
inline constexpr char kBaseMap[] = "1JZ-GTE23.12";      // base map of two bytes at 0xB0, tab 2
inline constexpr char kTwoBaseMaps[] = "B18C2.02B";     // the second one at 0x63, tab 3
inline constexpr char kOldest[] = "RB26DETT3.11D";      // injection 0x56, ignition 0x52, cell by cell
inline constexpr char kOldSelects[] = "RB26DETT4.08D";  // selects at 0x5A and 0x65, maps as the plain one
inline constexpr char kGearbox[] = "1JZGT-AT3.43";      // 136 bytes of function select
inline constexpr char kGearbox2[] = "1JZGT-AT3.54";

class TransferFixture : public LinkFixture {
  protected:
    TransferFixture();

    /// Another Power-FC on the same port.
    void Connect(const std::string& version);

    /// The same, read whole; the journal is empty then.
    void ReadAllOf(const std::string& version);

    /// Faults end quickly from now on: two sends of each frame, 120 ms in all.
    static void Impatient();

    /// What `ValidVersion` asks first.
    Frames Prelude() const;

    /// The frames received that carry data: all that could change the Power-FC.
    Frames Writes() const;

    /// The prelude, then `frames`.
    Frames AfterPrelude(const Frames& frames) const;

    /// Each block that the build has and that can be written is on the Power-FC as it is in the image. A
    /// block's bytes that are not writable count too: nobody has changed them.
    void ExpectDeviceEqualsImage() const;

    /// All blocks of the Power-FC, in the order of their codes.
    Frames Contents() const;
};

/// A way in which an answer goes wrong: meets the next `n` requests of `code`.
struct FaultCase {
    const char* Name;
    std::function<void(powerfc::Simulator& device, int code, int n)> Add;
};
extern const std::vector<FaultCase> kFaults;

/// A frame by its code and data, in digits. Put together by the simulator's own routine.
std::string Packet(int code, const std::string& data = {});

/// The whole-block write of `block` as the image has it.
std::string BlockPacket(int block);

/// The write of a cell as the image has it, by the command before the map; `map` has whole blocks.
std::string CellPacket(int map, int row, int column);

/// The write of a cell of the oldest family, and the question for its outcome.
Frames OldestCellPackets(int map, int row, int column);

/// Turns byte `offset` (from 1) of `block` into its successor, by a write accessor.
void Bump(int block, int offset = 1);

/// Turns a cell into its successor.
void BumpCell(int map, int row, int column);

/// Changes `count` cells of `map` in the order in which they are sent.
void BumpCells(int map, int count);

/// Codes of all blocks that are marked.
std::vector<int> MarkedBlocks();

/// Marked cells of `map`.
int MarkedCells(int map);

Frames operator+(Frames left, const Frames& right);

}  // namespace zandrel
