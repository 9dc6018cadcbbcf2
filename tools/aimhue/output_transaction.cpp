// Outputs written to temporaries and renamed into place together.
#include "output_transaction.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "command_error.h"

namespace aimhue {
namespace tool {
namespace {

[[noreturn]] void Fail(const std::string& target, const char* what, int error) {
  throw CommandError(kExitOutput, "cannot write '" + target + "': " + what + ": " +
                                      std::strerror(error));
}

// Writes all bytes to `fd`, retrying short writes and interruptions.
bool WriteAll(int fd, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t written = ::write(fd, bytes, size);
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes += written;
    size -= static_cast<std::size_t>(written);
  }
  return true;
}

// The file a write to `target` replaces: the end of its chain of links.
std::string ResolveLinks(const std::string& target) {
  std::error_code error;
  std::filesystem::path path(target);
  for (int depth = 0; depth < 40 && std::filesystem::is_symlink(path, error); ++depth) {
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    if (error) break;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path.string();
}

}  // namespace

OutputTransaction::~OutputTransaction() {
  if (committed_) return;
  for (const Output& output : outputs_) {
    if (!output.temporary.empty()) ::unlink(output.temporary.c_str());
  }
}

void OutputTransaction::Add(const std::string& target, const char* bytes, std::size_t size) {
  for (const Output& output : outputs_) {
    if (output.target == target) {
      throw CommandError(kExitOutput, "'" + target + "' is given for two outputs");
    }
  }
  Output output;
  output.target = target;
  output.path = ResolveLinks(target);
  struct stat info {};
  if (::stat(output.path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
    if (S_ISDIR(info.st_mode)) Fail(target, "it is a directory", EISDIR);
    output.content.assign(bytes, size);
    outputs_.push_back(std::move(output));
    return;
  }
  const std::filesystem::path path(output.path);
  const std::filesystem::path folder = path.parent_path().empty() ? "." : path.parent_path();
  std::string pattern = (folder / ("." + path.filename().string() + ".XXXXXX")).string();
  const int fd = ::mkstemp(pattern.data());
  if (fd < 0) Fail(target, "cannot create a temporary file beside it", errno);
  output.temporary = pattern;
  outputs_.push_back(output);  // removed by the destructor from here on
  // mkstemp creates the file readable by its owner only; give it the mode a
  // new file of this process would get.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  if (::fchmod(fd, 0666 & ~mask) != 0 || !WriteAll(fd, bytes, size)) {
    const int error = errno;
    ::close(fd);
    Fail(target, "write failed", error);
  }
  if (::close(fd) != 0) Fail(target, "close failed", errno);
}

void OutputTransaction::Commit() {
  for (const Output& output : outputs_) {
    if (!output.temporary.empty()) continue;
    const int fd = ::open(output.path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) Fail(output.target, "cannot open it", errno);
    if (!WriteAll(fd, output.content.data(), output.content.size())) {
      const int error = errno;
      ::close(fd);
      Fail(output.target, "write failed", error);
    }
    // A device or pipe may refuse fsync (EINVAL); only its write and close
    // say whether the bytes were taken.
    if (::close(fd) != 0) Fail(output.target, "close failed", errno);
  }
  for (const Output& output : outputs_) {
    if (output.temporary.empty()) continue;
    if (::rename(output.temporary.c_str(), output.path.c_str()) != 0) {
      Fail(output.target, "cannot move the written file into place", errno);
    }
  }
  committed_ = true;
}

std::vector<std::string> OutputTransaction::Targets() const {
  std::vector<std::string> targets;
  for (const Output& output : outputs_) targets.push_back(output.target);
  return targets;
}

}  // namespace tool
}  // namespace aimhue
