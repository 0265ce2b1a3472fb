// How texts and colours of the records come onto the screen.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <cstdint>
#include <string>

namespace zandrel {

/// Object name of member `index` of a control array: "Grid(0)".
QString MemberName(const char* array, int index);

/// UTF-8 text as it stands.
QString Shown(const std::string& text);

/// A text held in a block: what cannot be printed becomes a blank, blanks at the end fall away.
QString Printable(const std::string& text);

/// A caption whose "&" is a letter like any other: no mnemonic comes of it.
QString WithoutMnemonic(const std::string& caption);

/// A caption with a mnemonic: the one that it marks itself, or its first letter or digit that is not in
/// `taken` (lower case). None is left: no mnemonic.
QString WithMnemonic(const std::string& caption, const QString& taken = {});

/// The mnemonic letter of a caption in lower case; null for none.
QChar MnemonicOf(const QString& caption);

/// A colour number with red in its low byte.
QColor ColourOf(std::uint32_t number);

/// Contrast of two colours, 1 to 21.
double Contrast(const QColor& a, const QColor& b);

/// Black or white, whichever reads better on `back`; their contrast is never below 4.5.
QColor ReadableOn(const QColor& back);

/// `font` in a size of `factor` times its own.
QFont Scaled(QFont font, double factor);

/// What the tool tip of a field tells from its descriptor: "Block 8D, byte 19, step 0.004". Empty for a
/// descriptor that names no field.
QString FieldToolTip(const std::string& tag);

/// Characters that the longest value of a number field takes.
int FieldCharacters(const std::string& tag);

}  // namespace zandrel
