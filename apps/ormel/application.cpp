#include "ormel/application.h"

#include <QStyleFactory>
#include <exception>

#include "core/command.h"
#include "core/ormel.h"
#include "ormel/icons.h"

namespace ormel {

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
  setApplicationName(QString::fromLatin1(kProgramTitle));
  setApplicationDisplayName(QString());
  setApplicationVersion(QString::fromStdString(VersionText()));
  setWindowIcon(ProgramIcon());
  // One look on every desktop, in the colours of the user's palette.
  setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

bool Application::notify(QObject* receiver, QEvent* event) {
  try {
    return QApplication::notify(receiver, event);
  } catch (...) {
    TellFailure();
    return true;
  }
}

void Application::TellFailure() {
  const std::exception_ptr failure = std::current_exception();
  if (ormel_ == nullptr || ormel_->command.depth > 0) {
    qCritical("a failure inside a running command was dropped");
    return;
  }
  RunCommand(*ormel_, "an event of the window", [&] { std::rethrow_exception(failure); });
}

}  // namespace ormel
