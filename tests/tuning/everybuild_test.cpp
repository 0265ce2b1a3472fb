// Walks all builds: what is registered and shown fits together on every one of them.
#include <gtest/gtest.h>

#include <set>

#include "image/accessors.h"
#include "image/catalogue.h"
#include "image/image.h"
#include "support/cleanstate.h"
#include "tuning/display.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

class EveryBuild : public CleanState {
  protected:
    static int Whole(const std::string& text) { return static_cast<int>(LenientNumber(text)); }

    // Last byte (from 1) that a descriptor touches.
    static int LastByte(const ControlArray& array, const std::vector<std::string>& parts) {
        const int offset = Whole(parts[1]);
        if (&array == &txtSetting) return offset + (Whole(parts[2]) == 2 ? 1 : 0);
        if (&array == &lblSetting) return offset + Whole(parts[2]) - 1;
        return offset;
    }

    static void ExpectFits(const ControlArray& array, const char* name) {
        for (const auto& [index, control] : array) {
            if (control.Frame < 0 || !FraSettings[control.Frame].Visible || !control.Visible) continue;
            // The rows of the rev and idle frame below its end are not shown.
            if (control.Frame == 120 && &array == &txtSetting &&
                control.Top + control.Height > FraSettings[120].Height) {
                continue;
            }
            const auto parts = Split(control.Tag, ',');
            const int block = Whole(parts[0]);
            ASSERT_GE(block, 0);
            ASSERT_LE(block, 255);
            EXPECT_TRUE(BlockRead[block]) << name << index << " " << control.Tag;
            EXPECT_GE(Whole(parts[1]), 1) << name << index;
            EXPECT_LE(LastByte(array, parts), BlockLength[block]) << name << index << " " << control.Tag;
        }
    }

    static void ExpectCurvesFit() {
        for (const auto& [index, button] : cmdEditCurve) {
            if (!FraSettings[button.Frame].Visible) continue;
            const auto sections = Split(button.Tag, ';');
            for (std::size_t axis = 1; axis <= 2; ++axis) {
                const auto parts = Split(sections[axis], ',');
                if (parts[0] == "Const") continue;
                const int block = Whole(parts[0]);
                // Buttons under a foreign number keep their design code, whatever block the build has.
                if (index < button.Frame && !BlockRead[block]) continue;
                const int points = Whole(sections[0]);
                for (const int i : {0, points - 1}) {
                    const int offset = Whole(parts[1]) + i * Whole(parts[2]);
                    EXPECT_TRUE(BlockRead[block]) << index;
                    EXPECT_GE(offset, 1) << index;
                    EXPECT_LE(offset + Whole(parts[3]) - 1, BlockLength[block]) << index << " " << button.Tag;
                }
            }
        }
    }
};

TEST_F(EveryBuild, EveryShownDescriptorFitsItsReadableBlock) {
    for (const Build& build : Builds()) {
        SCOPED_TRACE(build.Key);
        ApplyBuild(std::string(build.Key));
        ExpectFits(txtSetting, "txtSetting ");
        ExpectFits(chkSetting, "chkSetting ");
        ExpectFits(chkSettingBit, "chkSettingBit ");
        ExpectFits(optSetting, "optSetting ");
        ExpectFits(lblSetting, "lblSetting ");
        ExpectCurvesFit();
        if (HasFailure()) return;
    }
}

// Two groups that register one block with different lengths would make one of them unreadable.
TEST_F(EveryBuild, NoTwoReadableBlocksCollideInLength) {
    for (const Build& build : Builds()) {
        SCOPED_TRACE(build.Key);
        ApplyBuild(std::string(build.Key));
        std::set<int> maps;
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            for (int k = 0; k < MapCellSize[map] * 4; ++k) {
                const int block = MapFirstBlock[map] + k;
                EXPECT_EQ(maps.count(block), 0U) << "two maps share block " << Hex2(block);
                maps.insert(block);
                EXPECT_EQ(BlockLength[block], 100) << Hex2(block);
                EXPECT_FALSE(BlockWrite[block]) << Hex2(block);
            }
        }
        for (const auto& [index, frame] : FraSettings) {
            if (!frame.Visible || frame.Tag.empty()) continue;
            for (const std::string& code : Split(frame.Tag, ',')) {
                if (code == "4") continue;  // the air-flow warning's second entry names no block of its own
                EXPECT_EQ(maps.count(Whole(code)), 0U)
                    << "frame " << index << " lies in a map, block " << code;
                EXPECT_TRUE(BlockRead[Whole(code)]) << "frame " << index << " block " << code;
            }
        }
        for (int b = 0; b < 256; ++b) {
            if (BlockRead[b]) {
                EXPECT_GT(BlockLength[b], 0) << Hex2(b);
            }
        }
        if (HasFailure()) return;
    }
}

// Two groups on one block would give it two lengths, and the later one would win.
TEST_F(EveryBuild, EachBlockIsRegisteredOnce) {
    for (const Build& build : Builds()) {
        SCOPED_TRACE(build.Key);
        std::set<int> taken;
        const auto take = [&taken](int block, int count = 1) {
            for (int b = block; b < block + count; ++b) EXPECT_TRUE(taken.insert(b).second) << Hex2(b);
        };
        const SettingsRecord& record = SettingsRecordOf(build);
        for (std::size_t field = 2; field <= record.size(); ++field) {
            const std::string code(record[field - 1]);
            if (code.empty() || field == 26) continue;
            take(Whole(code) & 255, field <= 8 ? 4 : field <= 10 ? 8 : 1);
        }
        const LogRecord log = LogRecordOf(build);
        for (std::size_t field = 1; field <= 15; ++field) {
            const std::string code(log[field - 1]);
            if (!code.empty()) take(Whole(code) & 255);
        }
        if (record[0] == "L-AT1" || record[0] == "L-AT2") take(0x40, record[0] == "L-AT2" ? 5 : 4);
        if (record[1] != "&H56") take(0xAD);
        if (Whole(std::string(log[14])) >= 256) take(0xEB);
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace zandrel
