#include "files/filesfixture.h"

#include <filesystem>
#include <fstream>

#include "files/datafile.h"
#include "files/recentfiles.h"
#include "image/history.h"
#include "link/transfers.h"
#include "simulator/simulator.h"
#include "support/scripteddesktop.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"

namespace zandrel {
namespace {

template <class Flags>
std::string Marks(const Flags& flags) {
    std::string marks;
    for (const auto flag : flags) marks += flag ? '1' : '0';
    return marks;
}

template <class Numbers>
std::string List(const Numbers& numbers) {
    std::string list;
    for (const auto number : numbers) list += std::to_string(number) + ",";
    return list;
}

std::string Hexadecimal(const ByteString& bytes) {
    return powerfc::ToHex(powerfc::Bytes(bytes.begin(), bytes.end()));
}

// What a person sees of an array: the shown members of shown frames.
void AddControls(Everything& all, const std::string& name, const ControlArray& array) {
    for (const auto& [index, control] : array) {
        if (control.Frame < 0 || !FraSettings[control.Frame].Visible) continue;
        all[name + std::to_string(index)] = control.Tag + "|" + control.Text + "|" + control.Caption + "|" +
                                            std::to_string(control.Value) +
                                            Marks(std::array{control.Visible, control.Enabled});
    }
}

}  // namespace

FileDialogs::FileDialogs() {
    Desktop.ChooseFile = [this](const FileChoice& choice) -> std::string {
        Asked.push_back(choice);
        if (answers_.empty()) {
            ADD_FAILURE() << "Unexpected file dialog in " << choice.Folder;
            return {};
        }
        std::string path = answers_.front();
        answers_.erase(answers_.begin());
        return path;
    };
}

FileDialogs::~FileDialogs() {
    EXPECT_TRUE(answers_.empty()) << "A file dialog did not come";
}

Everything Now() {
    Everything all;
    for (std::size_t b = 0; b < ReadData.size(); ++b) {
        const std::string name = "block " + std::to_string(b);
        all[name] = Hexadecimal(ReadData[b]);
        // The length of a block that no build in force has is nobody's.
        all[name + " length"] = BlockRead[b] ? std::to_string(BlockLength[b]) : "";
    }
    all["BlockRead"] = Marks(BlockRead);
    all["BlockWrite"] = Marks(BlockWrite);
    all["BlockChanged"] = Marks(BlockChanged);
    all["BlockInForce"] = Marks(BlockInForce);
    for (std::size_t map = 0; map < kMaps; ++map) {
        std::string cells;
        for (const auto& row : MapCellChanged[map]) cells += Marks(row);
        all["cells " + std::to_string(map)] = cells;
    }
    all["version"] = VerName + "|" + VerNumber;
    all["notes"] = txtNotes.Text;
    all["caption"] = MainFormState.Caption;
    all["tabs"] =
        Marks(SSTab1.TabVisible) + " " + std::to_string(SSTab1.Tab) + " " + std::to_string(SSTab1.TabsPerRow);
    for (const auto& [index, frame] : FraSettings)
        all["frame " + std::to_string(index)] = Marks(std::array{frame.Visible, frame.Enabled});
    AddControls(all, "txtSetting ", txtSetting);
    AddControls(all, "chkSetting ", chkSetting);
    AddControls(all, "chkSettingBit ", chkSettingBit);
    AddControls(all, "optSetting ", optSetting);
    AddControls(all, "lblSetting ", lblSetting);
    for (std::size_t map = 0; map < kMapTabs; ++map) {
        if (!SSTab1.TabVisible[map]) continue;
        std::string cells = Grid[map].Tag + SSTab1.TabCaption[map];
        for (const auto& row : Grid[map].TextMatrix) {
            for (const std::string& cell : row) cells += " " + cell;
        }
        all["map " + std::to_string(map)] = cells;
    }
    all["DataChanged"] = Marks(std::array{DataChanged});
    return all;
}

std::string Differences(const Everything& before, const Everything& after) {
    std::string names;
    for (const auto& [name, value] : before) {
        const auto other = after.find(name);
        if (other == after.end() || other->second != value) names += name + "; ";
    }
    for (const auto& [name, value] : after) {
        if (before.count(name) == 0) names += name + " (new); ";
    }
    return names;
}

std::array<ByteString, 256> BlocksOf(const std::string& key) {
    powerfc::Options options;
    options.Version = key;
    const powerfc::Simulator device(options);
    std::array<ByteString, 256> blocks;
    for (const int code : device.BlockCodes())
        blocks[static_cast<std::size_t>(code)] = device.BlockString(code);
    return blocks;
}

std::string DataFile(const std::array<ByteString, 256>& blocks, const std::string& tail) {
    std::string text;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        if (blocks[b].empty()) continue;
        text += powerfc::ToHex({static_cast<std::uint8_t>(b)}) + Hexadecimal(blocks[b]) + "\r\n";
    }
    return text + tail;
}

void PutFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

void Open(const std::string& path) {
    std::string opened = path;
    OpenFile(opened, true);
}

FilesFixture::FilesFixture() {
    GridInit();
    // As the start leaves them.
    SSTab1.TabVisible.fill(false);
    SSTab1.TabVisible[kGeneralTab] = true;
    mnuSaveAs_Click = SaveAs;
}

std::string FilesFixture::Put(const std::string& name, const std::string& bytes) const {
    PutFile(Folder + "/" + name, bytes);
    return Folder + "/" + name;
}

}  // namespace zandrel
