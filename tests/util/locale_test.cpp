// A desktop whose language writes numbers with a comma changes no text of the program.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLocale>
#include <clocale>
#include <locale>

#include "support/cleanstate.h"
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

TEST_F(CommaLocale, LogLinesHaveAPoint) {
    DebugLog("entry");
    const std::string text = LogText();
    EXPECT_NE(text.find("0.00"), text.npos) << text;
    EXPECT_EQ(text.find("0,00"), text.npos) << text;
}

}  // namespace
}  // namespace zandrel
