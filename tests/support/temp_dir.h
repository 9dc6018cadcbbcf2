// A scratch directory for tests that write files, removed with its content
// when the test ends.
#ifndef AIMHUE_TESTS_SUPPORT_TEMP_DIR_H_
#define AIMHUE_TESTS_SUPPORT_TEMP_DIR_H_

#include <filesystem>
#include <string>

namespace aimhue::testing {

class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // The full name of `name` inside the directory.
  std::string Path(const std::string& name) const;

  // Writes `bytes` to `name` inside the directory and returns its full name.
  std::string Write(const std::string& name, const std::string& bytes) const;

 private:
  std::filesystem::path root_;
};

// The whole content of a file ("" when it cannot be read).
std::string ReadFileBytes(const std::string& fullname);

// The full name of a file under tests/data.
std::string TestDataPath(const std::string& name);

}  // namespace aimhue::testing

#endif  // AIMHUE_TESTS_SUPPORT_TEMP_DIR_H_
