#include "model/FieldTreeModel.h"

#include <utility>

namespace tqx::view
{

FieldTreeModel::FieldTreeModel(QObject* parent) : QAbstractItemModel(parent) {}

void FieldTreeModel::setRows(std::vector<FieldRow> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    m_roots.clear();
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].parent == FieldRow::none)
            m_roots.push_back(static_cast<int>(i));
    }
    endResetModel();
}

int FieldTreeModel::rowOf(const QModelIndex& index)
{
    return index.isValid() ? static_cast<int>(index.internalId()) : FieldRow::none;
}

QModelIndex FieldTreeModel::indexOf(int row) const
{
    if (row == FieldRow::none)
        return {};
    return createIndex(m_rows[static_cast<size_t>(row)].place, 0, static_cast<quintptr>(row));
}

int FieldTreeModel::rowOfPath(const QString& path) const
{
    for (size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].path == path)
            return static_cast<int>(i);
    }
    return FieldRow::none;
}

QModelIndex FieldTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const std::vector<int>& children =
        parent.isValid() ? m_rows[static_cast<size_t>(rowOf(parent))].children : m_roots;
    if (row < 0 || static_cast<size_t>(row) >= children.size() || column < 0 ||
        column >= columnCount_)
        return {};
    return createIndex(row, column, static_cast<quintptr>(children[static_cast<size_t>(row)]));
}

QModelIndex FieldTreeModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(m_rows[static_cast<size_t>(rowOf(index))].parent)
                           : QModelIndex();
}

int FieldTreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    const std::vector<int>& children =
        parent.isValid() ? m_rows[static_cast<size_t>(rowOf(parent))].children : m_roots;
    return static_cast<int>(children.size());
}

int FieldTreeModel::columnCount(const QModelIndex&) const
{
    return columnCount_;
}

QVariant FieldTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const FieldRow& row = m_rows[static_cast<size_t>(rowOf(index))];
    if (role == Qt::TextAlignmentRole && (index.column() == Value || index.column() == Raw) &&
        row.field && isNumeric(*row.field) && row.children.empty())
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole)
        return row.meaning.isEmpty() ? row.path : row.path + '\n' + row.meaning;
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Name:
        return row.name;
    case Value:
        return row.isAvailable ? row.value : tr("not available");
    case Unit:
        return row.unit;
    case Raw:
        return row.raw;
    case Meaning:
        return row.meaning;
    default:
        return {};
    }
}

QVariant FieldTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole && (section == Value || section == Raw))
        return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Field");
    case Value:
        return tr("Value");
    case Unit:
        return tr("Unit");
    case Raw:
        return tr("Stored");
    case Meaning:
        return tr("Meaning");
    default:
        return {};
    }
}

} // namespace tqx::view
