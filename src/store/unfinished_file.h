// A file under a name of its own while it is being made; for the store's own files.
#pragma once

#include <string>
#include <string_view>

namespace ormel {

/// Removed, with its journal, unless Keep() gives it its name.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& path);
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  ~UnfinishedFile();

  const std::string& name() const { return temporary_; }
  /// Writes `bytes` and waits until the disk has them.  Throws StoreError.
  void Write(std::string_view bytes);
  /// Throws StoreError; kFileExists when a file of that name has come up in the meantime.
  void Keep();

 private:
  std::string path_;
  std::string temporary_;
  bool kept_ = false;
};

}  // namespace ormel
