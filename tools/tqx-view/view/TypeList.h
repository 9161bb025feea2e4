#pragma once

#include "model/MessageLog.h"

#include <QTreeWidget>

namespace tqx::view
{

/// The types of messages in a log with their counts; selected ones are shown.
class TypeList : public QTreeWidget
{
    Q_OBJECT

public:
    explicit TypeList(QWidget* parent = nullptr);

    /// Keeps the selection as far as the types are there.
    void setTypes(const std::vector<MessageLog::Type>& types);

    /// Names of the types that are selected; empty for all.
    QStringList getWanted() const;
    void setWanted(const QStringList& names);

Q_SIGNALS:
    void wantedChanged();

private:
    void removeOthers(const std::vector<MessageLog::Type>& types);
};

} // namespace tqx::view
