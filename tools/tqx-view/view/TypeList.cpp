#include "view/TypeList.h"

#include <MessageInfo.h>

#include <QHeaderView>
#include <QLocale>
#include <QSet>

namespace tqx::view
{

namespace
{

constexpr int isAllRole = Qt::UserRole;
constexpr int countRole = Qt::UserRole + 1;

} // namespace

TypeList::TypeList(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(2);
    setHeaderLabels({tr("Type"), tr("Messages")});
    headerItem()->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setAllColumnsShowFocus(true);
    setAccessibleName(tr("Types"));
    setToolTip(tr("Select the types to list; Ctrl adds one, Shift a range"));
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(0, QHeaderView::Stretch);
    header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &TypeList::wantedChanged);
}

/// Changes only what is another: a log that is followed may have thousands of types.
void TypeList::setTypes(const std::vector<MessageLog::Type>& types)
{
    const QStringList wanted = getWanted();
    const QSignalBlocker silent(this);
    int row = 0;
    const auto show = [&](const QString& name, uint64_t count, const QString& help, bool isAll) {
        QTreeWidgetItem* item = topLevelItem(row);
        if (!item || item->text(0) != name || item->data(0, isAllRole).toBool() != isAll) {
            item = new QTreeWidgetItem;
            item->setText(0, name);
            item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
            item->setToolTip(0, help);
            item->setData(0, isAllRole, isAll);
            insertTopLevelItem(row, item);
        }
        const QVariant known = item->data(1, countRole);
        if (!known.isValid() || known.toULongLong() != count) {
            item->setData(1, countRole, qulonglong{count});
            item->setText(1, QLocale().toString(qulonglong{count}));
        }
        ++row;
    };
    removeOthers(types);
    uint64_t all = 0;
    for (const MessageLog::Type& type : types)
        all += type.count;
    if (!types.empty())
        show(tr("All types"), all, {}, true);
    for (const MessageLog::Type& type : types) {
        show(type.name, type.count,
             type.info ? type.info->getShortDescriptiveText() : tr("(unknown)"), false);
    }
    setWanted(wanted);
}

void TypeList::removeOthers(const std::vector<MessageLog::Type>& types)
{
    QSet<QString> names;
    for (const MessageLog::Type& type : types)
        names.insert(type.name);
    for (int row = topLevelItemCount() - 1; row >= 0; --row) {
        const QTreeWidgetItem* item = topLevelItem(row);
        const bool isAll = item->data(0, isAllRole).toBool();
        if (isAll ? types.empty() : !names.contains(item->text(0)))
            delete takeTopLevelItem(row);
    }
}

QStringList TypeList::getWanted() const
{
    QStringList names;
    for (const QTreeWidgetItem* item : selectedItems()) {
        if (item->data(0, isAllRole).toBool())
            return {};
        names += item->text(0);
    }
    return names;
}

void TypeList::setWanted(const QStringList& names)
{
    const QSignalBlocker silent(this);
    const QSet<QString> wanted(names.begin(), names.end());
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = topLevelItem(i);
        const bool isAll = item->data(0, isAllRole).toBool();
        const bool isWanted = isAll ? names.isEmpty() : wanted.contains(item->text(0));
        if (item->isSelected() != isWanted)
            item->setSelected(isWanted);
    }
}

} // namespace tqx::view
