// The user guide inside the program.
#pragma once

#include <QString>
#include <QWidget>

class QTextBrowser;

namespace ormel {

/// Shows pages of the guide, which are Markdown files with pictures beside them.
class HelpViewer : public QWidget {
  Q_OBJECT
 public:
  HelpViewer(QString folder, QWidget* parent);

  /// Opens the page of a topic: a page's name ("tutorial"), or a form's or command's name that the table
  /// `topics.txt` of the guide leads to a page ("WellProperties = drawing#wells").  The contents else.
  void ShowTopic(const QString& topic);
  QTextBrowser* browser() const { return browser_; }

 private:
  void GoToHeading(const QString& anchor);
  QString PageOf(const QString& topic) const;

  QString folder_;
  QTextBrowser* browser_;
};

/// Folder of the guide: beside the program, in the installed data, or in the sources; empty when it is
/// nowhere.
QString GuideFolder();
/// Opens the guide's one window at the topic.
void ShowHelpTopic(const QString& topic, QWidget* parent);

}  // namespace ormel
