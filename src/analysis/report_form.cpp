#include "analysis/report_form.h"

#include <algorithm>
#include <any>
#include <array>

#include "core/directory_memory.h"
#include "core/ormel.h"
#include "core/publisher.h"
#include "core/status.h"
#include "core/user_interface.h"
#include "text/files.h"

namespace ormel {
namespace {

using enum ControlKind;

constexpr std::string_view kDirectoryKey = "Default Report path";
constexpr const char* kDescriptionFilter = "Report Description (*.txt)|*.txt|All Files (*.*)|*.*";

constexpr std::array kControls{
    ControlSpec{.name = "listSections", .kind = kMultiList, .caption = "&Sections of the report"},
    ControlSpec{.name = "tbDescription",
                .kind = kText,
                .caption = "&Description",
                .tip = "File that lays down texts and tables; empty for the standard report"},
    ControlSpec{.name = "lblNote", .kind = kNote},
    ControlSpec{.name = "Choose", .kind = kButton, .caption = "C&hoose Description..."},
    ControlSpec{.name = "SaveCopy", .kind = kButton, .caption = "Save Standard &Copy..."},
    ControlSpec{.name = "OK", .kind = kButton, .caption = "Write...", .role = ButtonRole::kAccept},
    kCancelButton};

/// What the form opens with the next time.
struct Memory {
  std::string description;
  std::vector<std::string> without, with;
};

bool Holds(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool MayWrite(Ormel& ormel, const std::string& path) {
  return !FileExists(path) ||
         AskYesNo(ormel, "File Exists",
                  Lines({"File " + path + " already exists.", "Do you want to overwrite it?"}),
                  Icon::kQuestion);
}

}  // namespace

ReportForm::ReportForm(Ormel& ormel, const std::string& reason)
    : OkCancelForm(ormel), results_(reason.empty()), reason_(reason) {
  InitControls();
  Put("lblNote", results_ ? "Tables and texts can be changed in a copy of the standard description."
                          : "There are no valid results: " + reason +
                                ".  The sections of results will say so and stay empty.");
  const auto memory = ormel.form_memory.find("Report");
  if (memory == ormel.form_memory.end()) {
    LoadSections();
    return;
  }
  const auto& last = std::any_cast<const Memory&>(memory->second);
  Put("tbDescription", last.description);
  if (!LoadSections()) {
    Put("tbDescription", "");
    LoadSections();
  }
  std::vector<int>& selected = Mutable("listSections").selected;
  std::erase_if(selected,
                [&](int i) { return Holds(last.without, sections_[static_cast<std::size_t>(i)].id); });
  for (std::size_t i = 0; i < sections_.size(); ++i)
    if (Holds(last.with, sections_[i].id)) selected.push_back(static_cast<int>(i));
}

std::span<const ControlSpec> ReportForm::Controls() const {
  return kControls;
}

bool ReportForm::LoadSections() {
  const auto description = ReadDescription(Text("tbDescription"));
  if (const auto* damage = std::get_if<FileDamage>(&description))
    return Refuse("tbDescription", "Report", damage->Message());
  sections_.clear();
  ControlState& list = Mutable("listSections");
  list.items.clear();
  list.selected.clear();
  for (const ReportSection& section : std::get<ReportDescription>(description).sections) {
    if (!section.on_request) list.selected.push_back(static_cast<int>(sections_.size()));
    sections_.push_back({section.id, section.on_request});
    list.items.push_back(section.heading.empty() ? "Title Page" : section.heading);
  }
  return true;
}

void ReportForm::Changed(std::string_view name) {
  // A path that is being typed names no file yet.
  if (name == "tbDescription" && (Text(name).empty() || FileExists(Text(name)))) LoadSections();
}

void ReportForm::OtherPressed(std::string_view name) {
  if (name == "SaveCopy") return SaveCopy();
  FileDialog dialog;
  dialog.title = "Choose Description";
  dialog.default_extension = "txt";
  dialog.filter = kDescriptionFilter;
  dialog.directory = ReadDefaultDirectory(ormel(), kDirectoryKey);
  const auto path = ormel().ui().Ask(dialog);
  if (path && !path->empty()) SetText("tbDescription", *path);
}

void ReportForm::SaveCopy() {
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Save Standard Copy";
  dialog.default_extension = "txt";
  dialog.filter = kDescriptionFilter;
  dialog.directory = ReadDefaultDirectory(ormel(), kDirectoryKey);
  dialog.file_name = "report.txt";
  const auto path = ormel().ui().Ask(dialog);
  if (!path || path->empty() || !MayWrite(ormel(), *path)) return;
  try {
    SaveStandardReport(*path);
    SetText("tbDescription", *path);
  } catch (const FileError& failure) {
    Inform(ormel(), dialog.title, Lines({"The description could not be saved.", failure.what()}),
           Icon::kStop);
  }
}

bool ReportForm::Ok() {
  const auto description = ReadDescription(Text("tbDescription"));
  if (const auto* damage = std::get_if<FileDamage>(&description))
    return Refuse("tbDescription", "Report", damage->Message());
  if (State("listSections").selected.empty())
    return Refuse("listSections", "Report", "No section is selected.  Please select at least one section.");
  const ReportRequest request = Request();
  ormel().form_memory["Report"] = Memory{request.description, request.without, request.with};
  return true;
}

ReportRequest ReportForm::Request() const {
  ReportRequest request;
  request.description = Text("tbDescription");
  request.results = results_;
  request.reason = reason_;
  const std::vector<int>& selected = State("listSections").selected;
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    const bool chosen = std::find(selected.begin(), selected.end(), static_cast<int>(i)) != selected.end();
    if (chosen && sections_[i].on_request) request.with.push_back(sections_[i].id);
    if (!chosen && !sections_[i].on_request) request.without.push_back(sections_[i].id);
  }
  return request;
}

void REPORT(Ormel& ormel, const std::string& reason) {
  ReportForm form(ormel, reason);
  ormel.ui().ShowForm(form);
  if (form.Result != ReportForm::kOk) return;
  FileDialog dialog;
  dialog.save = true;
  dialog.title = "Save Report As";
  const bool pdf = ormel.ports.publisher != nullptr;
  dialog.default_extension = pdf ? "pdf" : "html";
  dialog.filter = pdf ? "PDF Document (*.pdf)|*.pdf|HTML Page (*.html)|*.html" : "HTML Page (*.html)|*.html";
  dialog.directory = ReadDefaultDirectory(ormel, kDirectoryKey);
  dialog.file_name = BaseName(FileTitle(ormel.project.DBName)) + " report." + dialog.default_extension;
  const auto path = ormel.ui().Ask(dialog);
  if (!path || path->empty() || !MayWrite(ormel, *path)) return;
  ReportRequest request = form.Request();
  request.path = *path;
  const ReportOutcome outcome = WriteReport(ormel, request);
  if (outcome.end == ReportEnd::kFailed)
    return Inform(ormel, "Report", Lines({"The report was not written.", outcome.failure}), Icon::kWarning);
  if (outcome.end == ReportEnd::kCancelled)
    return Feedback(ormel, "The report was cancelled: no file was written");
  WriteDefaultDirectory(ormel, kDirectoryKey, GetPathFromFile(*path));
  Feedback(ormel, "The report is in " + *path);
}

}  // namespace ormel
