// The engine's stored results, read from its 169-byte buffer image: the
// public interface gives the target block directly, and the NG limit and
// both search results only through this image.
#ifndef AIMHUE_TOOLS_ENGINE_IMAGE_H_
#define AIMHUE_TOOLS_ENGINE_IMAGE_H_

#include <array>
#include <cstddef>
#include <optional>

#include "report.h"

namespace aimhue {
namespace tool {

constexpr std::size_t kEngineImageSize = 169;

struct EngineImage {
  std::array<float, 4> fractions{};  // interpolation fractions
  float ngLimit = 0.0f;
  TargetBlock target{};
  TargetBlock searchEnd{};
  TargetBlock searchStart{};
};

// Decodes the image: the byte 'L', the 32-bit little-endian version 1, then
// 4 + 1 + 12 + 12 + 12 little-endian 32-bit floats. Empty for fewer than 169
// bytes, another first byte or another version.
std::optional<EngineImage> DecodeEngineImage(const char* bytes, std::size_t size);

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_ENGINE_IMAGE_H_
