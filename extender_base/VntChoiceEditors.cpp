// Editors for values that are chosen from a few.

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <bit>
#include <vector>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

class BoolEditor : public VntEditorWidget {
 public:
  BoolEditor(VntFieldEdit* edit, QWidget* parent)
      : VntEditorWidget(edit, parent), m_box(new QCheckBox(this)) {
    m_box->setObjectName("value");
    content()->addWidget(m_box, 0, Qt::AlignLeft);
    content()->addStretch();
    setFocusProxy(m_box);
    connect(m_box, &QCheckBox::clicked, this, [this](bool on) {
      this->edit()->set<SoSFBool>(on);
      refresh();
    });
  }

 private:
  void showValue() override {
    bool const on = edit()->getFieldAs<SoSFBool>()->getValue();
    m_box->setChecked(on);
    m_box->setText(on ? QStringLiteral("TRUE") : QStringLiteral("FALSE"));
  }

  QCheckBox* m_box;
};

/// The symbols in their order. A value that has none is one more entry, as a number, while it lasts.
class EnumEditor : public VntEditorWidget {
 public:
  EnumEditor(VntFieldEdit* edit, QWidget* parent)
      : VntEditorWidget(edit, parent), m_combo(new QComboBox(this)) {
    m_combo->setObjectName("symbols");
    m_combo->setMaxVisibleItems(20);
    m_combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_combo->setMinimumContentsLength(10);
    content()->addWidget(m_combo);
    content()->addStretch();
    setFocusProxy(m_combo);
    connect(m_combo, &QComboBox::activated, this, [this](int index) {
      this->edit()->set<SoSFEnum>(m_combo->itemData(index).toInt());
      refresh();
    });
  }

 private:
  void showValue() override {
    auto const* const field = edit()->getFieldAs<SoSFEnum>();
    QSignalBlocker const blocker(m_combo);
    // The symbols of a type that is known from a file only grow in number as values are read.
    auto const& symbols = field->symbols();
    int const known = static_cast<int>(symbols.size());
    if (m_known != known) {
      m_combo->clear();
      for (SoEnumSymbol const& symbol : symbols) addSymbol(symbol);
      m_known = known;
    }
    if (m_combo->count() > known) m_combo->removeItem(known);
    int const value = field->getValue();
    if (m_combo->findData(value) < 0) {
      m_combo->addItem(tr("%1 (no symbol)").arg(value), value);
      m_combo->setItemData(known, tr("The type has no symbol for this value"), Qt::ToolTipRole);
    }
    // Two symbols may be of one value: the one that was chosen stays.
    if (m_combo->currentData() != QVariant(value)) m_combo->setCurrentIndex(m_combo->findData(value));
  }

  void addSymbol(SoEnumSymbol const& symbol) {
    m_combo->addItem(QString::fromUtf8(symbol.name), symbol.value);
    m_combo->setItemData(m_combo->count() - 1, QString::number(symbol.value), Qt::ToolTipRole);
  }

  QComboBox* m_combo;
  int m_known = -1;
};

/// A box for each symbol; those that stand for several bits are half checked while only some of them are set.
/// Bits that no symbol has are one more box.
class BitMaskEditor : public VntEditorWidget {
 public:
  BitMaskEditor(VntFieldEdit* edit, QWidget* parent)
      : VntEditorWidget(edit, parent), m_boxes(new QVBoxLayout), m_others(new QCheckBox(this)) {
    auto* const row = new QHBoxLayout;
    for (auto const& [name, text, bits] :
         {std::tuple("all", tr("All"), -1), std::tuple("none", tr("None"), 0)}) {
      auto* const button = new QPushButton(text, this);
      button->setObjectName(name);
      row->addWidget(button);
      connect(button, &QPushButton::clicked, this, [this, isAll = bits != 0] { setAll(isAll); });
    }
    row->addStretch();
    m_others->setObjectName("others");
    m_others->setToolTip(tr("Bits that no symbol stands for"));
    connect(m_others, &QCheckBox::clicked, this, [this](bool on) { setBits(m_otherBits, on); });
    m_boxes->setSpacing(2);
    content()->addLayout(row);
    content()->addLayout(m_boxes);
    content()->addWidget(m_others);
    content()->addStretch();
  }

 private:
  SoSFBitMask const& field() const { return *edit()->getFieldAs<SoSFBitMask>(); }

  int knownBits() const {
    int bits = 0;
    for (SoEnumSymbol const& symbol : field().symbols()) bits |= symbol.value;
    return bits;
  }

  // The field may have gone while a button was held down.
  int value() const { return edit()->getField() ? field().getValue() : 0; }
  void set(int value) {
    edit()->set<SoSFBitMask>(value);
    refresh();
  }
  void setBits(int bits, bool on) { set(on ? value() | bits : value() & ~bits); }
  void setAll(bool on) { set(on && edit()->getField() ? value() | knownBits() : 0); }

  void showValue() override {
    auto const& symbols = field().symbols();
    if (m_symbolBoxes.size() != symbols.size()) makeBoxes(symbols);
    int const value = field().getValue();
    for (std::size_t i = 0; i < symbols.size(); ++i) {
      int const bits = symbols[i].value;
      bool const isSet = bits == 0 ? value == 0 : (value & bits) == bits;
      m_symbolBoxes[i]->setCheckState(isSet                 ? Qt::Checked
                                      : (value & bits) != 0 ? Qt::PartiallyChecked
                                                            : Qt::Unchecked);
    }
    // Once seen they stay on offer.
    int const others = value & ~knownBits();
    m_otherBits |= others;
    m_others->setVisible(m_otherBits != 0);
    m_others->setText(tr("others: 0x%1").arg(static_cast<unsigned>(m_otherBits), 0, 16));
    m_others->setCheckState(others == 0             ? Qt::Unchecked
                            : others == m_otherBits ? Qt::Checked
                                                    : Qt::PartiallyChecked);
  }

  void makeBoxes(std::vector<SoEnumSymbol> const& symbols) {
    for (QCheckBox* box : m_symbolBoxes) delete box;
    m_symbolBoxes.clear();
    m_otherBits &= ~knownBits();
    for (SoEnumSymbol const& symbol : symbols) {
      auto* const box = new QCheckBox(QString::fromUtf8(symbol.name), this);
      int const bits = symbol.value;
      box->setObjectName(box->text());
      box->setToolTip(toolTipOf(symbol, symbols));
      connect(box, &QCheckBox::clicked, this, [this, bits] {
        if (bits == 0)
          set(0);
        else
          setBits(bits, (value() & bits) != bits);
      });
      m_boxes->addWidget(box);
      m_symbolBoxes.push_back(box);
    }
  }

  static QString toolTipOf(SoEnumSymbol const& symbol, std::vector<SoEnumSymbol> const& symbols) {
    QString const number = QStringLiteral("0x") + QString::number(static_cast<unsigned>(symbol.value), 16);
    if (std::popcount(static_cast<unsigned>(symbol.value)) < 2) return number;
    QStringList parts;
    for (SoEnumSymbol const& other : symbols) {
      bool const isPart =
          other.value != 0 && other.value != symbol.value && (other.value & ~symbol.value) == 0;
      if (isPart) parts << QString::fromUtf8(other.name);
    }
    return parts.isEmpty() ? number : tr("%1: all of %2").arg(number, parts.join(QLatin1String(", ")));
  }

  QVBoxLayout* m_boxes;
  std::vector<QCheckBox*> m_symbolBoxes; // one for each symbol
  QCheckBox* m_others;
  int m_otherBits = 0;
};

} // namespace

void addChoiceEditors(VntEditorTable& table) {
  table.push_back({"SFBool", "True or false", makeEditor<BoolEditor>});
  table.push_back({"SFEnum", "One of several symbols", makeEditor<EnumEditor>});
  table.push_back({"SFBitMask", "Any of several symbols", makeEditor<BitMaskEditor>});
}
