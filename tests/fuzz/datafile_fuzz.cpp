// Fuzz target of tuning data files: whatever a file holds, it is taken in as told or leaves nothing of
// itself, and what was taken in is what is saved.
//
// An input is a head of one byte and the bytes of the file. Bits of the head:
//   0  the file begins with a whole image, so that the bytes behind it change a file that would be accepted
//   1  that image is of another build than the one in force
//   2  no build is in force
//   3  blocks that older files lack are asked for, in vain
//   4  the file is only taken in, as for the survey
#include <stdlib.h>
#include <unistd.h>

#include <QCoreApplication>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <utility>

#include "files/datafile.h"
#include "files/datatext.h"
#include "files/wholefile.h"
#include "image/catalogue.h"
#include "image/history.h"
#include "image/image.h"
#include "tuning/binding.h"
#include "tuning/display.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/codepage.h"
#include "util/desktop.h"
#include "util/diagnostics.h"
#include "util/store.h"

using namespace zandrel;

namespace {

constexpr std::size_t kLongestInput = 1 << 16;

using Blocks = std::array<ByteString, 256>;

[[noreturn]] void Surprise(const std::string& what) {
    std::fprintf(stderr, "SURPRISE: %s\n", what.c_str());
    std::abort();
}

struct Version {
    const char* Engine;
    const char* Number;
};
constexpr Version kInForce = {"RB26DETT", "6.42"};
constexpr Version kOther = {"B16A1", "1.50C"};

// --- What the bytes amount to, line by line -------------------------------------------------------------

struct Taken {
    Blocks Image;
    std::array<bool, 256> Present{};
    std::string Notes;  // in the code page
};

int DigitOf(char c) {
    const std::string digits = "0123456789ABCDEFabcdef";
    const auto at = digits.find(c);
    return at == digits.npos ? -1 : static_cast<int>(at < 16 ? at : at - 6);
}

int ValueOf(const std::string& digits) {
    int value = 0;
    for (const char c : digits) {
        if (DigitOf(c) < 0) break;
        value = value * 16 + DigitOf(c);
    }
    return value;
}

void TakeLine(const std::string& line, Taken& taken) {
    if (line.compare(0, 2, "TT") == 0) {
        taken.Notes += line.substr(2) + "\r\n";
        return;
    }
    if (line.size() < 4) return;
    const auto block = static_cast<std::size_t>(ValueOf(line.substr(0, 2)));
    taken.Image[block].clear();
    taken.Present[block] = true;
    for (std::size_t i = 2; i < line.size(); i += 2)
        taken.Image[block] += static_cast<char>(ValueOf(line.substr(i, 2)));
}

Taken Take(const std::string& bytes) {
    Taken taken;
    std::string line;
    for (const char c : bytes) {
        if (c == '\r' || c == '\n') {
            TakeLine(line, taken);
            line.clear();
        } else {
            line += c;
        }
    }
    TakeLine(line, taken);
    return taken;
}

std::string Trimmed(const ByteString& data, std::size_t length) {
    return Trim(FromCodePage(data.substr(0, length)));
}

std::string Written(const Blocks& image, const std::string& notes) {
    std::string bytes;
    const auto digits = [&bytes](std::size_t value) {
        char text[3];
        std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(value & 255));
        bytes += text;
    };
    for (std::size_t b = 0; b < image.size(); ++b) {
        if (image[b].empty()) continue;
        digits(b);
        for (const char c : image[b]) digits(static_cast<std::uint8_t>(c));
        bytes += "\r\n";
    }
    if (notes.empty()) return bytes;
    std::string rest = notes;
    for (std::size_t end = 0; (end = rest.find("\r\n")) != rest.npos; rest.erase(0, end + 2))
        bytes += "TT" + rest.substr(0, end) + "\r\n";
    return bytes + "TT" + rest + "\r\n";
}

// --- The program ----------------------------------------------------------------------------------------

struct State {
    Blocks Image = ReadData;
    std::array<bool, 256> Changed = BlockChanged, InForce = BlockInForce, Read = BlockRead,
                          Write = BlockWrite;
    std::array<bool, kTabs> Tabs = SSTab1.TabVisible;
    std::string Engine = VerName, Number = VerNumber, Notes = txtNotes.Text, Caption = MainFormState.Caption;
    // As far as anybody sees them.
    std::string Corner = SSTab1.TabVisible[0] ? Grid[0].TextMatrix[1][1] : "";
    std::string Setting = FraSettings[500].Visible ? txtSetting[500].Text : "";
    bool operator==(const State&) const = default;
};

// A full image of the build: every block that it reads, in its length.
Blocks ImageOf(const Version& version) {
    ApplySettingsProfile(version.Engine, version.Number);
    ApplyLogProfile(version.Engine, version.Number);
    Blocks image;
    for (std::size_t b = 0; b < image.size(); ++b) {
        if (BlockRead[b]) image[b].assign(BlockLength[b], static_cast<char>(b));
    }
    image[0xF3] = (std::string(version.Engine) + "        ").substr(0, 8);
    image[0xF5] = (std::string(version.Number) + "     ").substr(0, 5);
    return image;
}

class Program {
  public:
    Program() {
        static int count = 1;
        static char name[] = "datafile";
        static char* arguments[] = {name, nullptr};
        static const QCoreApplication application(count, arguments);
        std::string pattern = std::filesystem::temp_directory_path() / "zandrel-fuzz-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) Surprise("no folder");
        folder_ = pattern;
        ProgramFolder = "/dev/null";  // no file can stand in it, so nothing is logged
        setenv("ZANDREL_PORTS", "1=/nowhere", 1);
        Flush = [](int) { return true; };
        Store.Get = [this](const std::string& section, const std::string& key, const std::string& fallback) {
            const auto found = kept_.find(section + "/" + key);
            return found == kept_.end() ? fallback : found->second;
        };
        Store.Save = [this](const std::string& section, const std::string& key, const std::string& value) {
            kept_[section + "/" + key] = value;
        };
        Desktop.MessageBox = [this](const std::string& text, Box box) { return Ask(text, box); };
        Desktop.ChooseFile = [](const FileChoice&) -> std::string { Surprise("asked for a file"); };
        LoadSettingsDesign();
        LoadMapsDesign();
        LoadFilesDesign();
        MainFormReady = true;
        GridInit();
        images_[1] = ImageOf(kOther);
        images_[0] = ImageOf(kInForce);
        for (std::size_t i = 0; i < 2; ++i) texts_[i] = Written(images_[i], "");
    }
    ~Program() {
        unlink(Path().c_str());
        rmdir(folder_.c_str());
    }

    std::string Path() const { return folder_ + "/a.dat"; }
    const std::string& WholeFile(bool other) const { return texts_[other ? 1 : 0]; }

    // The same before every input.
    void Begin(bool noBuild, bool answerYes) {
        kept_.clear();
        told_.clear();
        yes_ = answerYes ? 2 : 0;
        mnuCheckUnsavedData.Checked = false;
        DataChanged = false;
        ReadData.fill({});
        txtNotes.Text.clear();
        BlockChanged.fill(false);
        BlockInForce.fill(false);
        MapCellChanged = {};
        ClearHistory();
        if (noBuild) {
            VerName.clear();
            VerNumber.clear();
            HideAllFrames();
            ClearBlockFlags();
            SSTab1.TabVisible.fill(false);
            SSTab1.TabVisible[kGeneralTab] = true;
            shown_ = false;
        } else {
            const bool shown = std::exchange(shown_, true);
            if (!shown) ImageOf(kInForce);
            VerName = kInForce.Engine;
            VerNumber = kInForce.Number;
            ReadData = images_[0];
            BlockInForce = BlockRead;
            BlockWrite[0x97] = BlockWrite[0x99] = true;
            BlockChanged[0x8D] = BlockChanged[0xFF] = true;
            txtNotes.Text = "notes\r\n";
            if (!shown) DisplayAllData();
        }
        SetCaption("before");
    }

    // Another image is on the display than the one to begin with.
    void Accepted() { shown_ = false; }

    // The critical box that came; empty for none.
    const std::string& Told() const { return told_; }

  private:
    Answer Ask(const std::string& text, Box box) {
        if (box == Box::Critical) {
            if (!told_.empty()) Surprise("told twice: " + told_ + ", " + text);
            told_ = text;
            return Answer::Ok;
        }
        if (text.rfind("This file does not contain Settings 4 ", 0) == 0)
            return yes_-- > 0 ? Answer::Yes : Answer::No;
        if (text.rfind("No COM port has been selected.", 0) == 0) return Answer::No;
        Surprise("asked: " + text);
    }

    std::string folder_;
    std::map<std::string, std::string> kept_;
    std::array<Blocks, 2> images_;
    std::array<std::string, 2> texts_;
    std::string told_;
    int yes_ = 0;
    bool shown_ = false;
};

void CheckText(const std::string& bytes, const Taken& taken) {
    DataText data;
    ParseDataText(bytes, data);
    if (data.Blocks != taken.Image) Surprise("other blocks than the lines hold");
    if (data.Present != taken.Present) Surprise("other records than the lines hold");
    if (data.Notes != FromCodePage(taken.Notes)) Surprise("other notes than the lines hold");
    const std::string written = FormatDataText(data.Blocks, data.Notes);
    if (written != Written(taken.Image, taken.Notes)) Surprise("written otherwise than told");
    DataText again;
    ParseDataText(written, again);
    if (again.Blocks != data.Blocks) Surprise("an image that does not survive");
    if (again.Notes != (data.Notes.empty() ? "" : data.Notes + "\r\n")) Surprise("notes that do not survive");
}

void CheckSurvey(const Program& program, const State& before, const Taken& taken) {
    if (!program.Told().empty()) Surprise("told something");
    State after;
    if (after.Image != taken.Image || after.Notes != FromCodePage(taken.Notes))
        Surprise("not what the file holds");
    for (std::size_t b = 0; b < 256; ++b) {
        if (after.InForce[b]) Surprise("unjudged bytes may be sent");
        if (after.Changed[b] != (before.Changed[b] && !taken.Present[b])) Surprise("wrong marks of changes");
    }
    after.Image = before.Image;
    after.Notes = before.Notes;
    after.Changed = before.Changed;
    after.InForce = before.InForce;
    if (!(after == before)) Surprise("more than the image has changed");
}

void CheckAccepted(const Taken& taken) {
    for (std::size_t b = 0; b < 256; ++b) {
        if (ReadData[b] != (BlockRead[b] ? taken.Image[b] : ByteString()))
            Surprise("not what the file holds");
        if (BlockRead[b] && ReadData[b].size() < BlockLength[b] && b != 0x97 && b != 0x99)
            Surprise("a block is missing");
        if (BlockChanged[b]) Surprise("a block is changed");
        if (BlockInForce[b] && ReadData[b].empty()) Surprise("an empty block may be sent");
    }
    for (std::size_t map = 0; map < kMapTabs; ++map) {
        for (int k = 0; SSTab1.TabVisible[map] && k < MapCellSize[map] * 4; ++k) {
            const auto b = static_cast<std::size_t>(MapFirstBlock[map] + k);
            if (BlockInForce[b] != (ReadData[b].size() <= 253)) Surprise("a block that no frame can carry");
        }
    }
    if (txtNotes.Text != FromCodePage(taken.Notes)) Surprise("other notes");
    if (MainFormState.FileTitle != "a.dat") Surprise("another title");
}

std::string FileBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || size > kLongestInput) return 0;
    static Program program;
    const std::uint8_t head = data[0];
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if ((head & 1) != 0) bytes.insert(0, program.WholeFile((head & 2) != 0));
    const Taken taken = Take(bytes);
    CheckText(bytes, taken);

    program.Begin((head & 4) != 0, (head & 8) != 0);
    std::ofstream(program.Path(), std::ios::binary) << bytes;
    const State before;
    std::string path = program.Path();
    OpenFile(path, (head & 16) == 0);
    if (GetSetting("RecentDatFiles", "RecentFile1", "") != program.Path()) Surprise("not in the list");
    if ((head & 16) != 0) {
        CheckSurvey(program, before, taken);
        return 0;
    }
    std::string name = Trimmed(taken.Image[0xF3], 8);
    const std::string number = Trimmed(taken.Image[name.empty() ? 0x6C : 0xF5], 5);
    if (name.empty()) name = Trimmed(taken.Image[0x6B], 8);
    const bool known = FindBuild(name + number) != nullptr && !name.empty();
    if (!known &&
        program.Told() != "a.dat[" + name + " v" + number +
                              "] is not recognised, or the Power-FC is not supported by this version")
        Surprise("an unknown version, and told: " + program.Told());
    if (known && !program.Told().empty() && program.Told().rfind("File Format Error: Missing Data ", 0) != 0)
        Surprise("a known version, and told: " + program.Told());
    if (!program.Told().empty()) {
        if (!(State() == before)) Surprise("a rejected file has left something");
        return 0;
    }
    program.Accepted();
    if (VerName != name || VerNumber != number) Surprise("another version");
    CheckAccepted(taken);
    SaveFile(program.Path());
    if (FileBytes(program.Path()) != Written(ReadData, taken.Notes)) Surprise("saved otherwise than told");
    return 0;
}
