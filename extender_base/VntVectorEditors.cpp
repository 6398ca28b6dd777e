// Editors for vectors, boxes and planes.

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

#include "extender_base/VntComponentsEdit.h"
#include "extender_base/VntEditorTable.h"
#include "extender_base/VntPartsEditor.h"
#include "extender_base/VntPlaneEditor.h"
#include "kestrava/base/SbVec3d.h"
#include "kestrava/fields/SoSFBox2d.h"
#include "kestrava/fields/SoSFBox2f.h"
#include "kestrava/fields/SoSFBox2i32.h"
#include "kestrava/fields/SoSFBox2s.h"
#include "kestrava/fields/SoSFBox3d.h"
#include "kestrava/fields/SoSFBox3f.h"
#include "kestrava/fields/SoSFBox3i32.h"
#include "kestrava/fields/SoSFBox3s.h"
#include "kestrava/fields/SoSFColorRGBA.h"
#include "kestrava/fields/SoSFVec2d.h"
#include "kestrava/fields/SoSFVec2f.h"
#include "kestrava/fields/SoSFVec2i32.h"
#include "kestrava/fields/SoSFVec2s.h"
#include "kestrava/fields/SoSFVec3d.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/fields/SoSFVec3i32.h"
#include "kestrava/fields/SoSFVec3s.h"
#include "kestrava/fields/SoSFVec4d.h"
#include "kestrava/fields/SoSFVec4f.h"
#include "kestrava/fields/SoSFVec4i32.h"

namespace {

template <class T> constexpr VntNumberEdit::Kind kindOf() {
  return std::is_integral_v<T>       ? VntNumberEdit::INTEGER
         : std::is_same_v<T, double> ? VntNumberEdit::DOUBLE
                                     : VntNumberEdit::SINGLE;
}

template <class T>
VntComponentsEdit* makeComponents(std::vector<VntComponent> const& components, int columns, QWidget* parent) {
  auto* const edit = new VntComponentsEdit(kindOf<T>(), components, columns, parent);
  if (std::is_integral_v<T>) edit->setRange(std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max());
  return edit;
}

/// Two to four numbers of any type.
template <class Field> class VectorEditor : public VntPartsEditor {
 public:
  using Vec = typename Field::ValueType;
  using Number = std::decay_t<decltype(Vec()[0])>;
  static constexpr int COUNT = SoNumbers<Vec>::COUNT;

  VectorEditor(VntFieldEdit* edit, QWidget* parent) : VntPartsEditor(edit, parent) {
    std::vector<VntComponent> components;
    if constexpr (std::is_same_v<Vec, SbColorRGBA>)
      components = {{"red", tr("R"), tr("Red, 0 to 1")},
                    {"green", tr("G"), tr("Green, 0 to 1")},
                    {"blue", tr("B"), tr("Blue, 0 to 1")},
                    {"alpha", tr("A"), tr("Opacity, 0 to 1")}};
    else
      for (char const* name : {"x", "y", "z", "w"}) components.push_back({name, name, {}});
    components.resize(COUNT);
    m_row = makeComponents<Number>(components, COUNT, this);
    content()->addWidget(m_row);
    watch(m_row, [this](bool isDrag) { return takeRow(isDrag); });
    setFocusProxy(m_row);
    if (std::is_floating_point_v<Number> && COUNT < 4) addTools();
  }

 private:
  void addTools() {
    auto* const tools = new QHBoxLayout;
    m_proportional = new QCheckBox(tr("Proportional"), this);
    m_proportional->setObjectName("proportional");
    m_proportional->setToolTip(tr("Changing one number scales the others by the same factor"));
    tools->addWidget(m_proportional);
    tools->addStretch();
    content()->addLayout(tools);
    if (COUNT != 3) return;
    auto* const normalize = new QPushButton(tr("Normalize"), this);
    normalize->setObjectName("normalize");
    normalize->setToolTip(tr("Gives the vector the length 1"));
    tools->addWidget(normalize);
    connect(normalize, &QPushButton::clicked, this, &VectorEditor::normalizeVector);
    m_length = new QLabel(this);
    m_length->setObjectName("length");
    m_length->setTextInteractionFlags(Qt::TextSelectableByMouse);
    content()->addWidget(m_length);
  }

  void showValue() override {
    Vec const& value = edit()->template getFieldAs<Field>()->getValue();
    m_row->setVec(value);
    if (m_length) m_length->setText(tr("Length %1").arg(QString::number(lengthOf(value), 'g', 7)));
  }

  bool takeRow(bool isDrag) {
    Vec value = m_row->template getVec<Vec>();
    if (!edit()->isPreviewing()) m_before = edit()->template getFieldAs<Field>()->getValue();
    int const changed = m_row->getChangedIndex();
    if (m_proportional && m_proportional->isChecked() && changed >= 0) {
      double const factor = static_cast<double>(value[changed]) / static_cast<double>(m_before[changed]);
      for (int i = 0; i < COUNT && std::isfinite(factor); ++i) {
        if (i != changed) value[i] = static_cast<Number>(static_cast<double>(m_before[i]) * factor);
      }
    }
    return take<Field>(value, isDrag);
  }

  static double lengthOf(Vec const& value) {
    double sum = 0;
    for (int i = 0; i < COUNT; ++i) sum += static_cast<double>(value[i]) * static_cast<double>(value[i]);
    return std::sqrt(sum);
  }

  void normalizeVector() {
    if (!edit()->getField()) return;
    Vec value = edit()->template getFieldAs<Field>()->getValue();
    double const length = lengthOf(value);
    if (length == 0) edit()->report(tr("A vector of length 0 has no direction; it can not be normalized."));
    if (!std::isfinite(length)) edit()->report(tr("A vector that is not finite can not be normalized."));
    if (length == 0 || !std::isfinite(length)) return;
    for (int i = 0; i < COUNT; ++i) value[i] = static_cast<Number>(static_cast<double>(value[i]) / length);
    m_row->revert();
    edit()->template set<Field>(value, tr("Normalize %1").arg(edit()->getDescription()));
  }

  VntComponentsEdit* m_row;
  QCheckBox* m_proportional = nullptr; // these are there for some types only
  QLabel* m_length = nullptr;
  Vec m_before; // an edit or a drag
};

/// The two corners of a box.
template <class Field> class BoxEditor : public VntPartsEditor {
 public:
  using Box = typename Field::ValueType;
  using Vec = typename Box::Vec;
  using Number = std::decay_t<decltype(Vec()[0])>;
  static constexpr int COUNT = SoNumbers<Vec>::COUNT;

  BoxEditor(VntFieldEdit* edit, QWidget* parent) : VntPartsEditor(edit, parent), m_hint(new QLabel(this)) {
    std::vector<VntComponent> components;
    for (int i = 0; i < COUNT; ++i)
      components.push_back({QString("min") + "XYZ"[i], tr("min %1").arg(QLatin1Char("xyz"[i])), {}});
    for (int i = 0; i < COUNT; ++i)
      components.push_back({QString("max") + "XYZ"[i], tr("max %1").arg(QLatin1Char("xyz"[i])), {}});
    m_corners = makeComponents<Number>(components, COUNT, this);
    content()->addWidget(m_corners);
    watch(m_corners, [this](bool isDrag) { return take<Field>(getBox(), isDrag); });
    setFocusProxy(m_corners);

    auto* const makeEmpty = new QPushButton(tr("Make empty"), this);
    makeEmpty->setObjectName("makeEmpty");
    makeEmpty->setToolTip(tr("A box that contains no point"));
    connect(makeEmpty, &QPushButton::clicked, this, [this] {
      m_corners->revert();
      this->edit()->template set<Field>(Box(), tr("Make %1 empty").arg(this->edit()->getDescription()));
    });
    m_hint->setObjectName("size");
    m_hint->setWordWrap(true);
    auto* const footer = new QHBoxLayout;
    footer->addWidget(m_hint, 1);
    footer->addWidget(makeEmpty, 0, Qt::AlignTop);
    content()->addLayout(footer);
  }

 private:
  Box getBox() const {
    std::vector<double> const& values = m_corners->getValues();
    Vec low, high;
    for (int i = 0; i < COUNT; ++i) {
      low[i] = static_cast<Number>(values[static_cast<std::size_t>(i)]);
      high[i] = static_cast<Number>(values[static_cast<std::size_t>(i + COUNT)]);
    }
    return Box(low, high);
  }

  void showValue() override {
    Box const& box = edit()->template getFieldAs<Field>()->getValue();
    std::vector<double> values;
    for (Vec const& corner : {box.getMin(), box.getMax()})
      values.insert(values.end(), corner.v, corner.v + COUNT);
    m_corners->setValues(values);
    QStringList sizes, wrong;
    for (int i = 0; i < COUNT; ++i) {
      double const low = box.getMin()[i], high = box.getMax()[i];
      sizes << QString::number(high - low, 'g', 7);
      if (!(low <= high)) wrong << QString(QLatin1Char("xyz"[i]));
    }
    m_hint->setText(wrong.isEmpty()
                        ? tr("Size %1").arg(sizes.join(QString::fromUtf8(" \u00d7 ")))
                        : tr("Empty: the maximum is below the minimum in %1").arg(wrong.join(", ")));
  }

  VntComponentsEdit* m_corners;
  QLabel* m_hint;
};

} // namespace

void addVectorEditors(VntEditorTable& table) {
  table.push_back({"SFVec2f", "Vector of 2 numbers", makeEditor<VectorEditor<SoSFVec2f>>});
  table.push_back({"SFVec2i32", "Vector of 2 integers of 32 bits", makeEditor<VectorEditor<SoSFVec2i32>>});
  table.push_back({"SFVec2s", "Vector of 2 integers of 16 bits", makeEditor<VectorEditor<SoSFVec2s>>});
  table.push_back({"SFVec3f", "Vector of 3 numbers", makeEditor<VectorEditor<SoSFVec3f>>});
  table.push_back({"SFVec4f", "Vector of 4 numbers", makeEditor<VectorEditor<SoSFVec4f>>});
  table.push_back({"SFBox2f", "Box in the plane", makeEditor<BoxEditor<SoSFBox2f>>});
  table.push_back({"SFBox3s", "Box in space, of integers of 16 bits", makeEditor<BoxEditor<SoSFBox3s>>});
  table.push_back({"SFPlane", "Plane", makeEditor<VntPlaneEditor>});
}

void addOtherVectorEditors(VntEditorTable& table) {
  char const* const vector = "Vector";
  table.push_back({"SFVec2d", vector, makeEditor<VectorEditor<SoSFVec2d>>});
  table.push_back({"SFVec3d", vector, makeEditor<VectorEditor<SoSFVec3d>>});
  table.push_back({"SFVec3i32", vector, makeEditor<VectorEditor<SoSFVec3i32>>});
  table.push_back({"SFVec3s", vector, makeEditor<VectorEditor<SoSFVec3s>>});
  table.push_back({"SFVec4d", vector, makeEditor<VectorEditor<SoSFVec4d>>});
  table.push_back({"SFVec4i32", vector, makeEditor<VectorEditor<SoSFVec4i32>>});
  table.push_back({"SFColorRGBA", "Colour and opacity", makeEditor<VectorEditor<SoSFColorRGBA>>});
  char const* const box = "Box";
  table.push_back({"SFBox2d", box, makeEditor<BoxEditor<SoSFBox2d>>});
  table.push_back({"SFBox2i32", box, makeEditor<BoxEditor<SoSFBox2i32>>});
  table.push_back({"SFBox2s", box, makeEditor<BoxEditor<SoSFBox2s>>});
  table.push_back({"SFBox3d", box, makeEditor<BoxEditor<SoSFBox3d>>});
  table.push_back({"SFBox3f", box, makeEditor<BoxEditor<SoSFBox3f>>});
  table.push_back({"SFBox3i32", box, makeEditor<BoxEditor<SoSFBox3i32>>});
}
