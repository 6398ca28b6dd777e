#include "extender_base/VntTableModel.h"

#include <QColor>

#include "kestrava/fields/SoMField.h"

VntTableModel::VntTableModel(VntTableEdits& edits, QObject* parent)
    : QAbstractTableModel(parent), m_edits(edits) {
  if (SoMField const* field = edits.getField()) m_rows = field->getNum();
}

void VntTableModel::refresh() {
  SoMField const* const field = m_edits.getField();
  int const rows = field ? field->getNum() : 0;
  if (rows > m_rows) {
    beginInsertRows({}, m_rows, rows - 1);
    m_rows = rows;
    endInsertRows();
  } else if (rows < m_rows) {
    beginRemoveRows({}, rows, m_rows - 1);
    m_rows = rows;
    endRemoveRows();
  }
  if (m_rows > 0) Q_EMIT dataChanged(index(0, 0), index(m_rows - 1, columnCount() - 1));
}

int VntTableModel::rowCount(QModelIndex const& parent) const { return parent.isValid() ? 0 : m_rows; }

int VntTableModel::columnCount(QModelIndex const& parent) const {
  return parent.isValid() ? 0 : m_edits.getAccess().getNumColumns();
}

bool VntTableModel::isThere(QModelIndex const& index) const {
  SoMField const* const field = m_edits.getField();
  return field && index.isValid() && index.row() < field->getNum();
}

QVariant VntTableModel::data(QModelIndex const& index, int role) const {
  constexpr int LONGEST = 400; // of a text in one line
  if (!isThere(index)) return {};
  VntTableColumn const& kind = column(index.column());
  if (role == Qt::TextAlignmentRole && kind.isNumber())
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  SoMField const& field = *m_edits.getField();
  if (role == Qt::EditRole) return m_edits.getAccess().getText(field, index.row(), index.column());
  if (role == Qt::DisplayRole) {
    QString text = m_edits.getAccess().getText(field, index.row(), index.column());
    return kind.isNumber() ? text : text.left(LONGEST);
  }
  if (role == Qt::DecorationRole && kind.kind == VntTableColumn::COLOR)
    return QColor(m_edits.getAccess().getText(field, index.row(), index.column()));
  return {};
}

QVariant VntTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return QAbstractTableModel::headerData(section, orientation, role);
  return orientation == Qt::Vertical ? QVariant(section) : QVariant(column(section).name);
}

Qt::ItemFlags VntTableModel::flags(QModelIndex const& index) const {
  Qt::ItemFlags const flags = QAbstractTableModel::flags(index);
  return index.isValid() ? flags | Qt::ItemIsEditable | Qt::ItemNeverHasChildren : flags;
}
