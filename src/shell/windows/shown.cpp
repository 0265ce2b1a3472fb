#include "shell/windows/shown.h"

#include <algorithm>
#include <cmath>

#include "util/numbers.h"
#include "util/text.h"

namespace zandrel {
namespace {

double Luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

// Step of a number's last decimal as the descriptor's scale spells it, without a sign or a bare point.
QString StepText(const std::string& scale) {
    const double step = std::fabs(LenientNumber(scale));
    return Shown(FormatNumber(step, ""));
}

}  // namespace

QString MemberName(const char* array, int index) {
    return QStringLiteral("%1(%2)").arg(QLatin1String(array)).arg(index);
}

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

QString Printable(const std::string& text) {
    QString shown = Shown(text);
    for (QChar& letter : shown) {
        if (!letter.isPrint()) letter = QLatin1Char(' ');
    }
    while (shown.endsWith(QLatin1Char(' '))) shown.chop(1);
    return shown;
}

QString WithoutMnemonic(const std::string& caption) {
    return Shown(caption).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString WithMnemonic(const std::string& caption, const QString& taken) {
    QString shown = Shown(caption);
    if (shown.contains(QLatin1Char('&'))) return shown;
    for (qsizetype i = 0; i < shown.size(); ++i) {
        if (!shown[i].isLetterOrNumber() || taken.contains(shown[i].toLower())) continue;
        return shown.insert(i, QLatin1Char('&'));
    }
    return shown;
}

QChar MnemonicOf(const QString& caption) {
    for (qsizetype i = caption.indexOf(QLatin1Char('&')); i >= 0 && i + 1 < caption.size();
         i = caption.indexOf(QLatin1Char('&'), i + 2)) {
        if (caption[i + 1] != QLatin1Char('&')) return caption[i + 1].toLower();
    }
    return {};
}

QColor ColourOf(std::uint32_t number) {
    return QColor(static_cast<int>(number & 255), static_cast<int>(number >> 8 & 255),
                  static_cast<int>(number >> 16 & 255));
}

double Contrast(const QColor& a, const QColor& b) {
    const double first = Luminance(a) + 0.05;
    const double second = Luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

QColor ReadableOn(const QColor& back) {
    return Contrast(back, Qt::black) >= Contrast(back, Qt::white) ? Qt::black : Qt::white;
}

QFont Scaled(QFont font, double factor) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * factor)));
    }
    return font;
}

QString FieldToolTip(const std::string& tag) {
    const auto parts = Split(tag, ',');
    if (parts.size() < 3) return {};
    const auto block = StrictWhole(parts[0]);
    if (!block) return {};
    QString text = QStringLiteral("Block %1, byte %2")
                       .arg(Shown(Hex2(static_cast<std::uint32_t>(*block))), Shown(parts[1]));
    if (parts.size() >= 6) text += QStringLiteral(", step %1").arg(StepText(parts[3]));
    return text;
}

int FieldCharacters(const std::string& tag) {
    constexpr int kFewest = 4;
    const auto parts = Split(tag, ',');
    if (parts.size() < 6) return kFewest;
    const int size = StrictWhole(parts[2]).value_or(1);
    const double lowest = size == 129 ? -128 : 0;
    const double highest = size == 2 ? 65535 : size == 129 ? 127 : 255;
    int longest = kFewest;
    for (const double raw : {lowest, highest}) {
        const double value = raw * LenientNumber(parts[3]) + LenientNumber(parts[4]);
        longest = std::max(longest, static_cast<int>(FormatNumber(value, parts[5]).size()));
    }
    return longest;
}

}  // namespace zandrel
