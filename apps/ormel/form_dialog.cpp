#include "ormel/form_dialog.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "ormel/form_page.h"
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

FormDialog::FormDialog(Form& form, QWidget* parent) : QDialog(parent), form_(form) {
  setWindowTitle(ToQString(form.Title()));
  setWindowModality(Qt::ApplicationModal);
  auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);
  connect(help, &QShortcut::activated, this, [this] { emit HelpAsked(ToQString(form_.HelpTopic())); });
  Build();
  ShowStates();
}

void FormDialog::Build() {
  auto* outer = new QVBoxLayout(this);
  outer->setSpacing(12);
  const std::span<const ControlSpec> specs = form_.Controls();
  const std::size_t foot = FootOf(specs);
  views_.reserve(specs.size());
  std::map<QWidget*, FormPage> pages;
  std::vector<const ControlSpec*> buttons;
  for (std::size_t i = 0; i < specs.size(); ++i) {
    const ControlSpec& spec = specs[i];
    if (i >= foot) {
      buttons.push_back(&spec);
      continue;
    }
    QWidget* page = Page(spec, *outer);
    auto it = pages.find(page);
    if (it == pages.end()) it = pages.emplace(page, FormPage(page)).first;
    ControlView& view = AddView(spec);
    view.page = spec.tab.empty() ? nullptr : page;
    it->second.Add(view);
  }
  for (const auto& [page, content] : pages) {
    if (tabs_ != nullptr && tabs_->indexOf(page) >= 0) {
      static_cast<QVBoxLayout*>(page->layout())->addStretch(1);
    } else {
      page->layout()->setContentsMargins(0, 0, 0, 0);
    }
  }
  AddButtonRow(*outer, buttons);
  MarkDefault();
}

QWidget* FormDialog::Page(const ControlSpec& spec, QVBoxLayout& outer) {
  if (spec.tab.empty()) {
    // A stretch of controls outside the tabs: before or after them.
    QWidget* last = outer.count() > 0 ? outer.itemAt(outer.count() - 1)->widget() : nullptr;
    if (last != nullptr && last != tabs_) return last;
    auto* page = new QWidget(this);
    outer.addWidget(page, 1);
    return page;
  }
  if (tabs_ == nullptr) {
    tabs_ = new QTabWidget(this);
    outer.addWidget(tabs_, 1);
  }
  const QString title = ToQString(spec.tab);
  for (int i = 0; i < tabs_->count(); ++i)
    if (tabs_->tabText(i) == title) return tabs_->widget(i);
  auto* page = new QWidget(tabs_);
  tabs_->addTab(page, title);
  return page;
}

ControlView& FormDialog::AddView(const ControlSpec& spec) {
  views_.push_back(MakeControl(spec, *this));
  return views_.back();
}

void FormDialog::AddButtonRow(QVBoxLayout& outer, const std::vector<const ControlSpec*>& buttons) {
  auto* row = new QHBoxLayout;
  outer.addLayout(row);
  for (const ControlSpec* spec : buttons)
    if (spec->role == ButtonRole::kNone) row->addWidget(AddView(*spec).editor);
  row->addStretch(1);
  for (const ControlSpec* spec : buttons) {
    if (spec->role == ButtonRole::kNone) continue;
    QWidget* button = AddView(*spec).editor;
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

void FormDialog::Accept() {
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
