#include "qtdevice/fonts.h"

#include <QString>
#include <QStringList>
#include <array>

namespace ormel {
namespace {

/// Families of the same widths, so that labels keep their length.
struct Substitute {
  const char* name;
  const char* first;
  const char* second;
};
constexpr std::array kSubstitutes = {
    Substitute{"Arial", "Liberation Sans", "DejaVu Sans"},
    Substitute{"Helvetica", "Liberation Sans", "DejaVu Sans"},
    Substitute{"MS Sans Serif", "Liberation Sans", "DejaVu Sans"},
    Substitute{"Arial Narrow", "Liberation Sans Narrow", "DejaVu Sans Condensed"},
    Substitute{"Times New Roman", "Liberation Serif", "DejaVu Serif"},
    Substitute{"Courier New", "Liberation Mono", "DejaVu Sans Mono"},
};

QStringList Families(const QString& name) {
  QStringList families{name};
  for (const Substitute& row : kSubstitutes)
    if (name.compare(QLatin1StringView(row.name), Qt::CaseInsensitive) == 0)
      families << QLatin1StringView(row.first) << QLatin1StringView(row.second);
  families << QStringLiteral("Liberation Sans") << QStringLiteral("DejaVu Sans");
  return families;
}

}  // namespace

QFont MapFont(std::string_view family, bool bold, bool italic) {
  QFont font;
  font.setFamilies(Families(QString::fromUtf8(family.data(), static_cast<qsizetype>(family.size()))));
  font.setBold(bold);
  font.setItalic(italic);
  return font;
}

}  // namespace ormel
