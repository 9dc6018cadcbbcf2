#include "support/scratch_dir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace aimhue::testing {

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "aimhue-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string ScratchDir::Write(const std::string& file, const std::vector<uint8_t>& bytes) const {
  const std::string fullname = Path(file);
  std::ofstream out(fullname, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  return fullname;
}

std::vector<uint8_t> ReadBytes(const std::string& fullname) {
  std::ifstream in(fullname, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace aimhue::testing
