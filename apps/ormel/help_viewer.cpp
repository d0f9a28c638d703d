#include "ormel/help_viewer.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextStream>
#include <QUrl>
#include <QVBoxLayout>

namespace ormel {
namespace {

constexpr auto kContents = "index";

/// The anchor of a heading in the usual form: "Points and lines" is points-and-lines.
QString AnchorOf(const QString& heading) {
  QString anchor;
  for (const QChar c : heading.toLower())
    if (c.isLetterOrNumber() || c == QLatin1Char('-')) {
      anchor += c;
    } else if (c.isSpace()) {
      anchor += QLatin1Char('-');
    }
  return anchor;
}

}  // namespace

QString GuideFolder() {
  const QString program = QCoreApplication::applicationDirPath();
  for (const QString& folder :
       {program + QStringLiteral("/guide"), program + QStringLiteral("/../share/doc/ormel/guide"),
        program + QStringLiteral("/../../../docs/guide")})
    if (QDir(folder).exists()) return QDir::cleanPath(folder);
  return {};
}

HelpViewer::HelpViewer(QString folder, QWidget* parent)
    : QWidget(parent, Qt::Window), folder_(std::move(folder)), browser_(new QTextBrowser(this)) {
  setWindowTitle(tr("Ormel Guide"));
  resize(860, 680);
  auto* column = new QVBoxLayout(this);
  auto* bar = new QHBoxLayout;
  auto* back = new QPushButton(tr("Back"), this);
  auto* contents = new QPushButton(tr("Contents"), this);
  bar->addWidget(back);
  bar->addWidget(contents);
  bar->addStretch(1);
  column->addLayout(bar);
  column->addWidget(browser_, 1);
  browser_->setSearchPaths({folder_});
  browser_->setOpenExternalLinks(true);
  browser_->document()->setDocumentMargin(18);
  connect(back, &QPushButton::clicked, browser_, &QTextBrowser::backward);
  connect(contents, &QPushButton::clicked, this, [this] { ShowTopic(QString()); });
  connect(browser_, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
  connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
  back->setEnabled(false);
}

QString HelpViewer::PageOf(const QString& topic) const {
  if (topic.isEmpty()) return QString::fromLatin1(kContents);
  if (QFile::exists(folder_ + QLatin1Char('/') + topic.toLower() + QStringLiteral(".md")))
    return topic.toLower();
  QFile table(folder_ + QStringLiteral("/topics.txt"));
  if (!table.open(QIODevice::ReadOnly | QIODevice::Text)) return QString::fromLatin1(kContents);
  QTextStream in(&table);
  while (!in.atEnd()) {
    const QString line = in.readLine();
    if (line.section(QLatin1Char('='), 0, 0).trimmed().compare(topic, Qt::CaseInsensitive) == 0)
      return line.section(QLatin1Char('='), 1).trimmed();
  }
  return QString::fromLatin1(kContents);
}

void HelpViewer::ShowTopic(const QString& topic) {
  if (folder_.isEmpty()) {
    browser_->setPlainText(
        tr("The guide's folder was not found beside the program. "
           "Install Ormel again, or put the folder \"guide\" beside it."));
    return;
  }
  const QString page = PageOf(topic);
  const QUrl url = QUrl::fromLocalFile(folder_ + QLatin1Char('/') + page.section(QLatin1Char('#'), 0, 0) +
                                       QStringLiteral(".md"));
  browser_->setSource(url, QTextDocument::MarkdownResource);
  GoToHeading(page.section(QLatin1Char('#'), 1));
}

void HelpViewer::GoToHeading(const QString& anchor) {
  if (anchor.isEmpty()) return;
  for (QTextBlock block = browser_->document()->begin(); block.isValid(); block = block.next()) {
    if (block.blockFormat().headingLevel() == 0 || AnchorOf(block.text()) != anchor) continue;
    // From the end of the page back, so that the heading stands at the top of the view.
    browser_->moveCursor(QTextCursor::End);
    browser_->setTextCursor(QTextCursor(block));
    browser_->ensureCursorVisible();
    return;
  }
}

void ShowHelpTopic(const QString& topic, QWidget* parent) {
  // A child of the window in front, so that a modal dialog does not lock it away from the user.
  HelpViewer* viewer = nullptr;
  if (parent != nullptr) viewer = parent->findChild<HelpViewer*>(QString(), Qt::FindDirectChildrenOnly);
  if (viewer == nullptr) viewer = new HelpViewer(GuideFolder(), parent);
  viewer->ShowTopic(topic);
  viewer->show();
  viewer->raise();
  viewer->activateWindow();
}

}  // namespace ormel
