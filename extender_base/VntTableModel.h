#pragma once

#include <QAbstractTableModel>

#include "extender_base/VntTableEdits.h"

/// The values of a multiple field as rows and their components as columns, read from the field whenever they
/// are shown: nothing is copied.
class VntTableModel : public QAbstractTableModel {
  Q_OBJECT
 public:
  VntTableModel(VntTableEdits& edits, QObject* parent);

  /// The field has changed: the views show what they show again. The number of rows follows at the end.
  void refresh();

  int rowCount(QModelIndex const& parent = {}) const override;
  int columnCount(QModelIndex const& parent = {}) const override;
  QVariant data(QModelIndex const& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(QModelIndex const& index) const override;
  VntTableColumn const& column(int index) const { return m_edits.getAccess().getColumns()[index]; }

 private:
  /// True while there is such a value; a field may have lost it before the views hear of it.
  bool isThere(QModelIndex const& index) const;

  VntTableEdits& m_edits;
  int m_rows = 0;
};
