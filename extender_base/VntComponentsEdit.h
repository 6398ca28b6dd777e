#pragma once

#include <QGridLayout>
#include <vector>

#include "extender_base/VntNumberEdit.h"
#include "extender_base/VntPartEdit.h"

/// One of the numbers of a VntComponentsEdit.
struct VntComponent {
  QString name;  ///< object name of its line
  QString label; ///< what stands before it; empty for nothing
  QString tip;
};

/// A row or a grid of labelled numbers, folded when there is no room for all columns. Several numbers that
/// are pasted into one line, or typed there and entered, fill its row, or all lines when there are as many.
class VntComponentsEdit : public VntPartEdit {
  Q_OBJECT
 public:
  VntComponentsEdit(VntNumberEdit::Kind kind, std::vector<VntComponent> const& components, int columns,
                    QWidget* parent);

  /// Each as in VntNumberEdit.
  void setRange(double lowest, double highest);
  void setStep(double step);
  void setFoldable(bool on);

  /// Sends nothing. What is being typed stays.
  void setValues(std::vector<double> const& values);
  std::vector<double> const& getValues() const { return m_values; }
  /// From and to anything with as many components.
  template <class Vec> void setVec(Vec const& vec) {
    setValues(std::vector<double>(vec.getValue(), vec.getValue() + m_lines.size()));
  }
  template <class Vec> Vec getVec() const {
    Vec vec;
    for (std::size_t i = 0; i < m_lines.size(); ++i)
      vec[i] = static_cast<std::decay_t<decltype(vec[0])>>(m_values[i]);
    return vec;
  }
  /// Index of the number that the last signal was about; -1 when there were several.
  int getChangedIndex() const { return m_changed; }

  void revert() override;
  QSize minimumSizeHint() const override;

 protected:
  bool hasTypedText() const override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void addLine(VntNumberEdit::Kind kind, VntComponent const& component);
  void arrange(int columns);
  void change(int index, double value);
  void takePasted(int index);
  /// Fills several lines, when the text is that of several numbers. Says what is wrong with one of them.
  bool takeNumbers(int index, QString const& text);

  bool m_isInteger;
  double m_lowest, m_highest;
  int m_columns; // when there is room
  int m_shownColumns = 0;
  bool m_foldable = true;
  int m_changed = -1;
  std::vector<double> m_values;
  std::vector<VntNumberEdit*> m_lines;
  std::vector<QWidget*> m_cells;
  QGridLayout* m_grid;
};
