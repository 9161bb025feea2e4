#include "view/TypeList.h"

#include <MessageInfo.h>

#include <QHeaderView>
#include <QLocale>

namespace tqx::view
{

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

void TypeList::setTypes(const std::vector<MessageLog::Type>& types)
{
    const QStringList wanted = getWanted();
    const QSignalBlocker silent(this);
    clear();
    uint64_t all = 0;
    for (const MessageLog::Type& type : types)
        all += type.count;
    const auto add = [this](const QString& name, uint64_t count, const QString& help) {
        auto* item = new QTreeWidgetItem(this);
        item->setText(0, name);
        item->setText(1, QLocale().toString(qulonglong{count}));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(0, help);
        return item;
    };
    if (types.empty())
        return;
    add(tr("All types"), all, {})->setData(0, Qt::UserRole, true);
    for (const MessageLog::Type& type : types) {
        const QString help = type.info ? type.info->getShortDescriptiveText() : tr("(unknown)");
        add(type.name, type.count, help);
    }
    setWanted(wanted);
}

QStringList TypeList::getWanted() const
{
    QStringList names;
    for (const QTreeWidgetItem* item : selectedItems()) {
        if (item->data(0, Qt::UserRole).toBool())
            return {};
        names += item->text(0);
    }
    return names;
}

void TypeList::setWanted(const QStringList& names)
{
    const QSignalBlocker silent(this);
    clearSelection();
    for (int i = 0; i < topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = topLevelItem(i);
        const bool isAll = item->data(0, Qt::UserRole).toBool();
        item->setSelected(isAll ? names.isEmpty() : names.contains(item->text(0)));
    }
}

} // namespace tqx::view
