#include "ormel/help_viewer.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QTextStream>
#include <QUrl>
#include <QVBoxLayout>

namespace ormel {
namespace {

constexpr auto kContents = "index";

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
  QUrl url = QUrl::fromLocalFile(folder_ + QLatin1Char('/') + page.section(QLatin1Char('#'), 0, 0) +
                                 QStringLiteral(".md"));
  if (page.contains(QLatin1Char('#'))) url.setFragment(page.section(QLatin1Char('#'), 1));
  browser_->setSource(url, QTextDocument::MarkdownResource);
}

void ShowHelpTopic(const QString& topic, QWidget* parent) {
  // A child of the window in front, so that a modal dialog does not lock it away from the user.
  auto* viewer = parent->findChild<HelpViewer*>(QString(), Qt::FindDirectChildrenOnly);
  if (viewer == nullptr) viewer = new HelpViewer(GuideFolder(), parent);
  viewer->ShowTopic(topic);
  viewer->show();
  viewer->raise();
  viewer->activateWindow();
}

}  // namespace ormel
