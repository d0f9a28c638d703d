// Runs the real solver in a temporary folder on a deck written by hand, and reads what it wrote.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace vadox1::test {

struct Outcome {
  int status = -1;     ///< exit status; 128 + signal when the program was killed
  std::string output;  ///< standard output
  std::string errors;  ///< standard error
  std::string fatal;   ///< VADOX.OPS; empty when there is none
};

struct FluxRecord {
  std::string label;
  double flux = 0.0;
};

/// A folder with one model of the stem "my town".
class Town {
 public:
  static constexpr const char* kStem = "my town";

  std::string operator/(const std::string& name) const { return folder_ / name; }
  bool Has(const std::string& name) const { return std::filesystem::exists(folder_ / name); }
  std::string Read(const std::string& name) const { return ormel::test::ReadAll(folder_ / name); }

  /// Writes the deck with CR LF and runs the program on it.  `before` stands before the program in the shell.
  Outcome Run(const std::string& deck, const std::string& name = kStem,
              const std::string& before = "") const {
    std::string text;
    for (const char c : deck) {
      if (c == '\n') text += '\r';
      text += c;
    }
    ormel::test::WriteAll(folder_ / (name + ".DAT"), text);
    return Start("61 '" + name + "'", before);
  }

  Outcome Start(const std::string& arguments, const std::string& before = "",
                const std::string& program = "VADOX1.EXE") const {
    const std::string command = "cd '" + folder_.path().string() + "' && ( " + before +
                                " exec '" ORMEL_BIN_DIR "/" + program + "' " + arguments +
                                " ) > out.txt 2> err.txt";
    const int status = std::system(command.c_str());
    Outcome outcome;
    outcome.status = WEXITSTATUS(status);
    outcome.output = Read("out.txt");
    outcome.errors = Read("err.txt");
    if (Has("VADOX.OPS")) outcome.fatal = Read("VADOX.OPS");
    return outcome;
  }

  /// Starts the program on the deck of the stem and does not wait for it.
  pid_t StartAside() const {
    const pid_t child = fork();
    if (child != 0) return child;
    if (chdir(folder_.path().c_str()) != 0) _exit(98);
    if (freopen("out.txt", "w", stdout) == nullptr || freopen("err.txt", "w", stderr) == nullptr) _exit(99);
    execl(ORMEL_BIN_DIR "/VADOX1.EXE", "VADOX1.EXE", "61", kStem, static_cast<char*>(nullptr));
    _exit(97);
  }

  /// How many temporary files the program left.
  int HalfFiles() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      count += entry.path().extension() == ".tmp" ? 1 : 0;
    }
    return count;
  }

 private:
  ormel::test::TempDir folder_;
};

/// Records of an extraction file: the section they stand in, the first character, the fields.
struct XtrRecord {
  std::string section;
  char kind = ' ';
  std::vector<std::string> fields;
  double Number(std::size_t field_from_1) const { return std::stod(fields.at(field_from_1 - 1)); }
  std::string Label() const {
    std::string label = fields.back();
    label.erase(0, label.find_first_not_of(' '));
    return label;
  }
};

inline std::vector<XtrRecord> ReadXtr(const std::string& text) {
  std::vector<XtrRecord> records;
  std::istringstream in(text);
  std::string section;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line[0] == '*') continue;
    if (line[0] == '!') {
      section = line.substr(1);
      continue;
    }
    XtrRecord record;
    record.section = section;
    record.kind = line[0];
    std::istringstream fields(line.substr(1) + ",");
    for (std::string field; std::getline(fields, field, ',');) record.fields.push_back(field);
    records.push_back(std::move(record));
  }
  return records;
}

/// The record with this label.  Throws when there is none.
inline XtrRecord Labelled(const std::vector<XtrRecord>& records, const std::string& label) {
  for (const XtrRecord& record : records) {
    if (record.Label() == label) return record;
  }
  throw std::runtime_error("no record " + label);
}

struct PthPath {
  std::string start, end;
  std::vector<std::vector<double>> points;  ///< x, y, elevation, time, head
};

inline std::vector<PthPath> ReadPth(const std::string& text) {
  std::vector<PthPath> paths;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.starts_with("STA")) {
      paths.push_back({line, "", {}});
    } else if (line.starts_with("END")) {
      paths.back().end = line.substr(6);
    } else if (!line.starts_with("*")) {
      std::vector<double> point;
      for (const std::size_t column : {6u, 20u, 34u, 48u, 62u})
        point.push_back(std::stod(line.substr(column, 13)));
      paths.back().points.push_back(point);
    }
  }
  return paths;
}

}  // namespace vadox1::test
