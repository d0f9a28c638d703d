#include "store/dialect.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "store/store_error.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel::dialect {

namespace {

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

[[noreturn]] void ThrowUnclosed(std::string_view what, std::string_view sql) {
  throw StoreError(StoreErrorCode::kSyntax,
                   "The statement has a " + std::string(what) + " without an end: " + std::string(sql));
}

/// Takes a statement's characters apart.  Positions never leave the text.
class Lexer {
 public:
  explicit Lexer(std::string_view sql) : sql_(sql) {}

  std::vector<Token> Run() {
    while (true) {
      const std::size_t start = at_;
      while (at_ < sql_.size() && IsBlank(sql_[at_])) ++at_;
      if (at_ == sql_.size()) return std::move(tokens_);
      blank_ = at_ > start;
      Next();
    }
  }

 private:
  char Peek(std::size_t ahead) const { return at_ + ahead < sql_.size() ? sql_[at_ + ahead] : '\0'; }
  void Add(TokenKind kind, std::string text) { tokens_.push_back({kind, std::move(text), blank_}); }
  std::string Take(std::size_t end) {
    std::string text(sql_.substr(at_, end - at_));
    at_ = end;
    return text;
  }

  void Next() {
    const char c = sql_[at_];
    if (c == '\'' || c == '"') {
      Quoted(c);
    } else if (c == '[') {
      const std::size_t end = sql_.find(']', at_);
      if (end == std::string_view::npos) ThrowUnclosed("name in brackets", sql_);
      Add(TokenKind::kName, Take(end + 1));
    } else if (IsLetter(c)) {
      std::size_t end = at_;
      while (end < sql_.size() && (IsLetter(sql_[end]) || IsDigit(sql_[end]) || sql_[end] == '$')) ++end;
      Add(TokenKind::kWord, Take(end));
    } else if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) {
      Number();
    } else if (c != '#' || !Date()) {
      Symbol();
    }
  }

  /// A text in either quote; gives it in single quotes.
  void Quoted(char quote) {
    std::string text = "'";
    for (++at_; at_ < sql_.size(); ++at_) {
      const char c = sql_[at_];
      if (c == quote && Peek(1) != quote) {
        ++at_;
        Add(TokenKind::kText, text + '\'');
        return;
      }
      if (c == quote) ++at_;
      text.append(c == '\'' ? 2 : 1, c);
    }
    ThrowUnclosed("text in quotes", sql_);
  }

  void Number() {
    std::size_t end = at_;
    while (end < sql_.size() && (IsDigit(sql_[end]) || sql_[end] == '.')) ++end;
    if (end < sql_.size() && (sql_[end] == 'e' || sql_[end] == 'E')) {
      std::size_t digits = end + 1;
      if (digits < sql_.size() && (sql_[digits] == '+' || sql_[digits] == '-')) ++digits;
      if (digits < sql_.size() && IsDigit(sql_[digits])) {
        end = digits;
        while (end < sql_.size() && IsDigit(sql_[end])) ++end;
      }
    }
    Add(TokenKind::kNumber, Take(end));
  }

  bool Date() {
    const std::size_t end = sql_.find('#', at_ + 1);
    if (end == std::string_view::npos) return false;
    const std::string text(sql_.substr(at_ + 1, end - at_ - 1));
    std::array<int, 6> n{};  // year month day hour minute second
    int used = 0;
    if (std::sscanf(text.c_str(), " %4d-%2d-%2d%n", &n[0], &n[1], &n[2], &used) != 3 &&
        std::sscanf(text.c_str(), " %2d/%2d/%4d%n", &n[1], &n[2], &n[0], &used) != 3) {
      return false;
    }
    std::sscanf(text.c_str() + used, " %2d:%2d:%2d", &n[3], &n[4], &n[5]);
    const bool valid = n[0] >= 0 && n[0] <= 9999 && n[1] >= 1 && n[1] <= 12 && n[2] >= 1 && n[2] <= 31 &&
                       n[3] >= 0 && n[3] <= 23 && n[4] >= 0 && n[4] <= 59 && n[5] >= 0 && n[5] <= 59;
    if (!valid) return false;
    std::array<char, 80> out{};
    std::snprintf(out.data(), out.size(), "'%04d-%02d-%02d %02d:%02d:%02d'", n[0], n[1], n[2], n[3], n[4],
                  n[5]);
    at_ = end + 1;
    Add(TokenKind::kDate, out.data());
    return true;
  }

  void Symbol() {
    static constexpr std::array<std::string_view, 6> kPairs{"<=", ">=", "<>", "!=", "==", "||"};
    const std::string_view pair = sql_.substr(at_, 2);
    const bool is_pair = std::find(kPairs.begin(), kPairs.end(), pair) != kPairs.end();
    Add(TokenKind::kSymbol, Take(at_ + (is_pair ? 2 : 1)));
  }

  std::string_view sql_;
  std::size_t at_ = 0;
  bool blank_ = false;
  std::vector<Token> tokens_;
};

bool IsIdentifier(const Token& token) {
  return token.kind == TokenKind::kWord || token.kind == TokenKind::kName;
}

/// A word that stands for itself: no part of "Table.Field" and no function.
bool StandsAlone(const std::vector<Token>& tokens, std::size_t i) {
  const bool qualified =
      (i > 0 && tokens[i - 1].IsSymbol(".")) || (i + 1 < tokens.size() && tokens[i + 1].IsSymbol("."));
  return !qualified && !(i + 1 < tokens.size() && tokens[i + 1].IsSymbol("("));
}

void DropDeleteStar(std::vector<Token>& tokens) {
  if (tokens.size() < 3 || !tokens[0].IsWord("delete")) return;
  std::size_t from = 1;
  while (from < tokens.size() && !tokens[from].IsWord("from")) ++from;
  if (from < tokens.size() && tokens[from - 1].IsSymbol("*"))
    tokens.erase(tokens.begin() + 1, tokens.begin() + static_cast<std::ptrdiff_t>(from));
}

void ReplaceWords(std::vector<Token>& tokens) {
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    Token& token = tokens[i];
    if (token.IsSymbol("&")) token.text = "||";
    if (token.IsSymbol("-") && i > 0 && tokens[i - 1].IsSymbol("-"))
      token.blank = true;  // "--" opens a comment
    if (token.kind != TokenKind::kWord || !StandsAlone(tokens, i)) continue;
    if (token.IsWord("true") || token.IsWord("false")) {
      token = {TokenKind::kNumber, token.IsWord("true") ? "(-1)" : "0", token.blank};
    }
  }
}

std::vector<Token> TranslateTokens(std::string_view sql) {
  std::vector<Token> tokens = Tokenize(sql);
  while (!tokens.empty() && tokens.back().IsSymbol(";")) tokens.pop_back();
  DropDeleteStar(tokens);
  ReplaceWords(tokens);
  return tokens;
}

struct Range {
  std::size_t begin;
  std::size_t end;
};

/// The first of `words` behind `begin` that stands outside parentheses; the token count when there is none.
std::size_t FindTopLevel(const std::vector<Token>& tokens, std::size_t begin,
                         std::initializer_list<std::string_view> words) {
  int depth = 0;
  for (std::size_t i = begin; i < tokens.size(); ++i) {
    if (tokens[i].IsSymbol("(")) ++depth;
    if (tokens[i].IsSymbol(")")) --depth;
    if (depth != 0) continue;
    for (const std::string_view word : words) {
      if (tokens[i].IsWord(word)) return i;
    }
  }
  return tokens.size();
}

/// The items between commas outside parentheses.
std::vector<Range> SplitList(const std::vector<Token>& tokens, std::size_t begin, std::size_t end) {
  std::vector<Range> items;
  int depth = 0;
  std::size_t start = begin;
  for (std::size_t i = begin; i < end; ++i) {
    if (tokens[i].IsSymbol("(")) ++depth;
    if (tokens[i].IsSymbol(")")) --depth;
    if (depth == 0 && tokens[i].IsSymbol(",")) {
      items.push_back({start, i});
      start = i + 1;
    }
  }
  items.push_back({start, end});
  return items;
}

struct Alias {
  std::string name;
  std::vector<Token> expression;
};

/// `tokens` with every use of an alias replaced by its expression in parentheses.
std::vector<Token> PutIn(const std::vector<Token>& tokens, Range range, const std::vector<Alias>& aliases) {
  std::vector<Token> out;
  for (std::size_t i = range.begin; i < range.end; ++i) {
    const Alias* found = nullptr;
    if (IsIdentifier(tokens[i]) && StandsAlone(tokens, i)) {
      const std::string name = tokens[i].Name();
      for (const Alias& alias : aliases) {
        if (EqualNoCase(alias.name, name)) found = &alias;
      }
    }
    if (found == nullptr) {
      out.push_back(tokens[i]);
      continue;
    }
    out.push_back({TokenKind::kSymbol, "(", tokens[i].blank});
    out.insert(out.end(), found->expression.begin(), found->expression.end());
    out.push_back({TokenKind::kSymbol, ")", false});
  }
  return out;
}

/// A plain field of a select list, qualified or not; "" when the item is anything else.
std::string PlainField(const std::vector<Token>& tokens, Range item, std::string_view table) {
  const std::size_t count = item.end - item.begin;
  if (count == 1 && IsIdentifier(tokens[item.begin])) return tokens[item.begin].Name();
  if (count == 3 && IsIdentifier(tokens[item.begin]) && tokens[item.begin + 1].IsSymbol(".") &&
      IsIdentifier(tokens[item.begin + 2]) && EqualNoCase(tokens[item.begin].Name(), table)) {
    return tokens[item.begin + 2].Name();
  }
  return {};
}

bool IsStar(const std::vector<Token>& tokens, Range item, std::string_view table) {
  if (!tokens[item.end - 1].IsSymbol("*")) return false;
  const std::size_t count = item.end - item.begin;
  return count == 1 || (count == 3 && EqualNoCase(tokens[item.begin].Name(), table));
}

/// Does "order by" use numbers of list items?
bool OrdersByPosition(const std::vector<Token>& tokens, std::size_t begin) {
  for (const Range item : SplitList(tokens, begin, tokens.size())) {
    if (item.end > item.begin && tokens[item.begin].kind == TokenKind::kNumber) return true;
  }
  return false;
}

}  // namespace

bool Token::IsWord(std::string_view word) const {
  return kind == TokenKind::kWord && EqualNoCase(text, word);
}

bool Token::IsSymbol(std::string_view symbol) const {
  return kind == TokenKind::kSymbol && text == symbol;
}

std::string Token::Name() const {
  return kind == TokenKind::kName ? text.substr(1, text.size() - 2) : text;
}

std::vector<Token> Tokenize(std::string_view sql) {
  return Lexer(sql).Run();
}

std::string Join(const std::vector<Token>& tokens, std::size_t begin, std::size_t end) {
  std::string out;
  for (std::size_t i = begin; i < end; ++i) {
    if (tokens[i].blank && !out.empty()) out += ' ';
    out += tokens[i].text;
  }
  return out;
}

std::string Translate(std::string_view sql) {
  const std::vector<Token> tokens = TranslateTokens(sql);
  return Join(tokens, 0, tokens.size());
}

std::string TranslateExpandingAliases(std::string_view sql) {
  const std::vector<Token> tokens = TranslateTokens(sql);
  if (tokens.empty() || !tokens[0].IsWord("select")) return Join(tokens, 0, tokens.size());
  const std::size_t from = FindTopLevel(tokens, 1, {"from"});
  std::vector<Token> out(tokens.begin(), tokens.begin() + 1);
  std::vector<Alias> aliases;
  for (const Range item : SplitList(tokens, 1, from)) {
    if (item.begin > 1) out.push_back(tokens[item.begin - 1]);
    const bool named =
        item.end - item.begin > 2 && tokens[item.end - 2].IsWord("as") && IsIdentifier(tokens[item.end - 1]);
    const std::size_t end = named ? item.end - 2 : item.end;
    std::vector<Token> expression = PutIn(tokens, {item.begin, end}, aliases);
    out.insert(out.end(), expression.begin(), expression.end());
    out.insert(out.end(), tokens.begin() + static_cast<std::ptrdiff_t>(end),
               tokens.begin() + static_cast<std::ptrdiff_t>(item.end));
    if (!named) continue;
    if (!expression.empty()) expression.front().blank = false;  // it will stand behind a parenthesis
    aliases.push_back({tokens[item.end - 1].Name(), std::move(expression)});
  }
  out.insert(out.end(), tokens.begin() + static_cast<std::ptrdiff_t>(from), tokens.end());
  return Join(out, 0, out.size());
}

bool ParseKeyCondition(std::string_view criteria, KeyCondition& out) {
  const std::vector<Token> tokens = TranslateTokens(criteria);
  const bool negative = tokens.size() == 4 && tokens[2].IsSymbol("-");
  if (tokens.size() != (negative ? 4U : 3U) || !IsIdentifier(tokens[0]) || !tokens[1].IsSymbol("="))
    return false;
  const Token& literal = tokens.back();
  if (literal.kind == TokenKind::kText && !negative) {
    std::string text;
    for (std::size_t i = 1; i + 1 < literal.text.size(); ++i) {
      text += literal.text[i];
      if (literal.text[i] == '\'') ++i;
    }
    out.value = Value(std::move(text));
  } else if (literal.kind == TokenKind::kNumber) {
    const double number = literal.text == "(-1)" ? -1.0 : Val(literal.text);
    out.value = Value(negative ? -number : number);
  } else {
    return false;
  }
  out.field = tokens[0].Name();
  return true;
}

SelectInfo AnalyzeSelect(std::string_view sql) {
  SelectInfo info;
  const std::vector<Token> tokens = TranslateTokens(sql);
  if (tokens.size() < 4 || !tokens[0].IsWord("select") || tokens[1].IsWord("distinct")) return info;
  const std::size_t from = FindTopLevel(tokens, 1, {"from"});
  if (from + 1 >= tokens.size() || !IsIdentifier(tokens[from + 1])) return info;
  info.table = tokens[from + 1].Name();
  const std::size_t stop =
      FindTopLevel(tokens, from + 2, {"group", "having", "union", "limit", "join", "intersect", "except"});
  const std::size_t where = FindTopLevel(tokens, from + 2, {"where", "order"});
  // Between the table and "where" there is room for nothing: commas and other names make a join or an alias.
  if (stop != tokens.size() || where != from + 2) return info;
  const std::size_t order = FindTopLevel(tokens, where, {"order"});
  for (const Range item : SplitList(tokens, 1, from)) {
    if (item.begin == item.end) return info;
    if (IsStar(tokens, item, info.table)) {
      if (from - 1 != item.end - item.begin) return info;  // "*" and more
      continue;
    }
    std::string field = PlainField(tokens, item, info.table);
    if (field.empty()) return info;
    info.fields.push_back(std::move(field));
  }
  info.tail = Join(tokens, from + 2, order);
  if (order < tokens.size()) {
    if (order + 1 >= tokens.size() || !tokens[order + 1].IsWord("by") || OrdersByPosition(tokens, order + 2))
      return info;
    info.order = Join(tokens, order + 2, tokens.size());
  }
  info.single_table = true;
  return info;
}

}  // namespace ormel::dialect
