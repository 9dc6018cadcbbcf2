// Parsing of sizes, number lists and white points.
#include "arguments.h"

#include <aimhue/colorimetry.h>

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>

namespace aimhue {
namespace tool {
namespace {

std::string Trim(const std::string& text) {
  std::size_t begin = 0;
  std::size_t end = text.size();
  while (begin < end && std::isspace(static_cast<unsigned char>(text[begin]))) ++begin;
  while (end > begin && std::isspace(static_cast<unsigned char>(text[end - 1]))) --end;
  return text.substr(begin, end - begin);
}

}  // namespace

std::vector<std::string> SplitList(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (true) {
    const std::size_t comma = text.find(',', start);
    parts.push_back(Trim(text.substr(start, comma - start)));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return parts;
}

namespace {

// A positive decimal integer of at most nine digits, nothing else.
std::optional<int> ParsePositiveInt(const std::string& text) {
  if (text.empty() || text.size() > 9) return std::nullopt;
  int value = 0;
  for (const char c : text) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return std::nullopt;
    value = value * 10 + (c - '0');
  }
  if (value <= 0) return std::nullopt;
  return value;
}

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

std::optional<ScreenSize> ParseScreenSize(const std::string& text) {
  const std::string trimmed = Trim(text);
  const std::size_t separator = trimmed.find_first_of("xX");
  if (separator == std::string::npos) return std::nullopt;
  const auto cols = ParsePositiveInt(trimmed.substr(0, separator));
  const auto rows = ParsePositiveInt(trimmed.substr(separator + 1));
  if (!cols || !rows) return std::nullopt;
  if (static_cast<long long>(*cols) * *rows > kMaxScreenLeds) return std::nullopt;
  return ScreenSize{*cols, *rows};
}

bool IsDecimalNumber(const std::string& text) {
  const std::string trimmed = Trim(text);
  if (trimmed.empty()) return false;
  // Only plain decimal notation: strtod would also take "nan", "inf" and
  // hexadecimal numbers.
  for (const char c : trimmed) {
    if (!std::isdigit(static_cast<unsigned char>(c)) && c != '.' && c != '-' && c != '+' &&
        c != 'e' && c != 'E') {
      return false;
    }
  }
  char* end = nullptr;
  std::strtod(trimmed.c_str(), &end);
  return end == trimmed.c_str() + trimmed.size();
}

namespace {

// The whole of `text` read by `convert` (std::strtof or std::strtod), when it
// is finite and neither overflows nor underflows.
template <typename Number, typename Convert>
std::optional<Number> ReadWhole(const std::string& text, Convert convert) {
  errno = 0;
  char* end = nullptr;
  const Number value = convert(text.c_str(), &end);
  if (end != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

std::optional<float> ParseFloat(const std::string& text) {
  if (!IsDecimalNumber(text)) return std::nullopt;
  return ReadWhole<float>(Trim(text),
                          [](const char* begin, char** end) { return std::strtof(begin, end); });
}

std::optional<std::vector<float>> ParseFloatList(const std::string& text, std::size_t count) {
  const std::vector<std::string> parts = SplitList(text);
  if (parts.size() != count) return std::nullopt;
  std::vector<float> values;
  for (const std::string& part : parts) {
    const auto value = ParseFloat(part);
    if (!value) return std::nullopt;
    values.push_back(*value);
  }
  return values;
}

const std::vector<WhitePoint>& NamedWhitePoints() {
  // CIE 1931 2-degree chromaticities of the standard illuminants and of the
  // cinema white; D93 is the 9300 K daylight locus point used for displays.
  static const std::vector<WhitePoint> kWhites = {
      {"D50", 0.3457f, 0.3585f}, {"D55", 0.3324f, 0.3474f}, {"D65", 0.3127f, 0.3290f},
      {"D75", 0.2990f, 0.3149f}, {"D93", 0.2831f, 0.2971f}, {"A", 0.4476f, 0.4074f},
      {"C", 0.3101f, 0.3162f},   {"E", 1.0f / 3.0f, 1.0f / 3.0f}, {"DCI", 0.314f, 0.351f},
  };
  return kWhites;
}

std::optional<double> ParseKelvin(const std::string& text) {
  const std::string trimmed = Trim(text);
  if (trimmed.size() < 2 || (trimmed.back() != 'K' && trimmed.back() != 'k')) return std::nullopt;
  // Read in double: a temperature such as 6504.38938305 K keeps its digits.
  const std::string number = trimmed.substr(0, trimmed.size() - 1);
  if (!ParseFloat(number)) return std::nullopt;  // plain decimal notation only
  return ReadWhole<double>(number,
                           [](const char* begin, char** end) { return std::strtod(begin, end); });
}

std::optional<WhitePoint> ParseWhitePoint(const std::string& text) {
  const std::string key = Lower(Trim(text));
  for (const WhitePoint& white : NamedWhitePoints()) {
    if (Lower(white.name) == key) return white;
  }
  if (const auto kelvin = ParseKelvin(text)) {
    if (!(*kelvin >= kDaylightMinKelvin && *kelvin <= kDaylightMaxKelvin)) return std::nullopt;
    const cv::Vec2d xy = DaylightXy(*kelvin);
    return WhitePoint{Trim(text), static_cast<float>(xy[0]), static_cast<float>(xy[1])};
  }
  const auto xy = ParseFloatList(text, 2);
  if (!xy) return std::nullopt;
  const float x = (*xy)[0];
  const float y = (*xy)[1];
  if (!(x > 0.0f) || !(y > 0.0f) || !(x + y < 1.0f)) return std::nullopt;
  return WhitePoint{Trim(text), x, y};
}

}  // namespace tool
}  // namespace aimhue
