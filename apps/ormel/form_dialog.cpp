#include "ormel/form_dialog.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <span>
#include <utility>

#include "ormel/qt_text.h"

namespace ormel {
namespace {

/// Where the row of buttons at the foot begins: the tail of buttons outside tabs and frames.
std::size_t FootOf(std::span<const ControlSpec> specs) {
  std::size_t foot = specs.size();
  while (foot > 0) {
    const ControlSpec& spec = specs[foot - 1];
    if (spec.kind != ControlKind::kButton || !spec.tab.empty() || !spec.group.empty()) break;
    --foot;
  }
  return foot;
}

}  // namespace

namespace {

/// Without the hint at F1, which pads the title until the window cuts it: every dialog has that key.
QString TitleOf(const Form& form) {
  QString title = ToQString(form.Title());
  title.remove(QStringLiteral("(F1 for Help)"));
  return title.trimmed();
}

}  // namespace

FormDialog::FormDialog(Form& form, QWidget* parent)
    : QDialog(parent), form_(form), picture_(new QLabel(this)), column_(new QVBoxLayout) {
  setWindowTitle(TitleOf(form));
  setWindowModality(Qt::ApplicationModal);
  auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);
  connect(help, &QShortcut::activated, this, [this] { emit HelpAsked(ToQString(form_.HelpTopic())); });
  Build();
  ShowStates();
  for (auto& [page, content] : pages_) content.AlignColumns();
  if (!HasTable()) return;
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  resize(Room());
}

bool FormDialog::HasTable() const {
  return std::any_of(views_.begin(), views_.end(), [](const ControlView& view) {
    return view.spec->kind == ControlKind::kTable || view.spec->kind == ControlKind::kChart;
  });
}

/// The toolkit opens no window wider than two thirds of the screen; a table needs what there is.
QSize FormDialog::Room() const {
  return sizeHint().boundedTo(screen()->availableSize() * 0.95);
}

void FormDialog::Grow() {
  if (!isMaximized()) resize(size().expandedTo(Room()));
}

void FormDialog::SetPicture(const QPixmap& picture) {
  picture_->setPixmap(picture);
  picture_->show();
  if (views_.empty() || views_.front().caption == nullptr) return;
  QFont heading = font();
  heading.setPointSizeF(heading.pointSizeF() * 1.4);
  heading.setBold(true);
  views_.front().caption->setFont(heading);
}

void FormDialog::MakeSplash(int milliseconds) {
  setWindowFlags(Qt::SplashScreen | Qt::FramelessWindowHint);
  QTimer::singleShot(milliseconds, this, &QDialog::reject);
}

void FormDialog::Build() {
  auto* row = new QHBoxLayout(this);
  row->setSpacing(18);
  row->addWidget(picture_, 0, Qt::AlignTop);
  row->addLayout(column_, 1);
  picture_->hide();
  column_->setSpacing(12);
  const std::span<const ControlSpec> specs = form_.Controls();
  const std::size_t foot = FootOf(specs);
  views_.reserve(specs.size());
  std::vector<const ControlSpec*> buttons;
  for (std::size_t i = 0; i < specs.size(); ++i) {
    const ControlSpec& spec = specs[i];
    if (i >= foot) {
      buttons.push_back(&spec);
      continue;
    }
    QWidget* page = Page(spec);
    auto it = pages_.find(page);
    if (it == pages_.end()) it = pages_.emplace(page, FormPage(page)).first;
    ControlView& view = AddView(spec, false);
    view.page = spec.tab.empty() ? nullptr : page;
    it->second.Add(view);
  }
  for (auto& [page, content] : pages_) {
    if (tabs_ != nullptr && tabs_->indexOf(page) >= 0) {
      content.AddStretch();
    } else {
      page->layout()->setContentsMargins(0, 0, 0, 0);
    }
  }
  AddButtonRow(buttons);
  MarkDefault();
}

QWidget* FormDialog::Page(const ControlSpec& spec) {
  if (spec.tab.empty()) {
    // A stretch of controls outside the tabs: before or after them.
    QWidget* last = column_->count() > 0 ? column_->itemAt(column_->count() - 1)->widget() : nullptr;
    if (last != nullptr && last != tabs_) return last;
    auto* page = new QWidget(this);
    column_->addWidget(page, 1);
    return page;
  }
  if (tabs_ == nullptr) {
    tabs_ = new QTabWidget(this);
    column_->addWidget(tabs_, 1);
  }
  const QString title = ToQString(spec.tab);
  for (int i = 0; i < tabs_->count(); ++i)
    if (tabs_->tabText(i) == title) return tabs_->widget(i);
  auto* page = new QWidget(tabs_);
  tabs_->addTab(page, title);
  return page;
}

ControlView& FormDialog::AddView(const ControlSpec& spec, bool at_foot) {
  views_.push_back(MakeControl(spec, at_foot, *this));
  return views_.back();
}

void FormDialog::AddButtonRow(const std::vector<const ControlSpec*>& buttons) {
  auto* row = new QHBoxLayout;
  column_->addLayout(row);
  for (const ControlSpec* spec : buttons)
    if (spec->role == ButtonRole::kNone) row->addWidget(AddView(*spec, true).editor);
  row->addStretch(1);
  for (const ControlSpec* spec : buttons) {
    if (spec->role == ButtonRole::kNone) continue;
    QWidget* button = AddView(*spec, true).editor;
    button->setMinimumWidth(88);
    row->addWidget(button);
  }
}

void FormDialog::MarkDefault() {
  const ControlSpec* accept = ButtonOf(ButtonRole::kAccept);
  for (const ControlView& view : views_)
    if (view.spec == accept) static_cast<QPushButton*>(view.editor)->setDefault(true);
}

void FormDialog::Show() {
  form_.MarkShown();
  ShowStates();
  exec();
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void FormDialog::Do(const std::function<void(Form&)>& action) {
  if (busy_ || failure_) return;
  busy_ = true;
  try {
    action(form_);
    ShowStates();
  } catch (...) {
    failure_ = std::current_exception();
  }
  busy_ = false;
  if (failure_ || form_.Hidden()) {
    done(QDialog::Accepted);
  } else {
    TakeFocusRequest();
  }
}

void FormDialog::PressAccept() {
  if (const ControlSpec* button = ButtonOf(ButtonRole::kAccept))
    Do([button](Form& form) { form.Click(button->name); });
}

void FormDialog::reject() {
  const ControlSpec* button = ButtonOf(ButtonRole::kReject);
  if (button == nullptr) button = ButtonOf(ButtonRole::kAccept);
  if (button == nullptr) {
    QDialog::reject();
    return;
  }
  Do([button](Form& form) { form.Click(button->name); });
}

const ControlSpec* FormDialog::ButtonOf(ButtonRole role) const {
  for (const ControlSpec& spec : form_.Controls())
    if (spec.kind == ControlKind::kButton && spec.role == role) return &spec;
  return nullptr;
}

void FormDialog::ShowStates() {
  if (form_.revision() == shown_revision_) return;
  shown_revision_ = form_.revision();
  const bool was_busy = std::exchange(busy_, true);
  for (const ControlView& view : views_) UpdateControl(view, form_.State(view.spec->name));
  ShowTabs();
  busy_ = was_busy;
}

void FormDialog::ShowTabs() {
  for (int i = 0; tabs_ != nullptr && i < tabs_->count(); ++i) {
    const bool any = std::any_of(views_.begin(), views_.end(), [&](const ControlView& view) {
      return view.page == tabs_->widget(i) && form_.State(view.spec->name).visible;
    });
    tabs_->setTabVisible(i, any);
  }
}

void FormDialog::TakeFocusRequest() {
  const std::string name = form_.FocusedControl();
  form_.ClearFocusRequest();
  for (const ControlView& view : views_) {
    if (view.spec->name != name) continue;
    if (view.page != nullptr) tabs_->setCurrentWidget(view.page);
    FocusControl(view);
  }
}

}  // namespace ormel
