#include "extender_base/VntTableValues.h"

#include <QColor>
#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <utility>

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoMFBitMask.h"
#include "kestrava/fields/SoMFBool.h"
#include "kestrava/fields/SoMFColor.h"
#include "kestrava/fields/SoMFDouble.h"
#include "kestrava/fields/SoMFEnum.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoMFInt32.h"
#include "kestrava/fields/SoMFMatrix.h"
#include "kestrava/fields/SoMFName.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoMFPlane.h"
#include "kestrava/fields/SoMFRotation.h"
#include "kestrava/fields/SoMFShort.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoMFTime.h"
#include "kestrava/fields/SoMFUInt32.h"
#include "kestrava/fields/SoMFUShort.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoMFVec2d.h"
#include "kestrava/fields/SoMFVec2f.h"
#include "kestrava/fields/SoMFVec2i32.h"
#include "kestrava/fields/SoMFVec2s.h"
#include "kestrava/fields/SoMFVec3d.h"
#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/fields/SoMFVec3i32.h"
#include "kestrava/fields/SoMFVec3s.h"
#include "kestrava/fields/SoMFVec4d.h"
#include "kestrava/fields/SoMFVec4f.h"
#include "kestrava/fields/SoMFVec4i32.h"
#include "kestrava/fields/SoNumbers.h"
#include "kestrava/nodes/SoNode.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

QString tr(char const* text) { return QCoreApplication::translate("VntTable", text); }

bool areFinite(double const* numbers, int count) {
  return std::all_of(numbers, numbers + count, [](double number) { return std::isfinite(number); });
}

/// The numbers that a value is made of, as columns of a table.
template <class T> struct Parts {
  static constexpr int COUNT = SoNumbers<T>::COUNT;
  static QStringList names() {
    if (COUNT == 1) return {tr("value")};
    return QStringList{tr("x"), tr("y"), tr("z"), tr("w")}.mid(0, COUNT);
  }
  static void get(T const& value, double* numbers) { SoNumbers<T>::get(value, numbers); }
  static QString make(double const* numbers, T& value) {
    value = SoNumbers<T>::make(numbers);
    return {};
  }
};

/// Numbers that mean a choice are shown as text.
struct NoParts {
  static constexpr int COUNT = 0;
};
template <> struct Parts<SbString> : NoParts {};
template <> struct Parts<SbName> : NoParts {};

template <> struct Parts<SbRotation> {
  static constexpr int COUNT = 4;
  static QStringList names() { return {tr("axis x"), tr("axis y"), tr("axis z"), tr("angle")}; }
  static void get(SbRotation const& value, double* numbers) {
    for (int i = 0; i < 3; ++i) numbers[i] = value.getAxis()[i];
    numbers[3] = value.getAngle();
  }
  static QString make(double const* n, SbRotation& value) {
    if (!areFinite(n, 4)) return tr("a rotation needs finite numbers");
    SbVec3f const axis(static_cast<float>(n[0]), static_cast<float>(n[1]), static_cast<float>(n[2]));
    if (axis == SbVec3f()) return tr("the axis of a rotation must not be zero");
    value.setValue(axis, static_cast<float>(n[3]));
    return {};
  }
};

template <> struct Parts<SbPlane> {
  static constexpr int COUNT = 4;
  static QStringList names() { return {tr("normal x"), tr("normal y"), tr("normal z"), tr("distance")}; }
  static void get(SbPlane const& value, double* numbers) {
    for (int i = 0; i < 3; ++i) numbers[i] = value.getNormal()[i];
    numbers[3] = value.getDistanceFromOrigin();
  }
  static QString make(double const* n, SbPlane& value) {
    SbVec3f const normal(static_cast<float>(n[0]), static_cast<float>(n[1]), static_cast<float>(n[2]));
    if (!areFinite(n, 3)) return tr("the normal of a plane needs finite numbers");
    if (normal == SbVec3f()) return tr("the normal of a plane must not be zero");
    value = SbPlane(normal, static_cast<float>(n[3]));
    return {};
  }
};

template <> struct Parts<SbMatrix> {
  static constexpr int COUNT = 16;
  static QStringList names() {
    QStringList names;
    for (int i = 0; i < COUNT; ++i) names << QStringLiteral("m%1%2").arg(i / 4 + 1).arg(i % 4 + 1);
    return names;
  }
  static void get(SbMatrix const& value, double* numbers) { std::copy_n(value.getValue(), COUNT, numbers); }
  static QString make(double const* numbers, SbMatrix& value) {
    for (int i = 0; i < COUNT; ++i) value[i / 4][i % 4] = static_cast<float>(numbers[i]);
    return {};
  }
};

template <class T> struct ComponentOf {
  using Type = float; // of rotations, planes and matrices
};
template <class T>
requires std::is_arithmetic_v<T>
struct ComponentOf<T> {
  using Type = T;
};
template <> struct ComponentOf<SbTime> { using Type = double; };
template <> struct ComponentOf<SbColor> { using Type = float; };
template <class C, int N> struct ComponentOf<SbVec<C, N>> { using Type = C; };

template <class C> VntTableColumn numberColumn(QString const& name) {
  VntTableColumn column{name, VntTableColumn::DOUBLE};
  if constexpr (std::is_integral_v<C>) {
    column.kind = VntTableColumn::INTEGER;
    column.lowest = static_cast<double>(std::numeric_limits<C>::min());
    column.highest = static_cast<double>(std::numeric_limits<C>::max());
  } else if (std::is_same_v<C, float>) {
    column.kind = VntTableColumn::SINGLE;
  }
  return column;
}

QString whyNot(double number, VntTableColumn const& column) {
  QString const text = vntNumberText(number, VntTableColumn::DOUBLE);
  if (column.kind == VntTableColumn::INTEGER) {
    if (std::isfinite(number) && number != std::round(number)) return tr("%1 is no whole number").arg(text);
    if (!(number >= column.lowest && number <= column.highest))
      return tr("%1 is out of range: %2 to %3")
          .arg(text, vntNumberText(column.lowest, column.kind), vntNumberText(column.highest, column.kind));
  } else if (column.kind == VntTableColumn::SINGLE && std::isfinite(number) &&
             !std::isfinite(static_cast<float>(number))) {
    return tr("%1 is too large for a number of single precision").arg(text);
  }
  return {};
}

QString colorText(SbColor const& color) {
  return QStringLiteral("#%1").arg(color.getPackedValue() >> 8, 6, 16, QLatin1Char('0'));
}

/// Gives values and held values each other's place, run by run. Those that grow or shrink are written anew.
template <class T>
void exchangeRuns(std::vector<T>& values, std::vector<T>& held, std::vector<VntTableRun>& runs) {
  int const size = static_cast<int>(values.size());
  auto next = held.begin();
  if (std::all_of(runs.begin(), runs.end(), [](VntTableRun const& run) { return run.count == run.held; })) {
    for (VntTableRun const& run : runs) {
      // Where the program has removed values since, those held for them have no place to go.
      int const start = std::min(run.start, size);
      std::swap_ranges(next, next + std::min(run.count, size - start), values.begin() + start);
      next += run.held;
    }
    return;
  }
  std::vector<T> result, removed;
  result.reserve(values.size() + held.size());
  auto from = values.begin();
  for (VntTableRun& run : runs) {
    auto const start = std::max(from, values.begin() + std::min(run.start, size));
    auto const end = start + std::min<std::ptrdiff_t>(run.count, values.end() - start);
    std::move(from, start, std::back_inserter(result));
    int const place = static_cast<int>(result.size());
    std::move(next, next + run.held, std::back_inserter(result));
    next += run.held;
    std::move(start, end, std::back_inserter(removed));
    from = end;
    run = {place, run.held, static_cast<int>(end - start)};
  }
  std::move(from, values.end(), std::back_inserter(result));
  values = std::move(result);
  held = std::move(removed);
}

/// Orders values as VntTableAccess::reorder() says.
template <class T>
void giveOrder(std::vector<T>& values, int start, std::vector<int> const& order, bool back) {
  auto const begin = values.begin() + start;
  std::vector<T> old(std::make_move_iterator(begin),
                     std::make_move_iterator(begin + static_cast<int>(order.size())));
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (back)
      begin[order[i]] = std::move(old[i]);
    else
      begin[static_cast<int>(i)] = std::move(old[order[i]]);
  }
}

/// While it lives, a field changes without telling anybody and keeps its default flag.
class Silence {
 public:
  explicit Silence(SoField& field)
      : m_field(field), m_notifies(field.enableNotify(false)), m_wasDefault(field.isDefault()) {}
  ~Silence() {
    m_field.setDefault(m_wasDefault);
    m_field.enableNotify(m_notifies);
  }
  Silence(Silence const&) = delete;
  Silence& operator=(Silence const&) = delete;

 private:
  SoField& m_field;
  bool m_notifies, m_wasDefault;
};

template <class Field> class TypedList : public VntTableList {
  using T = typename Field::ValueType;

 public:
  explicit TypedList(VntTableAccess const& access) : m_access(access) {}
  int size() const override { return static_cast<int>(m_values.size()); }
  void append(SoMField const& field, int start, int count) override {
    T const* const values = static_cast<Field const&>(field).getValues(start);
    m_values.insert(m_values.end(), values, values + count);
  }
  void appendDefaults(int count) override { m_values.resize(m_values.size() + count); }
  void getNumbers(int index, double* numbers) const override {
    if constexpr (Parts<T>::COUNT > 0) Parts<T>::get(m_values[index], numbers);
  }
  QString setNumbers(int index, double const* numbers, int* wrong) override {
    if constexpr (Parts<T>::COUNT > 0) {
      for (int i = 0; i < Parts<T>::COUNT; ++i) {
        QString const problem = whyNot(numbers[i], m_access.getColumns()[i]);
        if (problem.isEmpty()) continue;
        if (wrong) *wrong = i;
        return problem;
      }
      T made{};
      QString const problem = Parts<T>::make(numbers, made);
      if (problem.isEmpty()) m_values[index] = made;
      return problem;
    }
    return {};
  }
  QString setText(int index, QString const& text, SoMField& field) override {
    if constexpr (std::is_same_v<T, SbString>) {
      m_values[index] = toSbString(text);
    } else if constexpr (std::is_same_v<T, SbName>) {
      m_values[index] = SbName(toSbString(text).c_str());
    } else if constexpr (std::is_same_v<T, SbColor>) {
      if (text.trimmed().compare(colorText(m_values[index]), Qt::CaseInsensitive) == 0) return {};
      QColor const color(text.trimmed());
      if (!color.isValid()) return tr("\"%1\" is no colour; it is written #rrggbb").arg(text);
      m_values[index] = SbColor(color.redF(), color.greenF(), color.blueF());
    } else {
      return setWord(m_values[index], text, static_cast<Field&>(field));
    }
    return {};
  }
  void setValue(int index, SoField const& single) override {
    m_values[index] = static_cast<SoSFValue<T> const&>(single).getValue();
  }
  bool isSame(int index, SoMField const& field, int row) const override {
    return m_values[index] == static_cast<Field const&>(field)[row];
  }
  void exchange(SoMField& field, std::vector<VntTableRun>& runs) override {
    exchangeRuns(static_cast<Field&>(field).startEditing(), m_values, runs);
  }

 private:
  /// Only the field itself knows the words of its enumeration: it reads one behind its last value.
  static QString setWord(T& value, QString const& text, Field& field) {
    field.evaluate();
    Silence const silence(field);
    int const count = field.getNum();
    if (!field.set1(count, text.toUtf8().constData())) return tr("\"%1\" is none of the values").arg(text);
    value = field[count];
    field.deleteValues(count);
    return {};
  }

  VntTableAccess const& m_access;
  std::vector<T> m_values;
};

/// Fields of a plain type; `AsText`: numbers that have names.
template <class Field, bool AsText = false> class TypedAccess : public VntTableAccess {
  using T = typename Field::ValueType;

 public:
  TypedAccess() {
    if constexpr (std::is_same_v<T, SbColor>) {
      for (QString const& name : {tr("r"), tr("g"), tr("b")}) m_columns.push_back(numberColumn<float>(name));
      m_columns.push_back({tr("colour"), VntTableColumn::COLOR});
      m_numNumbers = 3;
    } else if constexpr (!AsText && Parts<T>::COUNT > 0) {
      for (QString const& name : Parts<T>::names())
        m_columns.push_back(numberColumn<typename ComponentOf<T>::Type>(name));
      m_numNumbers = Parts<T>::COUNT;
    } else {
      m_columns.push_back({tr("value"), VntTableColumn::TEXT});
    }
  }
  void getNumbers(SoMField const& field, int start, int count, double* numbers) const override {
    if constexpr (!AsText && Parts<T>::COUNT > 0) {
      T const* const values = static_cast<Field const&>(field).getValues(start);
      for (int i = 0; i < count; ++i) Parts<T>::get(values[i], numbers + i * Parts<T>::COUNT);
    }
  }
  QString getText(SoMField const& field, int row, int column) const override {
    T const& value = static_cast<Field const&>(field)[row];
    if constexpr (std::is_same_v<T, SbColor>) {
      if (column == 3) return colorText(value);
    }
    if constexpr (std::is_same_v<T, SbString>) {
      return toQString(value);
    } else if constexpr (std::is_same_v<T, SbName>) {
      return toQString(value.getString());
    } else if constexpr (!AsText) {
      std::array<double, Parts<T>::COUNT> numbers;
      Parts<T>::get(value, numbers.data());
      return vntNumberText(numbers[column], m_columns[column].kind);
    } else {
      SbString text;
      field.get1(row, text);
      return toQString(text);
    }
  }
  std::unique_ptr<VntTableList> makeList(SoMField const&) const override {
    return std::make_unique<TypedList<Field>>(*this);
  }
  void reorder(SoMField& field, int start, std::vector<int> const& order, bool back) const override {
    giveOrder(static_cast<Field&>(field).startEditing(), start, order, back);
  }
};

/// References to nodes or paths.
template <class Field> class ReferenceList : public VntTableList {
  using T = SoRef<std::remove_pointer_t<typename Field::ValueType>>;

 public:
  int size() const override { return static_cast<int>(m_values.size()); }
  void append(SoMField const& field, int start, int count) override {
    for (int i = start; i < start + count; ++i) m_values.emplace_back(static_cast<Field const&>(field)[i]);
  }
  void appendDefaults(int count) override { m_values.resize(m_values.size() + count); }
  void getNumbers(int, double*) const override {}
  QString setNumbers(int, double const*, int*) override { return {}; }
  QString setText(int index, QString const& text, SoMField&) override {
    Field read;
    if (!read.set1(0, text.toUtf8().constData()))
      return tr("\"%1\" is no value of this type").arg(text.left(60));
    m_values[index] = T(read[0]);
    return {};
  }
  bool isSame(int index, SoMField const& field, int row) const override {
    return m_values[index].get() == static_cast<Field const&>(field)[row];
  }
  void exchange(SoMField& field, std::vector<VntTableRun>& runs) override {
    std::vector<T> values = all(field);
    exchangeRuns(values, m_values, runs);
    assign(field, values);
  }
  static std::vector<T> all(SoMField const& field) {
    ReferenceList list;
    list.append(field, 0, field.getNum());
    return std::move(list.m_values);
  }
  static void assign(SoMField& field, std::vector<T> const& values) {
    Silence const silence(field);
    auto& typed = static_cast<Field&>(field);
    if constexpr (std::is_same_v<Field, SoMFPath>)
      typed.setValues(values);
    else
      typed.setValues({values.begin(), values.end()});
  }

 private:
  std::vector<T> m_values;
};

/// Values of any other type, which a field of the same type holds.
class AnyList : public VntTableList {
 public:
  explicit AnyList(SoMField const& like)
      : m_values(static_cast<SoMField*>(like.getTypeId().createInstance())) {
    m_values->deleteValues(0);
  }
  int size() const override { return m_values->getNum(); }
  void append(SoMField const& field, int start, int count) override {
    auto const copy = VntFieldEdit::clone(field);
    auto& part = static_cast<SoMField&>(*copy);
    part.deleteValues(start + count);
    if (start > 0) part.deleteValues(0, start);
    m_values->append(part);
  }
  void appendDefaults(int count) override { m_values->insertSpace(size(), count); }
  void getNumbers(int, double*) const override {}
  QString setNumbers(int, double const*, int*) override { return {}; }
  QString setText(int index, QString const& text, SoMField&) override {
    return m_values->set1(index, text.toUtf8().constData())
               ? QString()
               : tr("\"%1\" is no value of this type").arg(text.left(60));
  }
  bool isSame(int index, SoMField const& field, int row) const override {
    AnyList mine(field), other(field);
    mine.append(*m_values, index, 1);
    other.append(field, row, 1);
    return mine.m_values->isSame(*other.m_values);
  }
  void exchange(SoMField& field, std::vector<VntTableRun>& runs) override {
    Silence const silence(field);
    AnyList result(field), removed(field);
    int from = 0, next = 0;
    int const size = field.getNum();
    for (VntTableRun& run : runs) {
      bool const replaces = run.count == run.held;
      int const start = std::clamp(run.start, from, size);
      int const count = std::min(run.count, size - start);
      if (start > from) result.append(field, from, start - from);
      int const coming = replaces ? count : run.held;
      VntTableRun const back = {result.size(), coming, count};
      if (coming > 0) result.append(*m_values, next, coming);
      if (count > 0) removed.append(field, start, count);
      next += run.held;
      from = start + count;
      run = back;
    }
    if (from < size) result.append(field, from, size - from);
    field.copyFrom(*result.m_values);
    m_values = std::move(removed.m_values);
  }

 private:
  std::unique_ptr<SoMField> m_values;
};

/// For values that have a text only.
class AnyAccess : public VntTableAccess {
 public:
  AnyAccess() { m_columns.push_back({tr("value"), VntTableColumn::TEXT}); }
  void getNumbers(SoMField const&, int, int, double*) const override {}
  QString getText(SoMField const& field, int row, int) const override {
    SbString text;
    field.get1(row, text);
    return toQString(text);
  }
  std::unique_ptr<VntTableList> makeList(SoMField const& field) const override {
    return std::make_unique<AnyList>(field);
  }
  void reorder(SoMField& field, int start, std::vector<int> const& order, bool back) const override {
    Silence const silence(field);
    int const count = static_cast<int>(order.size());
    std::vector<int> from(order);
    if (back) {
      for (int i = 0; i < count; ++i) from[order[i]] = i;
    }
    AnyList result(field);
    for (int i = 0; i < count; ++i) result.append(field, start + from[i], 1);
    std::vector<VntTableRun> runs = {{start, count, count}};
    result.exchange(field, runs);
  }
};

template <class Field> class ReferenceAccess : public AnyAccess {
 public:
  std::unique_ptr<VntTableList> makeList(SoMField const&) const override {
    return std::make_unique<ReferenceList<Field>>();
  }
  void reorder(SoMField& field, int start, std::vector<int> const& order, bool back) const override {
    auto values = ReferenceList<Field>::all(field);
    giveOrder(values, start, order, back);
    ReferenceList<Field>::assign(field, values);
  }
};

template <class... Fields> void addTyped(std::unordered_map<SoType, std::unique_ptr<VntTableAccess>>& table) {
  (table.emplace(Fields::getClassTypeId(), std::make_unique<TypedAccess<Fields>>()), ...);
}
template <class... Fields> void addWords(std::unordered_map<SoType, std::unique_ptr<VntTableAccess>>& table) {
  (table.emplace(Fields::getClassTypeId(), std::make_unique<TypedAccess<Fields, true>>()), ...);
}

template <class... Fields>
void addReferences(std::unordered_map<SoType, std::unique_ptr<VntTableAccess>>& table) {
  (table.emplace(Fields::getClassTypeId(), std::make_unique<ReferenceAccess<Fields>>()), ...);
}

} // namespace

VntTableAccess const& VntTableAccess::of(SoMField const& field) {
  static auto const table = [] {
    std::unordered_map<SoType, std::unique_ptr<VntTableAccess>> all;
    addTyped<SoMFColor, SoMFDouble, SoMFFloat, SoMFInt32, SoMFMatrix, SoMFName, SoMFPlane, SoMFRotation,
             SoMFShort, SoMFString, SoMFTime, SoMFUInt32, SoMFUShort, SoMFVec2d, SoMFVec2f, SoMFVec2i32,
             SoMFVec2s, SoMFVec3d, SoMFVec3f, SoMFVec3i32, SoMFVec3s, SoMFVec4d, SoMFVec4f, SoMFVec4i32>(all);
    addWords<SoMFBitMask, SoMFBool, SoMFEnum>(all);
    addReferences<SoMFNode, SoMFPath, SoMFUniformShaderParameter>(all);
    return all;
  }();
  for (SoType type = field.getTypeId(); !type.isBad(); type = type.getParent()) {
    auto const found = table.find(type);
    if (found != table.end()) return *found->second;
  }
  static AnyAccess const any;
  return any;
}

QString vntNumberText(double number, VntTableColumn::Kind kind) {
  if (std::isnan(number)) return QStringLiteral("nan");
  char digits[64];
  char* const end = digits + sizeof digits;
  bool const isWhole =
      kind == VntTableColumn::INTEGER && number == std::round(number) && std::abs(number) < 1e15;
  auto const last = isWhole ? std::to_chars(digits, end, std::llround(number)).ptr
                    : kind == VntTableColumn::SINGLE
                        ? std::to_chars(digits, end, static_cast<float>(number)).ptr
                        : std::to_chars(digits, end, number).ptr;
  return QString::fromLatin1(digits, last - digits);
}
