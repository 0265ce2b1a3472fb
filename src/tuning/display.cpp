#include "tuning/display.h"

#include <algorithm>

#include "image/image.h"
#include "tuning/mainform.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {

bool MainFormReady = false;
std::string CorvaneVer = "V2.0";
std::array<MenuItem, 2> mnuSetupCorvaneVer = {MenuItem{"V1.X"}, MenuItem{"V2.0"}};
MenuItem mnuReCalcBase = {.Caption = "ReCalc Base", .Enabled = false};
std::int16_t InjMapIndex = 0;
std::int16_t BaseMapIndex = kNoMap;
std::uint8_t FunctionSelectBlock = 0;
std::uint8_t SensorSelectBlock = 0;
std::uint8_t BlockA = 0, BlockB = 0, BlockC = 0;
std::uint8_t ExtraBlock = 0;
std::array<std::string, 3> MapRefBlock;

namespace {

// The tab that was in view when the display was set up.
int SavedTab = kGeneralTab;

void ShowTabIf(bool condition, int tab) {
    if (condition) SSTab1.TabVisible[static_cast<std::size_t>(tab)] = true;
}

int Number(std::string_view code) {
    return static_cast<int>(RoundEven(LenientNumber(code)));
}

std::uint8_t Byte(std::string_view code) {
    return static_cast<std::uint8_t>(Number(code));
}

// A code with bit 8 set stands for the block below it in its longer layout: brings the code down to a
// block number and tells which layout it is.
bool TakeLongLayout(std::string& code) {
    if (Number(code) < 256) return false;
    code = std::to_string(Number(code) - 256);
    return true;
}

// Registers a block, readable and writable, and shows its frame.
bool Group(std::string_view code, int frame, int length, const FrameRanges& ranges = {}) {
    SetBlockInfo(code, length, true, true);
    return SetupFrame(frame, code, 0, ranges);
}

FrameRanges Texts(int first, int last) {
    FrameRanges ranges;
    ranges.Texts = {first, last};
    return ranges;
}

void Rewrite(ControlArray& array, int frame, Range range, std::string_view code) {
    for (int i = frame + range.First; i <= frame + range.Last; ++i) {
        if (ControlExists(array, i) && array[i].Frame == frame) SetTagField(array[i], code, 0);
    }
}

void RewriteCurves(int frame, Range range, std::string_view code) {
    for (int i = frame + range.First; i <= frame + range.Last; ++i) {
        if (!ControlExists(cmdEditCurve, i) || cmdEditCurve[i].Frame != frame) continue;
        auto sections = Split(cmdEditCurve[i].Tag, ';');
        for (std::size_t axis = 1; axis <= 2 && axis < sections.size(); ++axis) {
            if (Split(sections[axis], ',')[0] != "Const")
                sections[axis] = ReplaceField(sections[axis], code, 0);
        }
        cmdEditCurve[i].Tag = Join(sections, ';');
    }
}

// The rev and idle frame ends under the last row that the build has.
void EndRevIdleFrameUnder(int index) {
    FraSettings[120].Height = txtSetting[index].Top + txtSetting[index].Height + 80;
}

void SetupMaps(const SettingsRecord& record) {
    std::int16_t map = 0;
    InjMapIndex = 0;
    BaseMapIndex = kNoMap;
    mnuReCalcBase.Enabled = false;

    struct MapField {
        int Argument;
        const char* Name;
        const char* Suffix;
    };
    static constexpr MapField kMapFields[] = {
        {2, "InjMap", ",1,0.00390625,0.5,0.000,0,255"},
        {3, "IgnMap", ",1,1,0,0,0,255"},
        {4, "IglMap", ",1,1,-25,0,0,255"},
        {5, "IgtMap", ",1,1,-25,0,0,255"},
        {6, "VvtMap", ",1,1,0,0,0,255"},
        {7, "VvinMap", ",1,1,0,0,0,255"},
        {8, "VvexMap", ",1,1,0,0,0,255"},
        {9, "BaseMap", ",2,0.004,0,0.000,0,65535"},
    };
    for (const MapField& field : kMapFields) {
        const std::string split = field.Argument == 5 ? tr("DisplaySplit") : "";
        const bool exists = SetupMapTab(record[static_cast<std::size_t>(field.Argument - 1)], field.Name, map,
                                        split, field.Suffix);
        if (field.Argument == 2) comMapType[InjMapIndex].Visible = true;
        if (field.Argument == 9 && exists) {
            mnuReCalcBase.Enabled = true;
            BaseMapIndex = static_cast<std::int16_t>(map - 1);
            comMapType[BaseMapIndex].Visible = true;
            comMapType[BaseMapIndex].ListIndex = BaseMapDisplay;
        }
    }
    if (SetupMapTab(record[9], "BaseVT1", map, "", ",2,0.004,0,0.000,0,65535") && map > 1) {
        const int second = map - 1;
        SSTab1.TabCaption[static_cast<std::size_t>(second - 1)] = tr("BaseVT0");
        MapBaseTable[static_cast<std::size_t>(second - 1)] = 1;
        MapBaseTable[static_cast<std::size_t>(second)] = 2;
        comMapType[second].Visible = true;
        comMapType[second].ListIndex = BaseMapDisplay;
    }
    SSTab1.TabsPerRow = kTabs;
    for (int tab = map; tab < kGeneralTab; ++tab) SSTab1.TabVisible[static_cast<std::size_t>(tab)] = false;
}

void SetupTransmission(std::string_view code) {
    if (code != "L-AT1" && code != "L-AT2") return;
    ShowTabIf(true, 11);
    Group("&H40", 600, 24);
    Group("&H41", 630, 24);
    Group("&H42", 660, 12);
    Group("&H43", 680, 12);
    if (code == "L-AT2") Group("&H44", 700, 9);
}

void SetupMapReference(std::string_view code) {
    const bool readOnly = code == "&H51";
    for (int i = 300; i <= 339; ++i) txtSetting[i].Locked = readOnly;
    const std::string block(code);
    cmdEditCurve[300].Tag =
        std::string(readOnly ? "20,LockX,LockY;" : "20;") + block + ",1,2,2,1,0,0;" + block + ",41,2,2,1,0,0";
}

// The air-flow curves lie over volts, or over the frequency of the sensor.
void SetupAirFlowCurves(std::string code) {
    const bool frequency = TakeLongLayout(code);
    if (!Group(code, 370, 64, {.Texts = {}, .Labels = {}, .Options = {}, .Checks = {}, .Curves = kNone}))
        return;
    SetXscale(frequency ? 0.001 : 0.005);
    SetXName(frequency ? "Kpm Frq" : "Voltage");
    for (int i = 370; i <= 374; ++i) {
        auto sections = Split(cmdEditCurve[i].Tag, ';');
        sections[1] = ReplaceField(sections[1], frequency ? "0.001" : "0.005", 4);
        cmdEditCurve[i].Tag = Join(sections, ';');
    }
}

bool AnyOf(const auto& record, int first, int last) {
    return std::any_of(record.begin() + first - 1, record.begin() + last,
                       [](std::string_view code) { return !code.empty(); });
}

}  // namespace

void SetBlockInfo(std::string_view code, int length, bool readable, bool writable) {
    // Codes come from the catalogue, whose self-check holds every one of them in range.
    static_cast<void>(RegisterBlock(code, length, readable, writable));
}

void HideAllFrames() {
    for (auto& [index, frame] : FraSettings) frame.Visible = frame.Enabled = false;
}

void SetFrameEnabled(int frame, bool enabled) {
    FraSettings[frame].Visible = true;
    FraSettings[frame].Enabled = enabled;
    for (ControlArray* array :
         {&txtSetting, &lblGeneral, &lblSetting, &optSetting, &chkSetting, &cmdEditCurve}) {
        for (int i = frame; i <= frame + 9; ++i) {
            if (ControlExists(*array, i)) (*array)[i].Enabled = enabled;
        }
    }
}

bool SetupFrame(int frame, std::string_view code, int field, const FrameRanges& ranges) {
    if (code.empty()) return false;
    FraSettings[frame].Visible = FraSettings[frame].Enabled = true;
    SetTagField(FraSettings[frame], code, field);
    Rewrite(txtSetting, frame, ranges.Texts, code);
    Rewrite(lblSetting, frame, ranges.Labels, code);
    Rewrite(optSetting, frame, ranges.Options, code);
    Rewrite(chkSetting, frame, ranges.Checks, code);
    RewriteCurves(frame, ranges.Curves, code);
    return true;
}

bool SetupMapTab(std::string_view code, const std::string& name, std::int16_t& tabIndex,
                 const std::string& splitCaption, std::string_view tagSuffix) {
    if (code.empty() || tabIndex >= kMapTabs) return false;
    const int i = tabIndex;
    const auto at = static_cast<std::size_t>(i);
    comMapType[i].Visible = false;
    SSTab1.TabCaption[at] = tr(name);
    SSTab1.TabVisible[at] = true;
    chkSplit[i].Value = 0;
    chkSplit[i].Caption = splitCaption;
    chkSplit[i].Visible = !splitCaption.empty();
    Grid[i].Tag = std::string(code) + std::string(tagSuffix);
    TakeMapTag(i);
    MapBaseTable[at] = 0;
    for (int k = 0; k < MapCellSize[at] * 4; ++k) {
        SetBlockInfo(std::to_string(Number(code) + k), 100, true, false);
    }
    if (i > 0) {
        comMapType[i].Items = {"Base (msec)", "Base x INJ (msec)", "Head room (msec)", "Fuel duty (%)"};
        comMapType[i].ListIndex = -1;
    }
    ++tabIndex;
    return true;
}

void DisplayInit1(const SettingsRecord& record) {
    if (!MainFormReady) return;
    const auto argument = [&record](int n) { return std::string(record[static_cast<std::size_t>(n - 1)]); };
    ClearBlockFlags();
    HideAllFrames();
    const bool pressure = record[0] == "D";
    lblGeneral[200].Caption = pressure ? "PIM kg/m²" : "Load";
    lblGeneral[300].Caption = pressure ? "PIM" : "Load";
    SavedTab = SSTab1.Tab;
    SetupMaps(record);
    SetupTransmission(record[0]);

    // Page 1
    ShowTabIf(true, 6);
    FrameRanges only;
    only.Labels = {0, 0};
    SetBlockInfo(argument(11), 8, true, false);
    SetupFrame(190, argument(11), 0, only);
    only.Labels = {1, 1};
    SetBlockInfo(argument(12), 5, true, false);
    SetupFrame(190, argument(12), 1, only);
    Group(argument(13), 100, 11, Texts(0, 7));
    if (argument(13).empty() && argument(15).empty()) {
        Group(argument(14), 1100, 13);
    } else {
        SetBlockInfo(argument(14), 13, true, false);
        SetupFrame(100, argument(14), 1,
                   {.Texts = {8, 11}, .Labels = kNone, .Options = kNone, .Checks = {}, .Curves = {}});
    }
    Group(argument(15), 2100, 11, Texts(0, 7));
    if (Group(argument(16), 120, 10)) EndRevIdleFrameUnder(124);
    if (Group(argument(17), 120, 12)) EndRevIdleFrameUnder(125);
    if (Group(argument(18), 120, 14)) EndRevIdleFrameUnder(126);
    std::string code = argument(19);
    if (TakeLongLayout(code)) {
        Group(code, 1120, 18);
    } else if (Group(code, 120, 16)) {
        EndRevIdleFrameUnder(127);
    }
    Group(argument(20), 130, 9);
    code = argument(21);
    if (TakeLongLayout(code) ? Group(code, 1140, 136) : Group(code, 140, 85))
        FunctionSelectBlock = Byte(code);
    Group(argument(22), 155, 4);
    Group(argument(23), 150, 4);
    Group(argument(24), 160, 4);
    Group(argument(25), 170, 3);
    code = argument(27);
    if (TakeLongLayout(code)) {
        Group(code, 1180, 14);
    } else {
        Group(code, 180, 10);
    }

    // Page 2
    ShowTabIf(AnyOf(record, 28, 38), 7);
    const auto showBoostRow = [](bool visible) {
        txtSetting[212].Visible = txtSetting[213].Visible = visible;
    };
    if (Group(argument(28), 200, 14, Texts(0, 13))) showBoostRow(true);
    if (Group(argument(29), 200, 12, Texts(0, 11))) showBoostRow(false);
    Group(argument(30), 215, 25, Texts(0, 14));
    Group(argument(31), 1215, 20);
    Group(argument(32), 230, 12);
    Group(argument(33), 240, 9);
    Group(argument(34), 250, 9, Texts(0, 5));
    Group(argument(35), 256, 12, Texts(0, 11));
    Group(argument(36), 270, 12);
    Group(argument(37), 280, 8);
    Group(argument(38), 290, 6);

    // Page 3
    ShowTabIf(AnyOf(record, 39, 45) || AnyOf(record, 51, 52), 8);
    MapRefBlock = {argument(39), "&H60", "&H61"};
    if (Group(argument(39), 300, 80, Texts(0, 39))) SetupMapReference(argument(39));
    Group(argument(40), 1300, 80, Texts(0, 39));
    Group(argument(41), 2300, 80, Texts(0, 39));
    if (Group(argument(42), 340, 107,
              {.Texts = kNone, .Labels = {}, .Options = {}, .Checks = {}, .Curves = {}})) {
        SetupFrame(350, argument(42), 0, Texts(0, 15));
        SensorSelectBlock = Byte(argument(42));
    }
    SetBlockInfo(argument(43), 20, true, true);
    SetupFrame(340, argument(43), 1,
               {.Texts = {}, .Labels = kNone, .Options = kNone, .Checks = {}, .Curves = {}});
    if (Group(argument(44), 1340, 107)) SensorSelectBlock = Byte(argument(44));
    SetupAirFlowCurves(argument(45));
    for (int n = 46; n <= 50; ++n) SetBlockInfo(argument(n), 64, true, true);
    Group(argument(51), 380, 6);
    Group(argument(52), 390, 3);

    // Page 4
    ShowTabIf(AnyOf(record, 53, 58), 9);
    Group(argument(53), 400, 4);
    Group(argument(54), 410, 4);
    Group(argument(55), 1410, 4);
    Group(argument(56), 420, 6);
    if (Group(argument(57), 430, 6)) FraSettings[430].Caption = "IGN Dwell vs RPM";
    if (Group(argument(58), 440, 6)) FraSettings[430].Caption = "IGL Dwell vs RPM";
}

void DisplayInit2(const LogRecord& record) {
    const auto argument = [&record](int n) { return std::string(record[static_cast<std::size_t>(n - 1)]); };
    ShowTabIf(AnyOf(record, 1, 4), 9);
    ShowTabIf(true, 10);
    Group(argument(1), 450, 6);
    Group(argument(2), 460, 2);
    Group(argument(3), Number(argument(3)) == 153 ? 1470 : 470, 8);
    Group(argument(4), 480, 4);
    if (Group(argument(5), 500, 24, Texts(0, 11))) {
        for (int i = 500; i <= 505; ++i) lblGeneral[i].Enabled = true;
    }
    Group(argument(6), 1500, 24);
    SetBlockInfo(argument(7), 1, true, false);
    if (Group(argument(8), 520, 12)) FraSettings[520].Caption = "Inj Lag (mS) vs BatV";
    if (Group(argument(9), 530, 12)) FraSettings[520].Caption = "InjPr Lag (mS) vs BatV";
    Group(argument(10), 540, 6);

    if (MapFirstBlock[0] != 0x56) {
        SetBlockInfo("&HAD", 8, true, true);
        FraSettings[550].Visible = FraSettings[550].Enabled = true;
    }
    FraSettings[560].Visible = FraSettings[560].Enabled = true;

    BlockA = Byte(argument(11));
    BlockB = Byte(argument(12));
    BlockC = Byte(argument(13));
    std::string names = argument(15);
    if (TakeLongLayout(names)) {
        SetBlockInfo(names, 48, true, false);
        SetBlockInfo("&HEB", 72, true, false);
    } else {
        SetBlockInfo(names, 80, true, false);
    }
    ExtraBlock = Byte(names);
    for (int i = 0; i < 8; ++i) lblRevIdle[120 + i].Caption = tr(argument(16 + i));
    InitLogChannels(record);

    SSTab1.TabsPerRow =
        static_cast<int>(std::count(SSTab1.TabVisible.begin(), SSTab1.TabVisible.end(), true));
    SSTab1.Tab = SSTab1.TabVisible[static_cast<std::size_t>(SavedTab)] ? SavedTab : kGeneralTab;
    SetCaption("");
}

void DisplayInitForCorvaneVer() {
    const bool antiLag = CorvaneVer == "V1.X";
    chkSettingBit[552].Visible = antiLag;
    txtSetting[550].Visible = txtSetting[551].Visible = antiLag;
    for (int i = 0; i < 3; ++i) lblAntiLag[i].Visible = antiLag;
    chkSettingBit[553].Visible = !antiLag;
    lblInternalPullups.Visible = !antiLag;
    mnuSetupCorvaneVer[0].Checked = CorvaneVer == "V1.X";
    mnuSetupCorvaneVer[1].Checked = CorvaneVer == "V2.0";
}

bool ApplySettingsProfile(const std::string& engine, const std::string& version) {
    const Build* build = FindBuild(engine + version);
    if (build == nullptr) return false;
    DisplayInit1(SettingsRecordOf(*build));
    return true;
}

bool ApplyLogProfile(const std::string& engine, const std::string& version) {
    const Build* build = FindBuild(engine + version);
    if (build == nullptr) return false;
    DisplayInit2(LogRecordOf(*build));
    return true;
}

bool IsKnownVersion(const std::string& engine, const std::string& version) {
    MainFormReady = false;
    const bool known = ApplySettingsProfile(engine, version);
    MainFormReady = true;
    return known;
}

}  // namespace zandrel
