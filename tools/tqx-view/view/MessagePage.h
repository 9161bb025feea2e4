#pragma once

#include "model/FieldTreeModel.h"
#include "model/MessageRows.h"
#include "model/TaskQueue.h"

#include <QWidget>

class QLabel;
class QSettings;
class QSplitter;
class QTreeView;

namespace tqx::view
{

class BytesView;
class FilterBar;
class MessageTable;
class TypeList;

/// Messages, the fields of the selected one, and its bytes. Independent of formats.
class MessagePage : public QWidget
{
    Q_OBJECT

public:
    explicit MessagePage(QWidget* parent = nullptr);
    ~MessagePage() override;

    /// Shows a log, null for none; `isContinued` as for MessageRows.
    void setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued);

    MessageRows& getRows() { return m_rows; }
    const FieldTreeModel& getFields() const { return m_fields; }
    void setFilter(const MessageFilter& filter);
    void setStickingToEnd(bool isSticking);
    void goToTime(int64_t time);
    void goToOffset(uint64_t offset);
    void focusCondition();

    /// Asks for the field that is selected to be plotted.
    void plotSelected();

    void save(QSettings& settings) const;
    void restore(const QSettings& settings);

Q_SIGNALS:
    /// A numeric field is to be plotted, named as for PathExpression; `identity` is that of its
    /// sub-message, empty for one of the message itself.
    void plotWanted(const QString& expression, const QString& identity);
    void failed(const QString& reason);

private:
    void showEntry(const MessageEntry& entry);
    void showContent(const MessageEntry& entry, const MessageContent& content,
                     std::vector<FieldRow> rows);
    void fieldSelected(const QModelIndex& index);
    void byteSelected(uint32_t offset);
    void applyTypes();
    void showFieldMenu(const QPoint& place);
    void showCount();

    MessageRows m_rows;
    FieldTreeModel m_fields;
    FilterBar* m_filterBar;
    TypeList* m_types;
    MessageTable* m_table;
    QLabel* m_title;
    QTreeView* m_tree;
    BytesView* m_bytes;
    QSplitter* m_columns;
    QSplitter* m_details;
    QString m_shownType;
    QString m_shownPath; ///< of the selected field, also in the next message of its type
    TaskQueue m_tasks;
};

} // namespace tqx::view
