// The toolkit for as long as a subcommand draws.
#pragma once

#include <memory>

class QApplication;

namespace ormel {

/// No window is shown: drawing needs no display unless the user asks for a platform.
class Toolkit {
 public:
  Toolkit();
  ~Toolkit();
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;

 private:
  std::unique_ptr<QApplication> application_;
};

}  // namespace ormel
