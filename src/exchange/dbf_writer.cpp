#include "exchange/dbf_writer.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "exchange/bytes.h"
#include "text/files.h"

namespace ormel {
namespace {

constexpr std::size_t kNameSize = 11, kWidest = 254;
constexpr char kVersion = 3, kTerminator = 13, kEndMark = 26;

/// The longest start of a text that fits and ends between two characters.
std::string_view Fitting(std::string_view text, std::size_t width) {
  if (text.size() <= width) return text;
  while (width > 0 && (static_cast<unsigned char>(text[width]) & 0xC0U) == 0x80U) --width;
  return text.substr(0, width);
}

std::size_t WidthOf(const DbfColumn& column) {
  std::size_t width = column.type == 'L' ? 1 : column.type == 'D' ? 8 : 0;
  width = std::max(width, column.least_width);
  for (const std::string& value : column.values) width = std::max(width, Fitting(value, kWidest).size());
  return width;
}

std::string Header(const std::vector<DbfColumn>& columns, const std::vector<std::size_t>& widths,
                   std::size_t rows, const DbfDate& date) {
  std::size_t record = 1;
  for (const std::size_t width : widths) record += width;
  if (record > 0xffff) throw std::length_error("the columns are too wide for a record");
  std::string header(1, kVersion);
  for (const int part : {date.year - 1900, date.month, date.day})
    AppendLittle(header, static_cast<std::uint64_t>(part), 1);
  AppendLittle(header, rows, 4);
  AppendLittle(header, 32 * columns.size() + 33, 2);
  AppendLittle(header, record, 2);
  header.append(20, '\0');
  for (std::size_t i = 0; i < columns.size(); ++i) {
    std::string name(Fitting(columns[i].name, kNameSize));
    name.resize(kNameSize, '\0');
    header += name + columns[i].type;
    header.append(4, '\0');
    AppendLittle(header, widths[i], 1);
    header.append(3, '\0');  // decimals, reserved
    header += '\1';          // work area
    header.append(11, '\0');
  }
  return header + kTerminator;
}

void WriteRecords(std::ofstream& file, const std::vector<DbfColumn>& columns,
                  const std::vector<std::size_t>& widths, std::size_t rows) {
  constexpr std::size_t kFlushAt = 1U << 18U;
  std::string text;
  for (std::size_t row = 0; row < rows; ++row) {
    text += ' ';
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::string_view value = Fitting(columns[i].values.at(row), widths[i]);
      text += value;
      text.append(widths[i] - value.size(), ' ');
    }
    if (text.size() < kFlushAt) continue;
    file << text;
    text.clear();
  }
  file << text << kEndMark;
}

}  // namespace

std::string WriteDBF(const std::string& path, const std::vector<DbfColumn>& columns, const DbfDate& date) {
  try {
    const std::size_t rows = columns.empty() ? 0 : columns.front().values.size();
    std::vector<std::size_t> widths;
    for (const DbfColumn& column : columns) widths.push_back(WidthOf(column));
    const std::string header = Header(columns, widths, rows, date);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) throw FileError(path, "cannot be created: " + std::generic_category().message(errno));
    file << header;
    WriteRecords(file, columns, widths, rows);
    if (!file.flush()) throw FileError(path, "cannot be written: " + std::generic_category().message(errno));
    return "Export OK";
  } catch (const std::exception& failure) {
    return std::string("Export Failed - ") + failure.what();
  }
}

}  // namespace ormel
