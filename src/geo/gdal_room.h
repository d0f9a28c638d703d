// The way into the library: started once, its drivers restricted, its messages caught.  Only for files of
// this folder.
#pragma once

#include <string>
#include <vector>

namespace ormel::geo_detail {

/// Drivers that read files of the user.  Others are not registered, so that no file can lead to them.
std::vector<std::string> VectorDrivers();
std::vector<std::string> RasterDrivers();

/// Registers the drivers and shuts off every way to a network.  Safe to call from several threads.
void Start();

/// Bytes of a file, or of all files of a folder.  Throws GeoError when nothing of that name is there, when
/// the name is not one of a file on a disk, or when it is larger than `limit`.
unsigned long long CheckedSize(const std::string& path, unsigned long long limit);

/// Keeps what the library has to say on this thread while it lives, instead of letting it print.
class Messages {
 public:
  Messages();
  ~Messages();
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;
  /// The first failure, else the first warning, else `otherwise`; a line without its end.
  std::string Reason(const std::string& otherwise) const;
  bool failed() const { return !failure_.empty(); }
  void Note(bool failure, const char* text);

 private:
  std::string failure_, warning_;
};

}  // namespace ormel::geo_detail
