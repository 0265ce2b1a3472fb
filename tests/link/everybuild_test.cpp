// Reads all of every build from the simulator and compares each shown field with the device's own bytes.
// The expected texts are worked out here from the descriptor and the bytes, not by the accessors.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "image/catalogue.h"
#include "image/image.h"
#include "link/linkfixture.h"
#include "link/packets.h"
#include "link/port.h"
#include "link/transfers.h"
#include "support/scripteddesktop.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/codepage.h"
#include "util/diagnostics.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

class EveryBuildOnTheLink : public CleanState {
  protected:
    std::unique_ptr<powerfc::Simulator> device_;

    int Byte(int block, int offset) const {
        const powerfc::Bytes bytes = device_->Block(block);
        return offset >= 1 && offset <= std::ssize(bytes) ? bytes[static_cast<std::size_t>(offset - 1)] : -1;
    }

    static int Whole(const std::string& text) {
        return text.substr(0, 2) == "&H" ? std::stoi(text.substr(2), nullptr, 16) : std::stoi(text);
    }

    // The text that a number descriptor has to show, by printf on the exact value.
    std::string ExpectedNumber(const std::string& tag) const {
        const auto part = Split(tag, ',');
        const int block = Whole(part[0]);
        const int offset = Whole(part[1]);
        int raw = Byte(block, offset);
        if (Whole(part[2]) == 2) raw += 256 * Byte(block, offset + 1);
        if (Whole(part[2]) == 129 && raw > 127) raw -= 256;
        const double value = raw * std::stod(part[3]) + std::stod(part[4]);
        const auto point = part[5].find('.');
        const int decimals = point == std::string::npos ? 0 : static_cast<int>(part[5].size() - point - 1);
        char text[64];
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
        const std::string shown = text;
        const bool zero = shown.find_first_of("123456789") == std::string::npos;
        return zero && shown[0] == '-' ? shown.substr(1) : shown;
    }

    static bool Shown(const Control& control) {
        return control.Visible && control.Frame >= 0 && FraSettings[control.Frame].Visible;
    }

    void ExpectSettings() const {
        for (const auto& [index, text] : txtSetting) {
            const bool belowTheFrame = text.Frame == 120 && text.Top + text.Height > FraSettings[120].Height;
            if (!Shown(text) || belowTheFrame) continue;
            EXPECT_EQ(text.Text, ExpectedNumber(text.Tag)) << "txtSetting " << index << " " << text.Tag;
            EXPECT_TRUE(text.Enabled);
        }
        for (const auto& [index, box] : chkSetting) {
            if (!Shown(box)) continue;
            const auto part = Split(box.Tag, ',');
            const bool plain = Whole(part[2]) != 0;
            EXPECT_EQ(box.Value != 0, (Byte(Whole(part[0]), Whole(part[1])) != 0) == plain)
                << "chkSetting " << index;
        }
        for (const auto& [index, box] : chkSettingBit) {
            if (!Shown(box)) continue;
            const auto part = Split(box.Tag, ',');
            EXPECT_EQ(box.Value != 0, (Byte(Whole(part[0]), Whole(part[1])) & Whole(part[2])) != 0) << index;
        }
        for (const auto& [index, option] : optSetting) {
            if (!Shown(option)) continue;
            const auto part = Split(option.Tag, ',');
            const int masked = Byte(Whole(part[0]), Whole(part[1])) & Whole(part[3]);
            EXPECT_EQ(option.Value != 0, masked == Whole(part[2])) << "optSetting " << index;
        }
        for (const auto& [index, label] : lblSetting) {
            const bool onItsTab = label.Frame < 0 && SSTab1.TabVisible[label.Tab];
            if (!Shown(label) && !onItsTab) continue;
            const auto part = Split(label.Tag, ',');
            if (!device_->HasBlock(Whole(part[0]))) continue;  // names of another kind of build
            const std::string bytes = device_->BlockString(Whole(part[0]));
            const auto from = static_cast<std::size_t>(Whole(part[1]) - 1);
            EXPECT_EQ(label.Caption,
                      FromCodePage(bytes.substr(from, static_cast<std::size_t>(Whole(part[2])))))
                << "lblSetting " << index;
        }
    }

    void ExpectMaps() const {
        for (int map = 0; map < kMapTabs; ++map) {
            if (!SSTab1.TabVisible[map]) continue;
            const auto part = Split(Grid[map].Tag, ',');
            const int first = Whole(part[0]);
            const int size = Whole(part[1]);
            const double scale = static_cast<float>(std::stod(part[2]));
            const double offset = std::stod(part[3]);
            const auto point = part[4].find('.');
            const int decimals =
                point == std::string::npos ? 0 : static_cast<int>(part[4].size() - point - 1);
            for (int column = 1; column <= 20; ++column) {
                for (int row = 1; row <= 20; ++row) {
                    const int position = ((column - 1) * 20 + row - 1) * size;
                    int raw = Byte(first + position / 100, position % 100 + 1);
                    if (size == 2) raw += 256 * Byte(first + position / 100, position % 100 + 2);
                    char text[64];
                    std::snprintf(text, sizeof text, "%.*f", decimals, raw * scale + offset);
                    ASSERT_EQ(GridCellText(map, row, column), text)
                        << "map " << map << " " << row << "," << column;
                }
            }
        }
    }
};

TEST_F(EveryBuildOnTheLink, ReadAll_ShowsEveryFieldAsTheDeviceHoldsIt) {
    for (const Build& build : Builds()) {
        SCOPED_TRACE(build.Key);
        powerfc::Options options;
        options.Version = std::string(build.Key);
        device_ = std::make_unique<powerfc::Simulator>(options);
        SetPorts("1=" + device_->PortName());
        mnuCom_Click(0);
        // A build without 0xF3 is asked for it in vain: a short wait keeps the walk short.
        ComTimeOutTicks = build.Family == 'O' ? 20 : 250;
        cmdReadAll_Click();
        EXPECT_EQ(VerName + VerNumber, build.Key);
        EXPECT_TRUE(cmdWriteAll.Enabled);
        for (int b = 0; b < 256; ++b) {
            if (BlockRead[b]) {
                ASSERT_EQ(Digits(ReadData[b]), Digits(device_->BlockString(b))) << b;
                ASSERT_EQ(ReadData[b].size(), BlockLength[b]) << b;
            }
        }
        ExpectSettings();
        ExpectMaps();
        mnuCom_Click(0);
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace zandrel
