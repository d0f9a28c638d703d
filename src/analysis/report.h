// The report of a model: what a regulator asks for, as one HTML file or as PDF.
//
// Text and tables come from a description (report_template.h); the PDF is laid out from the same HTML.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "analysis/report_template.h"

namespace ormel {

struct Ormel;

struct ReportRequest {
  std::string path;                  ///< ".html", ".htm" or ".pdf"
  std::string description;           ///< file of the description; empty for the program's own
  std::vector<std::string> without;  ///< names of sections to leave out
  std::vector<std::string> with;     ///< names of sections that are written only on request
  bool results = false;              ///< the results are those of the model as it stands
  std::string reason;                ///< why not, where they are not
};

enum class ReportEnd { kWritten, kCancelled, kFailed };

struct ReportOutcome {
  ReportEnd end = ReportEnd::kFailed;
  std::string failure;  ///< a sentence for the user, with file, line and remedy where there are such
};

/// The description of a request: the file's, or the program's own.
std::variant<ReportDescription, FileDamage> ReadDescription(const std::string& path);

/// The report as HTML with its pictures inside.  Each number stands in an element whose attribute
/// `data-value` holds it with all its digits.  `go_on` gets the part done and stops the work by false.
/// Needs the publisher for pictures; without one they are told to be missing.
struct ReportHtml {
  ReportEnd end = ReportEnd::kFailed;
  std::string html, failure;
};
ReportHtml MakeReport(Ormel& ormel, const ReportDescription& report, const ReportRequest& request,
                      const std::function<bool(double, const std::string&)>& go_on);

/// Makes and writes it, behind the wait box with its Cancel.  A file that stood there survives a failure.
ReportOutcome WriteReport(Ormel& ormel, const ReportRequest& request);

/// Writes the program's own description into a file, to be changed there.  Throws FileError.
void SaveStandardReport(const std::string& path);

}  // namespace ormel
