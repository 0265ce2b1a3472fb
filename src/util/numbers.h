// Numbers to and from text, independent of the desktop's language, and the small arithmetic that every
// floor uses. Nothing here keeps state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zandrel {

/// The whole text as a number: blanks around it, a sign, decimal point, exponent or `&H` hexadecimal.
/// Anything else, an empty text, an overflow or a word such as "inf" gives no value.
std::optional<double> StrictNumber(std::string_view text);

/// As `StrictNumber`, rounded to the nearest whole number, ties to even; no value outside 32 bits.
std::optional<std::int32_t> StrictWhole(std::string_view text);

/// The number that `text` begins with, decimal or `&H` hexadecimal, leading blanks skipped; 0 for none.
double LenientNumber(std::string_view text);

/// The number that `text` begins with, as `LenientNumber` reads it; no value where it is too large.
std::optional<double> LeadingNumber(std::string_view text);

/// `text` with its comma as a point, where it is no number as it stands and is one then: the decimal comma
/// of a spreadsheet. Any other text as it stands.
std::string WithDecimalPoint(std::string_view text);

/// Nearest whole number, ties to even: 2.5 gives 2, 3.5 gives 4.
double RoundEven(double value);

/// `value` in a picture of the form "0", "0.0", "0.000"; an empty picture is the general form. Rounds the
/// exact binary value, ties to even, with a point as decimal mark and no minus before a zero.
std::string FormatNumber(double value, std::string_view picture);

/// `FormatNumber` for texts in files.
std::string FormatPoint(double value, std::string_view picture);

/// Number-to-text conversion of log lines: a leading blank before a number of 0 and above.
std::string NumberText(std::int64_t value);

/// Two upper-case hexadecimal digits; a value above 0xFF loses its upper digits.
std::string Hex2(std::uint32_t value);

/// Upper-case hexadecimal digits without a leading zero.
std::string Hex(std::uint32_t value);

/// Strict number of `text`; 0 for an empty text and for every failure.
double SafeNumber(std::string_view text);

float MinSingle(float a, float b);
float MaxSingle(float a, float b);

}  // namespace zandrel
