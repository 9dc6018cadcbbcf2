#include "api/mask_image.h"

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <vector>

namespace aimhue {
namespace {

TEST(MaskImage, DescriptorChecksInOrder) {
  std::vector<unsigned char> pixels(400, 1);
  const struct {
    AimhueImage image;
    int status;
  } cases[] = {
      {{10, 10, 0, 100, pixels.data()}, kOk},
      {{10, 10, 0, 99, pixels.data()}, kInconsistentDescriptor},
      {{10, 10, 0, 100, nullptr}, kInconsistentDescriptor},
      {{0, 0, 0, 0, nullptr}, kEmptyInput},
      {{-3, 0, 0, 0, nullptr}, kEmptyInput},
      {{-3, -4, 0, 0, nullptr}, kInconsistentDescriptor},  // 12 cells by the size rule
      {{10, 10, 5, 400, pixels.data()}, kUnsupportedElementType},
      {{10, 10, 16, 300, pixels.data()}, kUnsupportedElementType},  // three channels
      {{0, 10, 0, 0, pixels.data()}, kInconsistentDescriptor},
      {{-10, 10, 0, 0, nullptr}, kInconsistentDescriptor},  // negative product
      {{10, 10, -8, 0, pixels.data()}, kInconsistentDescriptor},
      // 2^31 - 1 squared cells overflow any 32-bit size.
      {{0x7FFFFFFF, 0x7FFFFFFF, 0, 1, pixels.data()}, kInconsistentDescriptor},
  };
  for (const auto& c : cases) {
    cv::Mat mask = cv::Mat::ones(1, 1, CV_8UC1);
    const uchar* before = mask.data;
    EXPECT_EQ(CopyMaskImage(c.image, mask), c.status)
        << c.image.rows << " " << c.image.cols << " " << c.image.type << " " << c.image.size;
    if (c.status != kOk) {
      EXPECT_EQ(mask.data, before);
    }
  }
}

TEST(MaskImage, PixelsAreCopiedRowAfterRow) {
  const unsigned char pixels[6] = {0, 1, 2, 3, 4, 5};
  const AimhueImage image{2, 3, 0, 6, pixels};
  cv::Mat mask;
  ASSERT_EQ(CopyMaskImage(image, mask), kOk);
  ASSERT_EQ(mask.type(), CV_8UC1);
  EXPECT_EQ(mask.at<uchar>(1, 0), 3);
  EXPECT_NE(mask.data, pixels);
}

}  // namespace
}  // namespace aimhue
