// Decoding of the engine's buffer image.
#include "engine_image.h"

#include <cstdint>
#include <cstring>

namespace aimhue {
namespace tool {
namespace {

// Reads little-endian 32-bit words one after another.
class WordReader {
 public:
  explicit WordReader(const unsigned char* bytes) : bytes_(bytes) {}

  uint32_t Word() {
    const uint32_t word = static_cast<uint32_t>(bytes_[0]) |
                          static_cast<uint32_t>(bytes_[1]) << 8 |
                          static_cast<uint32_t>(bytes_[2]) << 16 |
                          static_cast<uint32_t>(bytes_[3]) << 24;
    bytes_ += 4;
    return word;
  }

  float Float() {
    const uint32_t word = Word();
    float value = 0.0f;
    std::memcpy(&value, &word, sizeof value);
    return value;
  }

  void Block(TargetBlock& block) {
    for (TargetLxy& point : block) {
      point.L = Float();
      point.x = Float();
      point.y = Float();
    }
  }

 private:
  const unsigned char* bytes_;
};

}  // namespace

std::optional<EngineImage> DecodeEngineImage(const char* bytes, std::size_t size) {
  if (bytes == nullptr || size < kEngineImageSize || bytes[0] != 'L') return std::nullopt;
  WordReader reader(reinterpret_cast<const unsigned char*>(bytes) + 1);
  if (reader.Word() != 1) return std::nullopt;
  EngineImage image;
  for (float& fraction : image.fractions) fraction = reader.Float();
  image.ngLimit = reader.Float();
  reader.Block(image.target);
  reader.Block(image.searchEnd);
  reader.Block(image.searchStart);
  return image;
}

}  // namespace tool
}  // namespace aimhue
