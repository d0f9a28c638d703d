// Files of an earlier run, kept until it is clear how the new run ends.
#pragma once

#include <string>
#include <vector>

namespace ormel {

/// Each file gets a companion `<name>.before`.  Exactly one of the two endings takes place; the destructor
/// takes Finish().
class KeptFiles {
 public:
  KeptFiles() = default;
  ~KeptFiles() { Finish(); }
  KeptFiles(const KeptFiles&) = delete;
  KeptFiles& operator=(const KeptFiles&) = delete;

  /// The file is not there for the run.
  void Delete(const std::string& path) { Move(path, After::kGone); }
  /// The file is not there for the run and comes back at Finish() unless the run has written a new one.
  void Replace(const std::string& path) { Move(path, After::kBackIfMissing); }
  /// The run reads the file and may overwrite it.
  void Copy(const std::string& path);

  /// The run counts: the old files go.
  void Finish() noexcept;
  /// The run does not count: the old files are back, and what it wrote in their place is gone.
  void Restore() noexcept;

 private:
  enum class After { kGone, kBackIfMissing };
  struct Kept {
    std::string path;
    After after;
  };
  void Move(const std::string& path, After after);
  std::vector<Kept> kept_;
  std::vector<std::string> absent_;  ///< were not there: what the run writes goes at Restore()
};

}  // namespace ormel
