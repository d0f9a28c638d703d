// The rows of a database file read page by page, as the file format of SQLite 3 lays them out; for
// salvage.cpp.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "store/value.h"

namespace ormel {

class PageReader {
 public:
  /// Numbers as int64 or double, texts as std::string, blobs as texts.
  using Row = std::function<void(std::int64_t rowid, const std::vector<Value>& values)>;

  explicit PageReader(std::string_view bytes);

  /// What a walk met.
  struct Outcome {
    std::int64_t spoilt = 0;  ///< cells that cannot be read
    bool pages_lost = false;
  };
  /// Calls `row` for every row of the table whose tree begins on page `root`.
  Outcome Walk(std::uint32_t root, const Row& row);
  /// The rows of pages with rows that no walk has met and that are not free.
  void WalkStray(const std::function<void(std::uint32_t page)>& begin, const Row& row);
  std::uint32_t PageCount() const { return page_count_; }

 private:
  std::string_view Page(std::uint32_t number) const;
  void Visit(std::uint32_t number, int depth, const Row& row, Outcome& outcome);
  void ReadLeaf(std::uint32_t number, const Row& row, Outcome& outcome) const;
  bool ReadCell(std::string_view page, std::size_t at, std::int64_t& rowid, std::vector<Value>& values) const;
  bool Payload(std::string_view page, std::size_t at, std::uint64_t size, std::string& payload) const;
  void FindFree();

  std::string_view bytes_;
  std::uint32_t page_size_ = 4096, page_count_ = 0;
  std::set<std::uint32_t> seen_, free_;
};

}  // namespace ormel
