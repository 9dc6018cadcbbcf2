// Parsing of the tool's argument values: screen sizes, comma-separated
// number lists and white points given by name or as chromaticity.
//
// Each parser returns an empty optional for text it does not accept, and
// accepts only finite numbers: a NaN or an infinity given on the command
// line is a typing error, never a value to hand to the library.
#ifndef AIMHUE_TOOLS_ARGUMENTS_H_
#define AIMHUE_TOOLS_ARGUMENTS_H_

#include <optional>
#include <string>
#include <vector>

namespace aimhue {
namespace tool {

// A screen of `cols` x `rows` LEDs.
struct ScreenSize {
  int cols = 0;
  int rows = 0;
};

// Largest screen the tool generates: 100 million LEDs, about 3.6 GB of
// meter planes. Guards against a mistyped size allocating without bound.
constexpr long long kMaxScreenLeds = 100000000LL;

// "WIDTHxHEIGHT" (the separator 'x' or 'X'), both positive decimal integers
// whose product is at most kMaxScreenLeds, for example "1920x1080".
std::optional<ScreenSize> ParseScreenSize(const std::string& text);

// A comma-separated list of exactly `count` finite decimal numbers, each
// read as a 32-bit float ("0.98,0.98,0.97,0.95"). Blanks around the numbers
// are allowed.
std::optional<std::vector<float>> ParseFloatList(const std::string& text, std::size_t count);

// The comma-separated parts of `text`, blanks around each removed.
std::vector<std::string> SplitList(const std::string& text);

// Whether the whole text is a decimal number, of any magnitude ("1e-40",
// "1e400"); "nan", "inf" and hexadecimal numbers are not.
bool IsDecimalNumber(const std::string& text);

// One finite decimal number read as a 32-bit float; a number that underflows
// or overflows a 32-bit float is refused; the whole text must be
// the number.
std::optional<float> ParseFloat(const std::string& text);

// A white point chromaticity.
struct WhitePoint {
  std::string name;  // the standard illuminant's name, or "x,y" as given
  float x = 0.0f;
  float y = 0.0f;
};

// A named white (case-insensitive: D50, D55, D65, D75, D93, A, C, E, DCI)
// or a chromaticity "x,y" with 0 < x, 0 < y and x + y < 1.
std::optional<WhitePoint> ParseWhitePoint(const std::string& text);

// The names ParseWhitePoint knows, with their chromaticities, in a fixed
// order (for help texts).
const std::vector<WhitePoint>& NamedWhitePoints();

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_ARGUMENTS_H_
