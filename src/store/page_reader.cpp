#include "store/page_reader.h"

#include <bit>
#include <cstring>

namespace ormel {
namespace {

constexpr std::size_t kFileHeader = 100;
constexpr unsigned char kInner = 0x05, kLeaf = 0x0D;  // pages of a table's tree
constexpr int kDeepest = 20;
constexpr std::uint64_t kLongestRow = 1U << 22U;  // bytes; texts of a project have 255 characters at most

std::uint64_t Number(std::string_view bytes, std::size_t at, int size) {
  std::uint64_t number = 0;
  for (int i = 0; i < size; ++i)
    number = (number << 8U) | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  return number;
}

/// The format's integer of 1 to 9 bytes; moves `at` behind it.
bool ReadVarint(std::string_view bytes, std::size_t& at, std::uint64_t& value) {
  value = 0;
  for (int i = 0; i < 9; ++i) {
    if (at >= bytes.size()) return false;
    const auto byte = static_cast<unsigned char>(bytes[at++]);
    if (i == 8) {
      value = (value << 8U) | byte;
      return true;
    }
    value = (value << 7U) | (byte & 0x7FU);
    if ((byte & 0x80U) == 0) return true;
  }
  return false;
}

/// A content of that type code; false when the record ends before it.
bool ReadContent(std::string_view record, std::uint64_t type, std::size_t& at, Value& value) {
  constexpr int kSizes[] = {0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
  if (type == 10 || type == 11) return false;
  if (type >= 12) {
    const std::uint64_t size = (type - 12) / 2;
    if (size > record.size() || at > record.size() - size) return false;
    value = std::string(record.substr(at, size));
    at += size;
    return true;
  }
  const int size = kSizes[type];
  if (at + static_cast<std::size_t>(size) > record.size()) return false;
  const std::uint64_t bits = Number(record, at, size);
  at += static_cast<std::size_t>(size);
  if (type == 0) {
    value = Value();
  } else if (type == 7) {
    value = std::bit_cast<double>(bits);
  } else if (type >= 8) {
    value = static_cast<std::int64_t>(type - 8);
  } else {
    const int unused = 64 - 8 * size;
    value = static_cast<std::int64_t>(bits << static_cast<unsigned>(unused)) >> unused;
  }
  return true;
}

bool ReadRecord(std::string_view record, std::vector<Value>& values) {
  std::size_t at = 0;
  std::uint64_t header = 0;
  if (!ReadVarint(record, at, header) || header > record.size()) return false;
  std::size_t content = header;
  values.clear();
  while (at < header) {
    std::uint64_t type = 0;
    if (!ReadVarint(record, at, type)) return false;
    values.emplace_back();
    if (!ReadContent(record, type, content, values.back())) return false;
  }
  return at == header && content == record.size();
}

}  // namespace

PageReader::PageReader(std::string_view bytes) : bytes_(bytes) {
  if (bytes_.size() < kFileHeader) return;
  const auto told = static_cast<std::uint32_t>(Number(bytes_, 16, 2));
  // Ormel's own pages have 4096 bytes; another size is believed when it is one.
  if (told == 1) {
    page_size_ = 65536;
  } else if (told >= 512 && std::has_single_bit(told)) {
    page_size_ = told;
  }
  if (page_size_ != 4096 && bytes_.size() % page_size_ != 0) page_size_ = 4096;
  page_count_ = static_cast<std::uint32_t>((bytes_.size() + page_size_ - 1) / page_size_);
  FindFree();
}

std::string_view PageReader::Page(std::uint32_t number) const {
  if (number == 0 || number > page_count_) return {};
  return bytes_.substr(static_cast<std::size_t>(number - 1) * page_size_, page_size_);
}

void PageReader::FindFree() {
  auto trunk = static_cast<std::uint32_t>(Number(bytes_, 32, 4));
  while (trunk != 0 && free_.insert(trunk).second) {
    const std::string_view page = Page(trunk);
    if (page.size() < page_size_) return;
    const std::uint64_t count = Number(page, 4, 4);
    if (count > page_size_ / 4 - 2) return;
    for (std::uint64_t i = 0; i < count; ++i)
      free_.insert(static_cast<std::uint32_t>(Number(page, 8 + 4 * i, 4)));
    trunk = static_cast<std::uint32_t>(Number(page, 0, 4));
  }
}

PageReader::Outcome PageReader::Walk(std::uint32_t root, const Row& row) {
  Outcome outcome;
  Visit(root, 0, row, outcome);
  return outcome;
}

void PageReader::Visit(std::uint32_t number, int depth, const Row& row, Outcome& outcome) {
  const std::string_view page = Page(number);
  const std::size_t start = number == 1 ? kFileHeader : 0;
  const auto kind = page.size() < start + 12 ? 0 : static_cast<unsigned char>(page[start]);
  if (depth > kDeepest || (kind != kInner && kind != kLeaf) || !seen_.insert(number).second) {
    outcome.pages_lost = true;
    return;
  }
  if (kind == kLeaf) return ReadLeaf(number, row, outcome);
  const std::uint64_t cells = Number(page, start + 3, 2);
  for (std::uint64_t i = 0; i < cells; ++i) {
    const std::size_t pointer = start + 12 + 2 * i;
    if (pointer + 2 > page.size()) break;
    const std::size_t cell = Number(page, pointer, 2);
    if (cell + 4 > page.size()) {
      outcome.pages_lost = true;
      continue;
    }
    Visit(static_cast<std::uint32_t>(Number(page, cell, 4)), depth + 1, row, outcome);
  }
  Visit(static_cast<std::uint32_t>(Number(page, start + 8, 4)), depth + 1, row, outcome);
}

void PageReader::ReadLeaf(std::uint32_t number, const Row& row, Outcome& outcome) const {
  const std::string_view page = Page(number);
  const std::size_t start = number == 1 ? kFileHeader : 0;
  const std::uint64_t cells = Number(page, start + 3, 2);
  std::vector<Value> values;
  for (std::uint64_t i = 0; i < cells; ++i) {
    const std::size_t pointer = start + 8 + 2 * i;
    if (pointer + 2 > page.size()) {
      outcome.pages_lost = true;
      return;
    }
    std::int64_t rowid = 0;
    if (ReadCell(page, Number(page, pointer, 2), rowid, values)) {
      row(rowid, values);
    } else {
      ++outcome.spoilt;
    }
  }
}

bool PageReader::ReadCell(std::string_view page, std::size_t at, std::int64_t& rowid,
                          std::vector<Value>& values) const {
  std::uint64_t size = 0;
  std::uint64_t id = 0;
  if (!ReadVarint(page, at, size) || !ReadVarint(page, at, id) || size > kLongestRow) return false;
  rowid = static_cast<std::int64_t>(id);
  std::string payload;
  return Payload(page, at, size, payload) && ReadRecord(payload, values);
}

/// A row that does not fit on its page goes on on a chain of others.
bool PageReader::Payload(std::string_view page, std::size_t at, std::uint64_t size,
                         std::string& payload) const {
  const std::uint64_t usable = page_size_;
  std::uint64_t here = size;
  if (size > usable - 35) {
    const std::uint64_t least = (usable - 12) * 32 / 255 - 23;
    here = least + (size - least) % (usable - 4);
    if (here > usable - 35) here = least;
  }
  if (at > page.size() || here > page.size() - at) return false;
  payload = std::string(page.substr(at, here));
  if (here == size) return true;
  if (at + here + 4 > page.size()) return false;
  auto next = static_cast<std::uint32_t>(Number(page, at + here, 4));
  while (payload.size() < size) {
    const std::string_view more = Page(next);
    if (more.size() < page_size_) return false;
    payload += more.substr(4, size - payload.size());
    next = static_cast<std::uint32_t>(Number(more, 0, 4));
  }
  return true;
}

void PageReader::WalkStray(const std::function<void(std::uint32_t page)>& begin, const Row& row) {
  for (std::uint32_t number = 2; number <= page_count_; ++number) {
    const std::string_view page = Page(number);
    if (page.size() < 12 || static_cast<unsigned char>(page[0]) != kLeaf) continue;
    if (seen_.count(number) > 0 || free_.count(number) > 0) continue;
    begin(number);
    Outcome ignored;
    ReadLeaf(number, row, ignored);
  }
}

}  // namespace ormel
