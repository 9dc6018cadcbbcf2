// A plain main for a fuzz target, so that its corpus runs in every build
// without libFuzzer: each argument is a file, or a folder whose files are
// read in name order, and every file's bytes go through
// LLVMFuzzerTestOneInput once. A property that fails aborts, as under the
// fuzzer; the exit status is 1 when a path cannot be read or no file was
// found, so that a missing corpus is not taken for a passing one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return false;
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
      std::vector<std::filesystem::path> inside;
      for (const auto& entry : std::filesystem::directory_iterator(path, error)) {
        if (entry.is_regular_file()) inside.push_back(entry.path());
      }
      std::sort(inside.begin(), inside.end());
      files.insert(files.end(), inside.begin(), inside.end());
    } else {
      files.push_back(path);
    }
  }
  for (const auto& file : files) {
    if (!Replay(file)) {
      std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
      return 1;
    }
  }
  std::printf("%zu inputs replayed\n", files.size());
  return files.empty() ? 1 : 0;
}
