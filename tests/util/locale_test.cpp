// A desktop whose language writes numbers with a comma changes no text of the program.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLocale>
#include <clocale>
#include <locale>

#include "image/image.h"
#include "shell/settingsstore.h"
#include "support/cleanstate.h"
#include "tuning/binding.h"
#include "tuning/maps.h"
#include "tuning/settings.h"
#include "util/diagnostics.h"
#include "util/numbers.h"

namespace zandrel {
namespace {

struct CommaPoint : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

class CommaLocale : public CleanState {
  protected:
    CommaLocale() : standard_(std::locale::global(std::locale(std::locale(), new CommaPoint))) {
        QLocale::setDefault(QLocale(QLocale::German));
        // The C library speaks it too: the build makes the language in a folder of its own.
        setenv("LOCPATH", ZANDREL_LOCALES, 1);
        spoken_ = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr;
    }
    ~CommaLocale() override {
        std::setlocale(LC_NUMERIC, "C");
        QLocale::setDefault(QLocale::c());
        std::locale::global(standard_);
    }

    bool spoken_ = false;

  private:
    std::locale standard_;
};

TEST_F(CommaLocale, NumbersAreReadAndWrittenWithAPoint) {
    ASSERT_EQ(QLocale().decimalPoint(), ",");
    ASSERT_TRUE(spoken_);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(FormatNumber(4.5, "0.000"), "4.500");
    EXPECT_EQ(FormatNumber(0.25, ""), "0.25");
    EXPECT_EQ(FormatPoint(0.25, "0.00"), "0.25");
    EXPECT_EQ(StrictNumber("4.5"), 4.5);
    EXPECT_EQ(StrictNumber("4,5"), std::nullopt);
    EXPECT_EQ(LenientNumber("0.0030517578125"), 0.0030517578125);
}

// Every text of a build's settings and maps, under the comma and without it.
TEST_F(CommaLocale, NoShownTextChanges) {
    const auto texts = [] {
        GridInit();
        ApplyBuild("1JZ-GTE23.12");
        for (int b = 0; b < 256; ++b) {
            if (!BlockRead[b]) continue;
            ReadData[b].clear();
            for (int i = 0; i < BlockLength[b]; ++i) ReadData[b] += static_cast<char>(b * 7 + i * 13 + 1);
        }
        mnuMapRefLabels.Checked = true;
        DisplayAllData();
        std::vector<std::string> shown;
        for (const auto& [index, text] : txtSetting) shown.push_back(text.Text);
        for (BaseMapDisplay = 0; BaseMapDisplay <= 3; ++BaseMapDisplay) {
            for (int map = 0; map < 3; ++map) shown.push_back(GridCellText(map, 7, 9));
        }
        for (InjMapDisplay = 0; InjMapDisplay <= 2; ++InjMapDisplay) shown.push_back(GridCellText(0, 3, 4));
        shown.push_back(Grid[0].FormatString);
        BaseMapDisplay = InjMapDisplay = 0;
        return shown;
    };
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    const auto comma = texts();
    std::setlocale(LC_NUMERIC, "C");
    const std::locale standard = std::locale::global(std::locale::classic());
    const auto point = texts();
    std::locale::global(standard);
    EXPECT_EQ(comma, point);
    int fractions = 0;
    for (const std::string& text : comma) {
        EXPECT_EQ(text.find(','), text.npos) << text;
        fractions += text.find('.') != text.npos;
    }
    EXPECT_GT(fractions, 100);
}

TEST_F(CommaLocale, SettingsStoreWritesAndReadsAPoint) {
    SaveNumber("StoichAF", 14.68);
    EXPECT_EQ(GetSetting("Settings", "StoichAF", ""), "14.68");
    SaveNumber("MainLeft", 450.5);
    EXPECT_EQ(GetSingle("MainLeft", 0), 450.5F);
}

TEST_F(CommaLocale, LogLinesHaveAPoint) {
    DebugLog("entry");
    const std::string text = LogText();
    EXPECT_NE(text.find("0.00"), text.npos) << text;
    EXPECT_EQ(text.find("0,00"), text.npos) << text;
}

}  // namespace
}  // namespace zandrel
