#include "ormel/text_viewer.h"

#include <QAction>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStringDecoder>
#include <QTextDocument>
#include <QVBoxLayout>

namespace ormel {
namespace {

constexpr qint64 kReadLimit = qint64{64} << 20;  ///< bytes shown of one file

/// UTF-8 where it is valid, else Latin-1: the solver's files are plain bytes.
QString Decode(const QByteArray& bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8);
  const QString text = utf8.decode(bytes);
  return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

}  // namespace

TextViewer::TextViewer(QString path, QWidget* parent)
    : QWidget(parent, Qt::Window),
      path_(std::move(path)),
      text_(new QPlainTextEdit(this)),
      search_(new QLineEdit(this)),
      status_(new QLabel(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(QFileInfo(path_).fileName());
  resize(820, 600);
  text_->setReadOnly(true);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  status_->setForegroundRole(QPalette::PlaceholderText);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  BuildBar();
  connect(text_, &QPlainTextEdit::cursorPositionChanged, this, [this] {
    status_->setText(tr("%1     line %2 of %3")
                         .arg(path_)
                         .arg(text_->textCursor().blockNumber() + 1)
                         .arg(text_->blockCount()));
  });
  Reload();
  text_->setFocus();
}

void TextViewer::BuildBar() {
  auto* column = new QVBoxLayout(this);
  auto* bar = new QHBoxLayout;
  search_->setPlaceholderText(tr("Find in this file"));
  search_->setClearButtonEnabled(true);
  auto* previous = new QPushButton(tr("Previous"), this);
  auto* next = new QPushButton(tr("Next"), this);
  auto* reload = new QPushButton(tr("Read Again"), this);
  bar->addWidget(search_, 1);
  bar->addWidget(previous);
  bar->addWidget(next);
  bar->addSpacing(16);
  bar->addWidget(reload);
  column->addLayout(bar);
  column->addWidget(text_, 1);
  column->addWidget(status_);

  connect(search_, &QLineEdit::returnPressed, this, [this] { FindNext(); });
  connect(next, &QPushButton::clicked, this, [this] { FindNext(); });
  connect(previous, &QPushButton::clicked, this, [this] { FindNext(true); });
  connect(reload, &QPushButton::clicked, this, &TextViewer::Reload);
  connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
    search_->setFocus();
    search_->selectAll();
  });
  connect(new QShortcut(QKeySequence::FindNext, this), &QShortcut::activated, this, [this] { FindNext(); });
  connect(new QShortcut(QKeySequence::FindPrevious, this), &QShortcut::activated, this,
          [this] { FindNext(true); });
  connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this, &QWidget::close);
}

void TextViewer::Reload() {
  QFile file(path_);
  if (!file.open(QIODevice::ReadOnly)) {
    text_->setPlainText(tr("\"%1\" cannot be read: %2").arg(path_, file.errorString()));
    return;
  }
  QString text = Decode(file.read(kReadLimit));
  if (!file.atEnd())
    text += tr("\n... only the first %1 are shown here.").arg(QLocale().formattedDataSize(kReadLimit));
  text_->setPlainText(text);
  text_->moveCursor(QTextCursor::Start);
}

bool TextViewer::FindNext(bool backward) {
  const QString wanted = search_->text();
  if (wanted.isEmpty()) return false;
  const QTextDocument::FindFlags flags =
      backward ? QTextDocument::FindFlags(QTextDocument::FindBackward) : QTextDocument::FindFlags();
  if (text_->find(wanted, flags)) return true;
  const QTextCursor before = text_->textCursor();
  text_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
  if (text_->find(wanted, flags)) return true;
  text_->setTextCursor(before);
  status_->setText(tr("\"%1\" is not in this file.").arg(wanted));
  return false;
}

void ShowTextFile(const QString& path, QWidget* parent) {
  auto* viewer = new TextViewer(path, parent);
  viewer->show();
}

}  // namespace ormel
