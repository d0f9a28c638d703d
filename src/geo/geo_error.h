// What goes wrong with geographic files and coordinate reference systems.
#pragma once

#include <stdexcept>
#include <string>

namespace ormel {

/// The message is made for the user: file and layer where there are, and the reason.
class GeoError : public std::runtime_error {
 public:
  explicit GeoError(const std::string& reason, std::string file = {}, std::string layer = {});
  const std::string& file() const { return file_; }    ///< "" when it is not about a file
  const std::string& layer() const { return layer_; }  ///< "" when it is not about a layer
  const std::string& reason() const { return reason_; }

 private:
  std::string file_, layer_, reason_;
};

}  // namespace ormel
