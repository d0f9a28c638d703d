#include "ormelcmd/toolkit.h"

#include <QApplication>
#include <cstdlib>
#include <iostream>

namespace ormel {

Toolkit::Toolkit() {
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  // What the toolkit has to say about the desktop concerns nobody here.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg) std::cerr << "ormelcmd: " << text.toStdString() << '\n';
  });
  static char name[] = "ormelcmd";
  static char* arguments[] = {name, nullptr};
  static int count = 1;
  application_ = std::make_unique<QApplication>(count, arguments);
}

Toolkit::~Toolkit() = default;

}  // namespace ormel
