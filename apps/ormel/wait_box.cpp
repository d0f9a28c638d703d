#include "ormel/wait_box.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace ormel {
namespace {

constexpr int kSteps = 1000;
constexpr double kTelling = 0.03;
constexpr qint64 kTellingSeconds = 2;

QString MinutesText(qint64 seconds) {
  return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace

WaitBox::WaitBox(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      text_(new QLabel(this)),
      step_(new QLabel(this)),
      elapsed_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(tr("Cancel"), this)) {
  setWindowTitle(tr("Please Wait"));
  setMinimumWidth(400);
  QFont heading = font();
  heading.setBold(true);
  text_->setFont(heading);
  step_->setForegroundRole(QPalette::PlaceholderText);
  elapsed_->setForegroundRole(QPalette::PlaceholderText);
  bar_->setTextVisible(false);
  SetProgress(-1.0, QString());

  auto* column = new QVBoxLayout(this);
  column->setSpacing(10);
  column->addWidget(text_);
  column->addWidget(bar_);
  column->addWidget(step_);
  auto* foot = new QHBoxLayout;
  foot->addWidget(elapsed_, 1);
  foot->addWidget(cancel_);
  column->addLayout(foot);
  connect(cancel_, &QPushButton::clicked, this, &WaitBox::reject);
}

void WaitBox::SetText(const QString& text) {
  text_->setText(text);
}

void WaitBox::SetProgress(double fraction, const QString& step) {
  step_->setText(step);
  fraction_ = fraction;
  if (fraction < 0.0) {
    bar_->setRange(0, 0);
    return;
  }
  bar_->setRange(0, kSteps);
  bar_->setValue(qBound(0, qRound(fraction * kSteps), kSteps));
}

void WaitBox::SetElapsed(qint64 milliseconds) {
  const qint64 seconds = milliseconds / 1000;
  QString text = tr("Elapsed %1").arg(MinutesText(seconds));
  // Little that is done says little of the rest.
  if (fraction_ >= kTelling && seconds >= kTellingSeconds) {
    const double left = double(seconds) * (1.0 - fraction_) / fraction_;
    text += tr(", about %1 left").arg(MinutesText(qRound64(left)));
  }
  elapsed_->setText(text);
}

void WaitBox::reject() {
  cancel_->setEnabled(false);
  cancel_->setText(tr("Stopping..."));
  emit CancelPressed();
}

}  // namespace ormel
