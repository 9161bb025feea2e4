#pragma once

#include "model/FieldRows.h"

#include <QAbstractItemModel>

#include <vector>

namespace tqx::view
{

/// The fields of a message as a tree for item views.
class FieldTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { Name, Value, Unit, Raw, Meaning, columnCount_ };

    explicit FieldTreeModel(QObject* parent = nullptr);

    void setRows(std::vector<FieldRow> rows);
    const std::vector<FieldRow>& getRows() const { return m_rows; }

    /// Converts between indexes and rows; FieldRow::none is the invalid index.
    static int rowOf(const QModelIndex& index);
    QModelIndex indexOf(int row) const;

    /// The row with that path, or FieldRow::none.
    int rowOfPath(const QString& path) const;

    QModelIndex index(int row, int column, const QModelIndex& parent) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<FieldRow> m_rows;
    std::vector<int> m_roots;
};

} // namespace tqx::view
