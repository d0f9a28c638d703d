// The toolkit's application, with the program's failure policy around every event.
#pragma once

#include <QApplication>

namespace ormel {

struct Ormel;

class Application : public QApplication {
  Q_OBJECT
 public:
  Application(int& argc, char** argv);

  /// Failures that leave an event's handler are told through this controller.
  void SetController(Ormel* ormel) { ormel_ = ormel; }
  bool notify(QObject* receiver, QEvent* event) override;

 private:
  void TellFailure();

  Ormel* ormel_ = nullptr;
};

}  // namespace ormel
