#include "vantle/prefs/ConfigStyleSet.h"

#include "vantle/prefs/SoVantleConfig.h"

void SoSaveStyles(QMap<QString, ConfigStyle> const& styles, QStringList const& names, QString const& group) {
  for (QString const& name : names) {
    ConfigStyle const style = styles.value(name);
    // A name may hold a slash, which makes a group of its own.
    QString const key = group + QLatin1Char('/') + name;
    SoVantleConfig::writeEntry(key + QStringLiteral("/family"), style.font.family());
    SoVantleConfig::writeEntry(key + QStringLiteral("/size"), style.font.pointSize());
    SoVantleConfig::writeEntry(key + QStringLiteral("/bold"), style.font.bold());
    SoVantleConfig::writeEntry(key + QStringLiteral("/italic"), style.font.italic());
    SoVantleConfig::writeEntry(key + QStringLiteral("/underline"), style.font.underline());
    SoVantleConfig::writeEntry(key + QStringLiteral("/red"), style.color.red());
    SoVantleConfig::writeEntry(key + QStringLiteral("/green"), style.color.green());
    SoVantleConfig::writeEntry(key + QStringLiteral("/blue"), style.color.blue());
    SoVantleConfig::writeEntry(key + QStringLiteral("/show"), style.show);
  }
}

bool SoIsStyleStored(QString const& name, QString const& group) {
  QString const key = group + QLatin1Char('/') + name;
  for (char const* entry :
       {"/family", "/size", "/bold", "/italic", "/underline", "/red", "/green", "/blue", "/show"}) {
    bool found = false;
    SoVantleConfig::readEntry(key + QLatin1String(entry), QString(), &found);
    if (found) return true;
  }
  return false;
}

QMap<QString, ConfigStyle> SoReadStyles(QMap<QString, ConfigStyle> styles, QString const& group) {
  for (auto it = styles.begin(); it != styles.end(); ++it) {
    if (!SoIsStyleStored(it.key(), group)) continue;
    QString const key = group + QLatin1Char('/') + it.key();
    ConfigStyle& style = *it;
    style.font = QFont(SoVantleConfig::readEntry(key + QStringLiteral("/family"), style.font.family()));
    style.font.setPointSize(SoVantleConfig::readNumEntry(key + QStringLiteral("/size"), 10));
    style.font.setWeight(SoVantleConfig::readBoolEntry(key + QStringLiteral("/bold")) ? QFont::Bold
                                                                                      : QFont::Normal);
    style.font.setItalic(SoVantleConfig::readBoolEntry(key + QStringLiteral("/italic")));
    style.font.setUnderline(SoVantleConfig::readBoolEntry(key + QStringLiteral("/underline")));
    style.color = QColor(SoVantleConfig::readNumEntry(key + QStringLiteral("/red")),
                         SoVantleConfig::readNumEntry(key + QStringLiteral("/green")),
                         SoVantleConfig::readNumEntry(key + QStringLiteral("/blue")));
    style.show = SoVantleConfig::readBoolEntry(key + QStringLiteral("/show"), true);
  }
  return styles;
}
