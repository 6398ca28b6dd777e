#include "extender_base/VntTableEdits.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

#include "extender_base/VntExpression.h"
#include "extender_base/VntTableCommand.h"
#include "kestrava/fields/SoMField.h"
#include "kestrava/io/SoDB.h"
#include "vnt/VntFieldEdit.h"

namespace {

constexpr int MOST_NUMBERS = 16;
constexpr double DEGREE = std::numbers::pi / 180;

bool isColumnOf(std::uint32_t columns, int column) { return columns >> column & 1; }

int countRows(std::vector<VntTableCells> const& rows) {
  return std::accumulate(rows.begin(), rows.end(), 0,
                         [](int sum, VntTableCells const& part) { return sum + part.count; });
}

std::vector<int> listRows(std::vector<VntTableCells> const& rows) {
  std::vector<int> list;
  list.reserve(countRows(rows));
  for (VntTableCells const& part : rows) {
    for (int i = 0; i < part.count; ++i) list.push_back(part.start + i);
  }
  return list;
}

std::vector<VntTableRun> replacing(std::vector<VntTableCells> const& rows) {
  std::vector<VntTableRun> runs;
  runs.reserve(rows.size());
  for (VntTableCells const& part : rows) runs.push_back({part.start, part.count, part.count});
  return runs;
}

} // namespace

/// A change of one value that is not yet a step: what the value was.
struct VntTableEdits::Trial {
  int row;
  std::unique_ptr<VntTableList> before;
  bool wasDefault;
};

VntTableEdits::VntTableEdits(VntFieldEdit* edit)
    : m_edit(edit), m_access(VntTableAccess::of(*edit->getFieldAs<SoMField>())) {}

VntTableEdits::~VntTableEdits() { cancel(); }

SoMField* VntTableEdits::getField() const { return m_edit->getFieldAs<SoMField>(); }

QString VntTableEdits::where() const { return m_edit->getDescription(); }

QString VntTableEdits::counted(int count) { return count == 1 ? tr("1 value") : tr("%1 values").arg(count); }

QString VntTableEdits::refusal() const {
  if (!getField()) return tr("The field is gone.");
  return m_edit->isEditable() ? QString() : tr("The field can not be changed here.");
}

QString VntTableEdits::atCell(int row, int column, QString const& problem) const {
  auto const& columns = m_access.getColumns();
  return columns.size() > 1 ? tr("Row %1, %2: %3").arg(row).arg(columns[column].name, problem)
                            : tr("Row %1: %2").arg(row).arg(problem);
}

std::vector<VntTableCells> VntTableEdits::clip(std::vector<VntTableCells> const& rows) const {
  int const size = getField()->getNum();
  std::vector<VntTableCells> there;
  for (VntTableCells part : rows) {
    part.count = std::min(part.count, size - part.start);
    if (part.count > 0) there.push_back(part);
  }
  return there;
}

QString VntTableEdits::exchange(std::vector<VntTableRun> runs, std::unique_ptr<VntTableList> values,
                                QString const& what) {
  m_edit->execute(std::make_unique<VntTableExchange>(getField(), what, std::move(runs), std::move(values)));
  return {};
}

QString VntTableEdits::change(std::vector<VntTableCells> const& cells, QString const& what,
                              Change const& change) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  std::vector<VntTableCells> const parts = clip(cells);
  SoMField const& field = *getField();
  auto values = m_access.makeList(field);
  bool isSame = true;
  for (VntTableCells const& part : parts) {
    int const first = values->size();
    values->append(field, part.start, part.count);
    for (int i = 0; i < part.count; ++i) {
      QString const problem = change(*values, first + i, part.start + i, part.columns);
      if (!problem.isEmpty()) return problem;
      isSame = isSame && values->isSame(first + i, field, part.start + i);
    }
  }
  return isSame ? QString() : exchange(replacing(parts), std::move(values), what);
}

QString VntTableEdits::setNumberIn(VntTableList& list, int index, int column, double number) const {
  std::array<double, MOST_NUMBERS> before, numbers;
  list.getNumbers(index, before.data());
  numbers = before;
  numbers[column] = number;
  QString const problem = list.setNumbers(index, numbers.data());
  if (!problem.isEmpty() || static_cast<float>(number) == static_cast<float>(before[column])) return problem;
  list.getNumbers(index, numbers.data());
  if (m_access.getNumNumbers() == 4 && std::equal(before.begin(), before.begin() + 4, numbers.begin()))
    return tr("this changes nothing: an axis or a normal has the length 1, and a rotation by 0 has no axis");
  return {};
}

QString VntTableEdits::setNumbersIn(VntTableList& list, int index, int row, double const* numbers) const {
  int wrong = -1;
  QString const problem = list.setNumbers(index, numbers, &wrong);
  if (problem.isEmpty()) return problem;
  return wrong >= 0 ? atCell(row, wrong, problem) : tr("Row %1: %2").arg(row).arg(problem);
}

QString VntTableEdits::setTextIn(VntTableList& list, int index, int row, int column,
                                 QString const& text) const {
  QString problem;
  if (m_access.getColumns()[column].isNumber()) {
    VntExpression::Result const result = VntExpression::evaluate(text, DEGREE);
    problem = result ? setNumberIn(list, index, column, result.value) : result.problem;
  } else {
    problem = list.setText(index, text, *getField());
  }
  return problem.isEmpty() ? problem : atCell(row, column, problem);
}

QString VntTableEdits::setNumber(int row, int column, double number) {
  return change({{row, 1, 1u << column}}, tr("Set value %1 of %2").arg(row).arg(where()),
                [=, this](VntTableList& list, int index, int, std::uint32_t) {
                  QString const problem = setNumberIn(list, index, column, number);
                  return problem.isEmpty() ? problem : atCell(row, column, problem);
                });
}

QString VntTableEdits::setText(int row, int column, QString const& text) {
  return change({{row, 1, 1u << column}}, tr("Set value %1 of %2").arg(row).arg(where()),
                [=, this](VntTableList& list, int index, int, std::uint32_t) {
                  return setTextIn(list, index, row, column, text);
                });
}

QString VntTableEdits::tryCell(int row, Change const& change) {
  if (m_trial && m_trial->row != row) finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  SoMField& field = *getField();
  if (row >= field.getNum()) return tr("There is no row %1 any more.").arg(row);
  auto value = m_access.makeList(field);
  value->append(field, row, 1);
  QString const problem = change(*value, 0, row, 0);
  if (!problem.isEmpty()) return problem;
  bool const wasDefault = field.isDefault();
  std::vector<VntTableRun> runs = {{row, 1, 1}};
  SoDB::writelock();
  value->exchange(field, runs);
  if (!m_trial) m_trial = std::make_unique<Trial>(Trial{row, std::move(value), wasDefault});
  field.valueChanged();
  SoDB::writeunlock();
  return {};
}

QString VntTableEdits::preview(int row, int column, double number) {
  return tryCell(row, [=, this](VntTableList& list, int index, int, std::uint32_t) {
    QString const problem = setNumberIn(list, index, column, number);
    return problem.isEmpty() ? problem : atCell(row, column, problem);
  });
}

QString VntTableEdits::previewText(int row, int column, QString const& text) {
  return tryCell(row, [=, this](VntTableList& list, int index, int, std::uint32_t) {
    return setTextIn(list, index, row, column, text);
  });
}

QString VntTableEdits::previewValue(int row, SoField const& value) {
  return tryCell(row, [&value](VntTableList& list, int index, int, std::uint32_t) {
    list.setValue(index, value);
    return QString();
  });
}

void VntTableEdits::finish() {
  if (!m_trial) return;
  auto const trial = std::move(m_trial);
  SoMField* const field = getField();
  if (!field || trial->row >= field->getNum()) return;
  if (trial->before->isSame(0, *field, trial->row)) return field->setDefault(trial->wasDefault);
  auto command = std::make_unique<VntTableExchange>(
      field, tr("Set value %1 of %2").arg(trial->row).arg(where()),
      std::vector<VntTableRun>{{trial->row, 1, 1}}, std::move(trial->before));
  command->setDone(trial->wasDefault);
  m_edit->execute(std::move(command));
}

void VntTableEdits::cancel() {
  if (!m_trial) return;
  auto const trial = std::move(m_trial);
  SoMField* const field = getField();
  if (!field || trial->row >= field->getNum()) return;
  std::vector<VntTableRun> runs = {{trial->row, 1, 1}};
  SoDB::writelock();
  trial->before->exchange(*field, runs);
  field->setDefault(trial->wasDefault);
  field->touch();
  SoDB::writeunlock();
}

QString VntTableEdits::insert(int row, int count) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  auto values = m_access.makeList(*getField());
  values->appendDefaults(count);
  return exchange({{std::min(row, getField()->getNum()), 0, count}}, std::move(values),
                  tr("Insert %1 into %2").arg(counted(count), where()));
}

QString VntTableEdits::remove(std::vector<VntTableCells> const& rows) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  std::vector<VntTableCells> const parts = clip(rows);
  if (parts.empty()) return {};
  std::vector<VntTableRun> runs;
  for (VntTableCells const& part : parts) runs.push_back({part.start, part.count, 0});
  return exchange(std::move(runs), m_access.makeList(*getField()),
                  tr("Delete %1 of %2").arg(counted(countRows(parts)), where()));
}

QString VntTableEdits::duplicate(std::vector<VntTableCells> const& rows) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  std::vector<VntTableCells> const parts = clip(rows);
  if (parts.empty()) return {};
  auto values = m_access.makeList(*getField());
  std::vector<VntTableRun> runs;
  for (VntTableCells const& part : parts) {
    values->append(*getField(), part.start, part.count);
    runs.push_back({part.start + part.count, 0, part.count});
  }
  return exchange(std::move(runs), std::move(values),
                  tr("Duplicate %1 of %2").arg(counted(countRows(parts)), where()));
}

QString VntTableEdits::permute(std::vector<int> const& rows, std::vector<int> const& order,
                               QString const& what) {
  auto const values = m_access.makeList(*getField());
  auto const staysSame = [&](std::size_t i) {
    if (rows[i] == order[i]) return true;
    values->append(*getField(), order[i], 1);
    return values->isSame(values->size() - 1, *getField(), rows[i]);
  };
  std::size_t same = 0;
  while (same < rows.size() && staysSame(same)) ++same;
  if (same == rows.size()) return {};
  int const start = rows.front();
  std::vector<int> whole(rows.back() - start + 1);
  std::iota(whole.begin(), whole.end(), 0);
  for (std::size_t i = 0; i < rows.size(); ++i) whole[rows[i] - start] = order[i] - start;
  m_edit->execute(std::make_unique<VntTableReorder>(getField(), what, start, std::move(whole)));
  return {};
}

QString VntTableEdits::move(std::vector<VntTableCells> const& rows, bool up) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  std::vector<VntTableCells> const parts = clip(rows);
  if (parts.empty()) return {};
  int const first = std::max(0, parts.front().start - 1);
  int const last = std::min(getField()->getNum(), parts.back().start + parts.back().count + 1) - 1;
  std::vector<int> places(last - first + 1);
  std::iota(places.begin(), places.end(), first);
  std::vector<int> order = places;
  // A group at the end has no room to move, and neither has one that meets it.
  auto const moveOne = [&](VntTableCells const& part) {
    auto const begin = order.begin() + (part.start - first);
    if (up && part.start > 0)
      std::rotate(begin - 1, begin, begin + part.count);
    else if (!up && part.start + part.count < getField()->getNum())
      std::rotate(begin, begin + part.count, begin + part.count + 1);
  };
  if (up)
    std::for_each(parts.begin(), parts.end(), moveOne);
  else
    std::for_each(parts.rbegin(), parts.rend(), moveOne);
  int const count = countRows(parts);
  return permute(places, order,
                 (up ? tr("Move %1 of %2 up") : tr("Move %1 of %2 down")).arg(counted(count), where()));
}

QString VntTableEdits::sort(std::vector<VntTableCells> const& rows, int column, bool ascending) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  SoMField const& field = *getField();
  std::vector<int> const places = listRows(clip(rows));
  if (places.empty()) return {};
  std::vector<int> ranks(places.size());
  std::iota(ranks.begin(), ranks.end(), 0);
  auto const sortBy = [&](auto const& keys, auto const& isLess) {
    std::stable_sort(ranks.begin(), ranks.end(), [&](int a, int b) {
      return ascending ? isLess(keys[a], keys[b]) : isLess(keys[b], keys[a]);
    });
  };
  VntTableColumn const& key = m_access.getColumns()[column];
  if (key.isNumber()) {
    std::vector<double> keys;
    keys.reserve(places.size());
    std::array<double, MOST_NUMBERS> numbers;
    for (int row : places) {
      m_access.getNumbers(field, row, 1, numbers.data());
      keys.push_back(numbers[column]);
    }
    auto const end =
        std::stable_partition(ranks.begin(), ranks.end(), [&](int i) { return !std::isnan(keys[i]); });
    std::stable_sort(ranks.begin(), end,
                     [&](int a, int b) { return ascending ? keys[a] < keys[b] : keys[b] < keys[a]; });
  } else {
    std::vector<QString> keys;
    keys.reserve(places.size());
    for (int row : places) keys.push_back(m_access.getText(field, row, column));
    sortBy(keys, [](QString const& a, QString const& b) { return a < b; });
  }
  std::vector<int> order;
  order.reserve(ranks.size());
  for (int rank : ranks) order.push_back(places[rank]);
  return permute(places, order, tr("Sort %1 by %2").arg(where(), key.name));
}

QString VntTableEdits::reverse(std::vector<VntTableCells> const& rows) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  std::vector<int> const places = listRows(clip(rows));
  if (places.empty()) return {};
  return permute(places, {places.rbegin(), places.rend()}, tr("Reverse %1").arg(where()));
}

QString VntTableEdits::apply(std::vector<VntTableCells> const& cells, QString const& expression) {
  auto const& columns = m_access.getColumns();
  int const numNumbers = m_access.getNumNumbers();
  auto const changeNumbers = [&, this](VntTableList& list, int index, int row, std::uint32_t wanted) {
    std::array<double, MOST_NUMBERS> numbers;
    list.getNumbers(index, numbers.data());
    for (int column = 0; column < numNumbers; ++column) {
      if (!isColumnOf(wanted, column)) continue;
      VntExpression::Variable const variables[] = {{"v", numbers[column]}, {"i", static_cast<double>(row)}};
      VntExpression::Result const result = VntExpression::evaluate(expression, DEGREE, variables);
      if (!result) return atCell(row, column, result.problem);
      bool const isWhole = columns[column].kind == VntTableColumn::INTEGER;
      numbers[column] = isWhole ? std::round(result.value) : result.value;
    }
    return setNumbersIn(list, index, row, numbers.data());
  };
  return change(cells, tr("Apply %1 to %2").arg(expression.left(40), where()),
                [&, this](VntTableList& list, int index, int row, std::uint32_t wanted) {
                  bool const hasNumbers = wanted & ((1u << numNumbers) - 1);
                  return hasNumbers ? changeNumbers(list, index, row, wanted)
                                    : setTextIn(list, index, row, numNumbers, expression);
                });
}

QString VntTableEdits::fillDown(std::vector<VntTableCells> const& cells) {
  if (cells.empty() || !getField() || cells.front().start >= getField()->getNum()) return {};
  int const first = cells.front().start;
  auto source = m_access.makeList(*getField());
  source->append(*getField(), first, 1);
  std::array<double, MOST_NUMBERS> from;
  source->getNumbers(0, from.data());
  int const textColumn = m_access.getNumNumbers();
  QString const text =
      textColumn < m_access.getNumColumns() ? m_access.getText(*getField(), first, textColumn) : QString();
  return change(cells, tr("Fill %1").arg(where()),
                [&, this](VntTableList& list, int index, int row, std::uint32_t wanted) {
                  if (textColumn == 0) return setTextIn(list, index, row, 0, text);
                  std::array<double, MOST_NUMBERS> numbers;
                  list.getNumbers(index, numbers.data());
                  // The column of a whole colour stands for its numbers, exactly.
                  for (int column = 0; column < textColumn; ++column) {
                    if (isColumnOf(wanted, column) || isColumnOf(wanted, textColumn))
                      numbers[column] = from[column];
                  }
                  return setNumbersIn(list, index, row, numbers.data());
                });
}

QString VntTableEdits::ramp(std::vector<VntTableCells> const& cells) {
  if (!getField()) return refusal();
  std::vector<VntTableCells> const parts = clip(cells);
  int const count = countRows(parts);
  int const numNumbers = m_access.getNumNumbers();
  if (numNumbers == 0) return tr("Only numbers can run evenly from the first to the last.");
  if (count < 3) return tr("Select the cells between the first and the last number, too.");
  std::array<double, MOST_NUMBERS> first, last;
  m_access.getNumbers(*getField(), parts.front().start, 1, first.data());
  m_access.getNumbers(*getField(), parts.back().start + parts.back().count - 1, 1, last.data());
  int position = 0;
  return change(parts, tr("Fill %1 evenly").arg(where()),
                [&, this](VntTableList& list, int index, int row, std::uint32_t wanted) {
                  double const t = static_cast<double>(position++) / (count - 1);
                  if (t == 0 || t == 1) return QString();
                  std::array<double, MOST_NUMBERS> numbers;
                  list.getNumbers(index, numbers.data());
                  for (int column = 0; column < numNumbers; ++column) {
                    if (!isColumnOf(wanted, column) && !isColumnOf(wanted, numNumbers)) continue;
                    double const number = std::lerp(first[column], last[column], t);
                    bool const isWhole = m_access.getColumns()[column].kind == VntTableColumn::INTEGER;
                    numbers[column] = isWhole ? std::round(number) : number;
                  }
                  return setNumbersIn(list, index, row, numbers.data());
                });
}

QString VntTableEdits::paste(int row, int column, std::vector<std::vector<QString>> const& texts) {
  finish();
  if (QString const why = refusal(); !why.isEmpty()) return why;
  if (texts.empty()) return tr("There is nothing to paste.");
  SoMField const& field = *getField();
  row = std::min(row, field.getNum());
  int const count = static_cast<int>(texts.size());
  int const there = std::min(count, field.getNum() - row);
  auto values = m_access.makeList(field);
  values->append(field, row, there);
  values->appendDefaults(count - there);
  bool isSame = there == count;
  for (int i = 0; i < count; ++i) {
    QString const problem = pasteRow(*values, i, column, texts[i]);
    if (!problem.isEmpty()) return tr("Pasted row %1, %2").arg(i + 1).arg(problem);
    isSame = isSame && values->isSame(i, field, row + i);
  }
  if (isSame) return {};
  return exchange({{row, there, count}}, std::move(values),
                  tr("Paste %1 into %2").arg(counted(count), where()));
}

QString VntTableEdits::pasteRow(VntTableList& list, int index, int column,
                                std::vector<QString> const& texts) {
  int const numColumns = m_access.getNumColumns();
  int const count = static_cast<int>(texts.size());
  if (count > numColumns - column)
    return tr("column %1: there is no column for \"%2\"")
        .arg(numColumns - column + 1)
        .arg(texts[numColumns - column]);
  std::array<double, MOST_NUMBERS> numbers;
  list.getNumbers(index, numbers.data());
  bool hasNumbers = false;
  for (int i = 0; i < count; ++i) {
    VntTableColumn const& kind = m_access.getColumns()[column + i];
    if (!kind.isNumber() || texts[i].isEmpty()) continue;
    bool isPlain = false;
    double number = texts[i].toDouble(&isPlain);
    if (!isPlain) {
      VntExpression::Result const result = VntExpression::evaluate(texts[i], DEGREE);
      if (!result) return tr("column %1: %2").arg(i + 1).arg(result.problem);
      number = result.value;
    }
    numbers[column + i] = number;
    hasNumbers = true;
  }
  int wrongColumn = column;
  QString const problem = hasNumbers ? list.setNumbers(index, numbers.data(), &wrongColumn) : QString();
  if (!problem.isEmpty()) return tr("column %1: %2").arg(wrongColumn - column + 1).arg(problem);
  int const textColumn = m_access.getNumNumbers();
  if (textColumn == numColumns || column + count <= textColumn || (textColumn > 0 && texts.back().isEmpty()))
    return {};
  QString const why = list.setText(index, texts[textColumn - column], *getField());
  return why.isEmpty() ? why : tr("column %1: %2").arg(textColumn - column + 1).arg(why);
}
