// A test helper: a fresh temporary folder for the files one test writes,
// removed with everything in it when the helper goes out of scope.
#ifndef AIMHUE_TESTS_SUPPORT_SCRATCH_DIR_H_
#define AIMHUE_TESTS_SUPPORT_SCRATCH_DIR_H_

#include <cstdint>
#include <string>
#include <vector>

namespace aimhue::testing {

class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;

  // The full name of `file` inside the folder.
  std::string Path(const std::string& file) const { return path_ + "/" + file; }
  // Writes `bytes` to `file` inside the folder and returns its full name.
  std::string Write(const std::string& file, const std::vector<uint8_t>& bytes) const;

 private:
  std::string path_;
};

// Reads a whole file; empty when it cannot be read.
std::vector<uint8_t> ReadBytes(const std::string& fullname);

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_SCRATCH_DIR_H_
