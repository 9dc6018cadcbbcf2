#include "engine_image.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace aimhue {
namespace tool {
namespace {

// A 169-byte image: 'L', version, then 41 floats with the values 0, 1, 2, ...
std::vector<char> CountingImage() {
  std::vector<char> bytes(kEngineImageSize);
  bytes[0] = 'L';
  const uint32_t version = 1;
  std::memcpy(&bytes[1], &version, 4);
  for (int i = 0; i < 41; ++i) {
    const float value = static_cast<float>(i);
    std::memcpy(&bytes[5 + 4 * i], &value, 4);
  }
  return bytes;
}

TEST(DecodeEngineImage, ReadsTheFieldsInStoredOrder) {
  const std::vector<char> bytes = CountingImage();
  const auto image = DecodeEngineImage(bytes.data(), bytes.size());
  ASSERT_TRUE(image);
  EXPECT_EQ(image->fractions[0], 0.0f);
  EXPECT_EQ(image->fractions[3], 3.0f);
  EXPECT_EQ(image->ngLimit, 4.0f);
  EXPECT_EQ(image->target[0].L, 5.0f);
  EXPECT_EQ(image->target[3].y, 16.0f);
  EXPECT_EQ(image->searchEnd[0].L, 17.0f);
  EXPECT_EQ(image->searchStart[0].L, 29.0f);
  EXPECT_EQ(image->searchStart[3].y, 40.0f);
}

TEST(DecodeEngineImage, RejectsShortImagesAndWrongHeaders) {
  std::vector<char> bytes = CountingImage();
  EXPECT_FALSE(DecodeEngineImage(bytes.data(), bytes.size() - 1));
  EXPECT_FALSE(DecodeEngineImage(nullptr, bytes.size()));
  bytes[0] = 'B';
  EXPECT_FALSE(DecodeEngineImage(bytes.data(), bytes.size()));
  bytes[0] = 'L';
  bytes[1] = 2;
  EXPECT_FALSE(DecodeEngineImage(bytes.data(), bytes.size()));
}

}  // namespace
}  // namespace tool
}  // namespace aimhue
