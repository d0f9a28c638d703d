#include "store/sql_functions.h"

#include <sqlite3.h>

#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "store/errors.h"
#include "store/value.h"
#include "text/numbers.h"
#include "text/strings.h"

namespace ormel {

namespace {

std::string_view TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void GiveText(sqlite3_context* context, std::string_view text) {
  sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

bool AnyNull(int count, sqlite3_value** values) {
  for (int i = 0; i < count; ++i) {
    if (sqlite3_value_type(values[i]) == SQLITE_NULL) return true;
  }
  return false;
}

int Compare(void*, int size_a, const void* a, int size_b, const void* b) {
  return CompareNoCase({static_cast<const char*>(a), static_cast<std::size_t>(size_a)},
                       {static_cast<const char*>(b), static_cast<std::size_t>(size_b)});
}

void Like(sqlite3_context* context, int count, sqlite3_value** values) {  // like(pattern, text)
  if (AnyNull(count, values)) return sqlite3_result_null(context);
  sqlite3_result_int(context, LikePattern(TextOf(values[1]), TextOf(values[0])) ? 1 : 0);
}

void Now(sqlite3_context* context, int, sqlite3_value**) {
  GiveText(context, DateTime::Now().text);
}

void ValOf(sqlite3_context* context, int, sqlite3_value** values) {
  sqlite3_result_double(context, Val(TextOf(values[0])));
}

void Len(sqlite3_context* context, int count, sqlite3_value** values) {
  if (AnyNull(count, values)) return sqlite3_result_null(context);
  sqlite3_result_int64(context, static_cast<sqlite3_int64>(TextLength(TextOf(values[0]))));
}

void LowerCase(sqlite3_context* context, int count, sqlite3_value** values) {
  if (AnyNull(count, values)) return sqlite3_result_null(context);
  GiveText(context, FoldCase(TextOf(values[0])));
}

void Nz(sqlite3_context* context, int count, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) != SQLITE_NULL) return sqlite3_result_value(context, values[0]);
  if (count > 1) return sqlite3_result_value(context, values[1]);
  sqlite3_result_int(context, 0);
}

struct Function {
  const char* name;
  int arguments;
  void (*call)(sqlite3_context*, int, sqlite3_value**);
  bool deterministic;
};

constexpr std::array kFunctions{
    Function{"like", 2, Like, true}, Function{"now", 0, Now, false},        Function{"val", 1, ValOf, true},
    Function{"len", 1, Len, true},   Function{"lcase", 1, LowerCase, true}, Function{"nz", 1, Nz, true},
    Function{"nz", 2, Nz, true}};

}  // namespace

void InstallSqlFunctions(sqlite3* handle) {
  int code = sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, nullptr, Compare, nullptr);
  for (const Function& function : kFunctions) {
    if (code != SQLITE_OK) break;
    const int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS | (function.deterministic ? SQLITE_DETERMINISTIC : 0);
    code = sqlite3_create_function_v2(handle, function.name, function.arguments, flags, nullptr,
                                      function.call, nullptr, nullptr, nullptr);
  }
  if (code != SQLITE_OK) throw MakeStoreError(handle, code, "", "");
}

}  // namespace ormel
