// All output files of one command, written whole or not at all.
//
// Each output is first written to a fresh temporary file in its target's
// directory; every write and the close are checked (the tool writes with
// write(2) directly, so there is no buffer left to flush).
// Commit() renames the temporaries into place only after all of them were
// written, so a command that fails at any point leaves every existing file
// as it was, and two commands writing the same paths at once each leave
// whole files (the later rename wins). The temporaries are not synced to
// the disk before the rename: that would guard against a power loss, which
// no command run needs, at the cost of a disk flush per output file.
//
// A target that already exists and is not a regular file (a device such as
// /dev/null or /dev/stdout, a pipe) cannot be replaced by a rename: its
// content is kept in memory and written into it at Commit(), before any
// rename, with the same checks. A target that is a symbolic link is
// followed: the file it points to is replaced, the link stays.
#ifndef AIMHUE_TOOLS_OUTPUT_TRANSACTION_H_
#define AIMHUE_TOOLS_OUTPUT_TRANSACTION_H_

#include <cstddef>
#include <string>
#include <vector>

namespace aimhue {
namespace tool {

class OutputTransaction {
 public:
  OutputTransaction() = default;
  OutputTransaction(const OutputTransaction&) = delete;
  OutputTransaction& operator=(const OutputTransaction&) = delete;
  // Removes the temporaries of a transaction that was not committed.
  ~OutputTransaction();

  // Writes `size` bytes as the future content of `target`. CommandError
  // (exit status 4) naming `target` when the temporary cannot be created or
  // written, or `target` was already added.
  void Add(const std::string& target, const char* bytes, std::size_t size);
  void Add(const std::string& target, const std::string& bytes) {
    Add(target, bytes.data(), bytes.size());
  }

  // Writes the special targets, then renames every temporary into place.
  // CommandError (exit status 4) naming the file that failed; a failure
  // before the first rename leaves every target as it was.
  void Commit();

  // The targets in the order they were added.
  std::vector<std::string> Targets() const;

 private:
  struct Output {
    std::string target;     // as given
    std::string path;       // the file that is replaced (links followed)
    std::string temporary;  // empty for a special target
    std::string content;    // a special target's bytes
  };
  std::vector<Output> outputs_;
  bool committed_ = false;
};

}  // namespace tool
}  // namespace aimhue

#endif  // AIMHUE_TOOLS_OUTPUT_TRANSACTION_H_
