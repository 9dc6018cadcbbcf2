// The caller-buffer rules every record format shares, checked once for any
// record with ToBuffer and GetBufferSize.
#ifndef AIMHUE_TESTS_SUPPORT_BUFFER_RULES_H_
#define AIMHUE_TESTS_SUPPORT_BUFFER_RULES_H_

#include <aimhue/status.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace aimhue::testing {

// `record` serialises to `length` bytes: a buffer one byte short gives 13
// with the size and the bytes untouched, null pointers give 1, and a large
// enough buffer receives exactly `length` bytes with the size set to it.
template <typename Record>
void ExpectCallerBufferRules(const Record& record, uint64_t length) {
  const std::string untouched(length + 31, '#');
  std::string buffer = untouched;
  uint64_t size = length - 1;
  EXPECT_EQ(record.ToBuffer(buffer.data(), &size), kBufferTooSmall);
  EXPECT_EQ(size, length - 1);
  EXPECT_EQ(buffer, untouched);
  EXPECT_EQ(record.ToBuffer(nullptr, &size), kNullInput);
  EXPECT_EQ(record.ToBuffer(buffer.data(), nullptr), kNullInput);
  EXPECT_EQ(record.GetBufferSize(nullptr), kNullInput);
  size = buffer.size();
  EXPECT_EQ(record.ToBuffer(buffer.data(), &size), kOk);
  EXPECT_EQ(size, length);
  EXPECT_EQ(buffer.substr(length), std::string(31, '#'));
}

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_BUFFER_RULES_H_
