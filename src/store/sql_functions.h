// What the store adds to SQLite: comparison without regard to case, patterns, a few functions.
#pragma once

struct sqlite3;

namespace ormel {

/// The built-in collation NOCASE is replaced by one that knows Latin letters with diacritics; fields are
/// declared with it, so every text comparison ignores case.  For texts of ASCII alone both sort alike, so
/// other programs can check the file.  "like" takes the patterns of LikePattern.  Further: now(), val(),
/// len(), lcase(), nz().
void InstallSqlFunctions(sqlite3* handle);

}  // namespace ormel
