// Files of an earlier run, kept until it is clear how the new run ends.
#pragma once

#include <string>
#include <vector>

namespace ormel {

/// What becomes of a file of an earlier run.
struct RunFile {
  enum class How {
    kSetAside,  ///< not there for the run; the run replaces it, or it is gone afterwards
    kReplace,   ///< not there for the run; comes back unless the run has written a new one
    kCopy,      ///< the run reads it and may overwrite it
    kWords,     ///< as kSetAside, but what a run that failed wrote in its place stays: it tells why
  };
  std::string path;
  How how = How::kSetAside;
};

/// Each file gets a companion `<name>.before`, and a journal in the same folder names them all first, so that
/// also a run that nobody ends is undone: the next opening calls Recover().  Exactly one of the endings takes
/// place; the destructor takes Finish().
class KeptFiles {
 public:
  KeptFiles() = default;
  ~KeptFiles() { Finish(); }
  KeptFiles(const KeptFiles&) = delete;
  KeptFiles& operator=(const KeptFiles&) = delete;

  /// All files lie in the journal's folder.  At most once.  Throws FileError when the journal cannot be
  /// written; nothing has happened then.
  void Keep(const std::string& journal, const std::vector<RunFile>& files);
  /// From here on an interruption no longer takes the old files back: what belongs to the new ones is being
  /// committed.
  void Committing() noexcept;

  /// The run counts: the old files go.
  void Finish() noexcept;
  /// The run does not count: the old files are back, and what it wrote in their place is gone - its words
  /// only when it was cancelled.
  void Restore(bool cancelled) noexcept;

  /// Undoes what an interrupted run has left: true when there was one.  Only for who holds the folder's lock.
  static bool Recover(const std::string& journal) noexcept;

 private:
  struct Kept {
    std::string path;
    RunFile::How how;
    bool existed;
  };
  static std::vector<Kept> ReadJournal(const std::string& journal, bool& committing);
  std::string journal_;
  std::vector<Kept> kept_;
};

}  // namespace ormel
