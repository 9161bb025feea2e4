#pragma once

#include "model/MessageLog.h"

#include <QWidget>

class QLabel;
class QLineEdit;

namespace tqx::view
{

/// Times and a condition by which messages are selected.
class FilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit FilterBar(QWidget* parent = nullptr);

    /// The log whose times are read and shown; null for none.
    void setLog(std::shared_ptr<const MessageLog> log);

    /// Shows a filter; its types are not shown here.
    void setFilter(const MessageFilter& filter);

    /// How many messages are selected, or what is wrong with the filter.
    void showCount(uint64_t selected, uint64_t all, bool isSearching);
    void showError(const QString& reason);

    void focusCondition();

Q_SIGNALS:
    /// A filter was entered that is valid as far as can be checked here.
    void changed(const std::optional<int64_t>& from, const std::optional<int64_t>& to,
                 const QString& condition);

private:
    void apply();
    std::optional<int64_t> timeOf(QLineEdit& edit) const;

    std::shared_ptr<const MessageLog> m_log;
    QLineEdit* m_from;
    QLineEdit* m_to;
    QLineEdit* m_condition;
    QLabel* m_count;
    QLabel* m_error;
};

} // namespace tqx::view
