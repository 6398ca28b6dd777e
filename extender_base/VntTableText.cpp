#include "extender_base/VntTableText.h"

namespace {

constexpr QChar QUOTE = u'"', TAB = u'\t', LINE = u'\n';

/// A cell in quotation marks; `at` stands behind the first one, and then behind the last one.
QString readQuoted(QStringView text, qsizetype& at) {
  QString cell;
  for (; at < text.size(); ++at) {
    if (text[at] == QUOTE) {
      ++at;
      if (at >= text.size() || text[at] != QUOTE) break;
    }
    cell += text[at];
  }
  return cell;
}

std::vector<QString> splitWords(QStringView line) {
  std::vector<QString> words;
  auto const isBetween = [](QChar c) { return c.isSpace() || c == u',' || c == u';'; };
  int depth = 0; // "max(1, 2)" is one word
  qsizetype start = -1;
  for (qsizetype i = 0; i <= line.size(); ++i) {
    bool const ends = i == line.size() || (depth <= 0 && isBetween(line[i]));
    if (!ends) {
      depth += line[i] == u'(' ? 1 : line[i] == u')' ? -1 : 0;
      if (start < 0) start = i;
    } else if (start >= 0) {
      words.push_back(line.mid(start, i - start).toString());
      start = -1;
    }
  }
  return words;
}

} // namespace

std::vector<std::vector<QString>> vntReadSheet(QString const& source, bool splits) {
  QString text = source;
  text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', LINE);
  if (text.endsWith(LINE)) text.chop(1);
  if (splits && text.trimmed().startsWith(u'[') && text.trimmed().endsWith(u']'))
    text = text.trimmed().mid(1).chopped(1).replace(u',', LINE);
  std::vector<std::vector<QString>> rows;
  if (text.isEmpty() && source.isEmpty()) return rows;
  if (splits && !text.contains(TAB)) {
    for (QStringView line : QStringView(text).split(LINE)) {
      std::vector<QString> words = splitWords(line);
      if (!words.empty()) rows.push_back(std::move(words));
    }
    return rows;
  }
  rows.emplace_back();
  for (qsizetype at = 0;;) {
    QString cell;
    if (at < text.size() && text[at] == QUOTE) cell = readQuoted(text, ++at);
    qsizetype const start = at;
    while (at < text.size() && text[at] != TAB && text[at] != LINE) ++at;
    cell += QStringView(text).mid(start, at - start);
    rows.back().push_back(splits ? cell.trimmed() : cell);
    if (at >= text.size()) return rows;
    if (text[at++] == LINE) rows.emplace_back();
  }
}

void vntWriteCell(QString& text, QString const& cell) {
  bool const isPlain =
      !cell.contains(TAB) && !cell.contains(LINE) && !cell.contains(u'\r') && !cell.startsWith(QUOTE);
  if (isPlain) {
    text += cell;
  } else {
    text += QUOTE + QString(cell).replace(QUOTE, QStringLiteral("\"\"")) + QUOTE;
  }
}
