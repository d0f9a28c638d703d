#include "ormel/file_filter.h"

#include "ormel/qt_text.h"

namespace ormel {
namespace {

/// Both letter cases of a pattern: the files may come from a system that does not tell them apart.
QString BothCases(const QString& pattern) {
  QStringList all;
  for (const QString& one : pattern.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
    const QString trimmed = one.trimmed();
    all << trimmed;
    for (const QString& other : {trimmed.toLower(), trimmed.toUpper()})
      if (!all.contains(other)) all << other;
  }
  return all.join(QLatin1Char(' '));
}

}  // namespace

QStringList NameFilters(std::string_view filter) {
  const QStringList parts = ToQString(filter).split(QLatin1Char('|'));
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // The caption often repeats the pattern in parentheses, which the toolkit would read as the pattern.
    QString caption = parts[i].section(QLatin1Char('('), 0, 0).trimmed();
    if (caption.isEmpty()) caption = parts[i + 1];
    filters << QStringLiteral("%1 (%2)").arg(caption, BothCases(parts[i + 1]));
  }
  if (!filters.isEmpty()) filters << QStringLiteral("All Files (*)");
  return filters;
}

QString SuffixOf(const QString& filter) {
  return filter.section(QStringLiteral("(*."), 1)
      .section(QLatin1Char(' '), 0, 0)
      .section(QLatin1Char(')'), 0, 0);
}

}  // namespace ormel
