#include "support/temp_dir.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <unistd.h>

namespace aimhue::testing {

TempDir::TempDir() {
  static std::atomic<int> counter{0};
  root_ = std::filesystem::temp_directory_path() /
          ("aimhue-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
  std::filesystem::create_directories(root_);
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

std::string TempDir::Path(const std::string& name) const { return (root_ / name).string(); }

std::string TempDir::Write(const std::string& name, const std::string& bytes) const {
  const std::string fullname = Path(name);
  std::ofstream file(fullname, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + fullname);
  return fullname;
}

std::string ReadFileBytes(const std::string& fullname) {
  std::ifstream file(fullname, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::string TestDataPath(const std::string& name) {
  return std::string(AIMHUE_TEST_DATA_DIR) + "/" + name;
}

}  // namespace aimhue::testing
