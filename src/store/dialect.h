// The store's SQL dialect, turned into what SQLite takes.
//
//   delete * from T          the star is dropped
//   [Field]                  a name
//   "text"                   a text, like 'text'; quotes inside are doubled
//   True, False              -1 and 0
//   a & b                    texts joined
//   #2026-11-24 13:05#       a date; also #11/24/2026# with the month first
//   like                     with the patterns of LikePattern (text/strings.h); the connection supplies that
//   select ... as a, a*a     a computed column used again in the same list (ExpandAliases)
// Texts inside quotes and names inside brackets are never touched.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/value.h"

namespace ormel::dialect {

enum class TokenKind { kWord, kName, kText, kNumber, kDate, kSymbol };

struct Token {
  TokenKind kind;
  std::string text;    // as SQLite takes it; kName: as written, with its brackets
  bool blank = false;  // a blank stood in front of it

  bool IsWord(std::string_view word) const;
  bool IsSymbol(std::string_view symbol) const;
  /// The plain name of a kWord or kName.
  std::string Name() const;
};

/// Throws StoreError (kSyntax) on a text or name that has no end.
std::vector<Token> Tokenize(std::string_view sql);
std::string Join(const std::vector<Token>& tokens, std::size_t begin, std::size_t end);

/// The whole statement for SQLite, without a final ";".
std::string Translate(std::string_view sql);
/// Translate, with computed columns of the first select list put in where the list uses them again.
std::string TranslateExpandingAliases(std::string_view sql);

/// "Field = literal" taken apart.
struct KeyCondition {
  std::string field;
  Value value;
};
/// False when `criteria` is anything else.
bool ParseKeyCondition(std::string_view criteria, KeyCondition& out);

/// What a recordset has to know of its statement.
struct SelectInfo {
  /// One table, plain fields or "*", no grouping: rows can be told by their table's row numbers.
  bool single_table = false;
  std::string table;
  std::vector<std::string> fields;  // empty = all
  std::string tail;                 // from behind the table's name up to "order by"
  std::string order;                // behind "order by"
};
SelectInfo AnalyzeSelect(std::string_view sql);

}  // namespace ormel::dialect
