// A window on a text file: logs, decks and results of the outside programs.
#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace ormel {

class TextViewer : public QWidget {
  Q_OBJECT
 public:
  TextViewer(QString path, QWidget* parent);

  /// Reads the file again.  A file that cannot be read is told in the text's place.
  void Reload();
  /// Selects the next place of the search text, going round at the end; false when there is none.
  bool FindNext(bool backward = false);

  QPlainTextEdit* text() const { return text_; }
  QLineEdit* search() const { return search_; }

 private:
  void BuildBar();

  QString path_;
  QPlainTextEdit* text_;
  QLineEdit* search_;
  QLabel* status_;
};

/// Opens the viewer and returns at once.
void ShowTextFile(const QString& path, QWidget* parent);

}  // namespace ormel
