// The menu bar, built from the shell's table.
#pragma once

#include <QObject>
#include <functional>
#include <string_view>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace ormel {

struct Ormel;
struct MenuItem;

class MenuActions : public QObject {
  Q_OBJECT
 public:
  /// `run` gets the control and index of an item that the user chose.
  MenuActions(Ormel& ormel, QMenuBar& bar, std::function<void(std::string_view, int)> run);

  /// Shows captions, check marks and what is offered.
  void Refresh();
  QAction* Find(std::string_view control, int index) const;

 private:
  struct Entry {
    const MenuItem* item = nullptr;
    QAction* action = nullptr;
    QAction* line = nullptr;  ///< the separator above
    QMenu* submenu = nullptr;
  };
  QMenu* MenuOf(const MenuItem& item) const;
  void Add(const MenuItem& item, QMenuBar& bar);
  void Show(const Entry& entry);

  Ormel& ormel_;
  std::function<void(std::string_view, int)> run_;
  std::vector<Entry> entries_;
};

}  // namespace ormel
