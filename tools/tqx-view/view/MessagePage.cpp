#include "view/MessagePage.h"

#include "view/BytesView.h"
#include "view/FilterBar.h"
#include "view/MessageTable.h"
#include "view/TypeList.h"

#include <FieldInfo.h>
#include <MessageInfo.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QSettings>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

#include <exception>
#include <utility>

namespace tqx::view
{

namespace
{

QWidget* withTitle(QLabel* title, QWidget* content)
{
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    title->setTextFormat(Qt::PlainText);
    title->setContentsMargins(4, 2, 4, 2);
    title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    layout->addWidget(title);
    layout->addWidget(content, 1);
    return box;
}

} // namespace

MessagePage::MessagePage(QWidget* parent)
    : QWidget(parent), m_filterBar(new FilterBar(this)), m_types(new TypeList(this)),
      m_table(new MessageTable(m_rows, this)), m_title(new QLabel(this)),
      m_tree(new QTreeView(this)), m_bytes(new BytesView(this)),
      m_columns(new QSplitter(Qt::Horizontal, this)), m_details(new QSplitter(Qt::Vertical, this))
{
    m_tree->setModel(&m_fields);
    m_tree->setObjectName("fields");
    m_tree->setUniformRowHeights(true);
    m_tree->setAlternatingRowColors(true);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->setAccessibleName(tr("Fields"));
    m_tree->setExpandsOnDoubleClick(false);
    const int width = fontMetrics().averageCharWidth();
    m_tree->header()->resizeSection(FieldTreeModel::Name, 24 * width);
    m_tree->header()->resizeSection(FieldTreeModel::Value, 20 * width);
    m_tree->header()->resizeSection(FieldTreeModel::Unit, 8 * width);
    m_tree->header()->resizeSection(FieldTreeModel::Raw, 14 * width);

    m_details->addWidget(withTitle(m_title, m_tree));
    m_details->addWidget(m_bytes);
    m_details->setStretchFactor(0, 3);
    m_details->setStretchFactor(1, 1);
    m_columns->addWidget(m_types);
    m_columns->addWidget(m_table);
    m_columns->addWidget(m_details);
    m_columns->setStretchFactor(1, 3);
    m_columns->setStretchFactor(2, 3);
    // For the longest names of types and whole times, whatever the font.
    const QFontMetrics metrics = fontMetrics();
    const int types = metrics.horizontalAdvance("PVTGeodetic2Extra 10,000,000");
    const int list = metrics.horizontalAdvance(
        "2026-01-06 12:00:00.000 PVTGeodetic2Extra 65,535 10,000,000,000 and the space between");
    m_columns->setSizes({types, list, list});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(m_filterBar);
    layout->addWidget(m_columns, 1);
    m_filterBar->setEnabled(false);
    m_table->setEmptyText(tr("Open a log to see its messages:\nFile > Open, or drop a file here."));
    m_title->setText(tr("Fields"));

    connect(m_table, &MessageTable::selected, this, &MessagePage::showEntry);
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &MessagePage::fieldSelected);
    connect(m_tree, &QTreeView::customContextMenuRequested, this, &MessagePage::showFieldMenu);
    connect(m_tree, &QTreeView::activated, this, &MessagePage::plotSelected);
    connect(m_bytes, &BytesView::byteSelected, this, &MessagePage::byteSelected);
    connect(m_types, &TypeList::wantedChanged, this, &MessagePage::applyTypes);
    connect(m_filterBar, &FilterBar::changed, this,
            [this](const std::optional<int64_t>& from, const std::optional<int64_t>& to,
                   const QString& condition) {
                MessageFilter filter = m_rows.getFilter();
                filter.from = from;
                filter.to = to;
                filter.condition = condition;
                m_rows.setFilter(filter);
            });
    connect(&m_rows, &MessageRows::rowsChanged, this, &MessagePage::showCount);
    connect(&m_rows, &MessageRows::failed, m_filterBar, &FilterBar::showError);
}

MessagePage::~MessagePage() = default;

void MessagePage::setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued)
{
    if (!isContinued) {
        m_tasks.cancel();
        m_fields.setRows({});
        m_bytes->setBytes({}, 0);
        m_title->setText(tr("Fields"));
    }
    m_filterBar->setLog(log);
    m_types->setTypes(log ? log->getTypes() : std::vector<MessageLog::Type>());
    m_table->setEmptyText(
        log ? tr("No message meets the filter.\nClear a field above, or choose \"All types\".")
            : tr("Open a log to see its messages:\nFile > Open, or drop a file here."));
    if (log && log->getTypes().empty())
        m_table->setEmptyText(tr("This log has no messages."));
    m_rows.setLog(log, isContinued);
}

void MessagePage::setFilter(const MessageFilter& filter)
{
    m_types->setWanted(filter.types);
    m_filterBar->setFilter(filter);
    m_rows.setFilter(filter);
}

void MessagePage::applyTypes()
{
    MessageFilter filter = m_rows.getFilter();
    filter.types = m_types->getWanted();
    m_rows.setFilter(filter);
}

void MessagePage::setStickingToEnd(bool isSticking)
{
    m_table->setStickingToEnd(isSticking);
}

void MessagePage::goToTime(int64_t time)
{
    m_table->setFocus();
    m_rows.findTime(time);
}

void MessagePage::goToOffset(uint64_t offset)
{
    m_table->setFocus();
    m_rows.findOffset(offset);
}

void MessagePage::focusCondition()
{
    m_filterBar->focusCondition();
}

void MessagePage::showCount()
{
    uint64_t all = 0;
    if (m_rows.getLog()) {
        for (const MessageLog::Type& type : m_rows.getLog()->getTypes())
            all += type.count;
    }
    m_filterBar->showCount(m_rows.getCount(), all, m_rows.isSearching());
}

void MessagePage::showEntry(const MessageEntry& entry)
{
    // Only the last message asked for matters.
    m_tasks.cancel();
    m_tasks.run([this, entry, log = m_rows.getLog()](const TaskToken& token) {
        MessageContent content;
        std::vector<FieldRow> rows;
        try {
            content = log->load(entry);
            rows = fieldRowsOf(content, *log);
        } catch (const std::exception& error) {
            content.faults += QString::fromUtf8(error.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, entry, content, rows = std::move(rows), token]() mutable {
                if (!token.isCancelled())
                    showContent(entry, content, std::move(rows));
            },
            Qt::QueuedConnection);
    });
}

void MessagePage::showContent(const MessageEntry& entry, const MessageContent& content,
                              std::vector<FieldRow> rows)
{
    QString title = entry.type;
    if (entry.info && !entry.info->getShortDescriptiveText().isEmpty())
        title += " – " + entry.info->getShortDescriptiveText();
    if (!content.faults.isEmpty())
        title += " – " + content.faults.join("; ");
    m_title->setText(title);
    m_title->setToolTip(title);
    m_bytes->setBytes(content.bytes, entry.offset);
    const QString path = m_shownType == entry.type ? m_shownPath : QString();
    m_shownType = entry.type;
    const bool isShort = rows.size() < 60;
    m_fields.setRows(std::move(rows));
    if (isShort)
        m_tree->expandAll();
    const QModelIndex again = m_fields.indexOf(m_fields.rowOfPath(path));
    if (again.isValid()) {
        m_tree->setCurrentIndex(again);
        m_tree->scrollTo(again);
    }
}

void MessagePage::fieldSelected(const QModelIndex& index)
{
    const int row = FieldTreeModel::rowOf(index);
    if (row == FieldRow::none)
        return;
    const FieldRow& field = m_fields.getRows()[static_cast<size_t>(row)];
    m_shownPath = field.path;
    m_bytes->mark(field.offset, field.size);
}

void MessagePage::byteSelected(uint32_t offset)
{
    const QModelIndex index = m_fields.indexOf(rowAtByte(m_fields.getRows(), offset));
    if (!index.isValid()) {
        m_bytes->mark(offset, 1);
        return;
    }
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index);
}

void MessagePage::plotSelected()
{
    const int row = FieldTreeModel::rowOf(m_tree->currentIndex());
    if (row == FieldRow::none)
        return;
    const std::vector<FieldRow>& rows = m_fields.getRows();
    const FieldRow& field = rows[static_cast<size_t>(row)];
    if (!field.field || !isNumeric(*field.field)) {
        m_tree->setExpanded(m_tree->currentIndex(), !m_tree->isExpanded(m_tree->currentIndex()));
        return;
    }
    QStringList identity;
    if (field.name.startsWith('['))
        identity += field.name;
    for (int parent = field.parent; parent != FieldRow::none;
         parent = rows[static_cast<size_t>(parent)].parent) {
        const FieldRow& around = rows[static_cast<size_t>(parent)];
        const bool isMessage = around.field->getType().getKind() == FieldKind::SubMessage;
        const bool isGroup = !around.children.empty() &&
                             rows[static_cast<size_t>(around.children[0])].name.startsWith('[');
        if (isMessage && !isGroup && !around.value.isEmpty())
            identity.prepend(around.value);
    }
    Q_EMIT plotWanted(field.expression, identity.join(", "));
}

void MessagePage::showFieldMenu(const QPoint& place)
{
    const int row = FieldTreeModel::rowOf(m_tree->indexAt(place));
    if (row == FieldRow::none)
        return;
    const FieldRow field = m_fields.getRows()[static_cast<size_t>(row)];
    QMenu menu;
    QAction* plot = menu.addAction(tr("&Plot"), this, &MessagePage::plotSelected);
    plot->setEnabled(field.field && isNumeric(*field.field));
    const auto copy = [&](const QString& label, const QString& text) {
        menu.addAction(label, this, [text] { QGuiApplication::clipboard()->setText(text); });
    };
    copy(tr("Copy &Value"), field.unit.isEmpty() ? field.value : field.value + ' ' + field.unit);
    copy(tr("Copy &Name"), field.expression);
    menu.exec(m_tree->viewport()->mapToGlobal(place));
}

void MessagePage::save(QSettings& settings) const
{
    settings.setValue("messages/columns", m_columns->saveState());
    settings.setValue("messages/details", m_details->saveState());
    settings.setValue("messages/list", m_table->getHeader().saveState());
    settings.setValue("messages/fields", m_tree->header()->saveState());
}

void MessagePage::restore(const QSettings& settings)
{
    m_columns->restoreState(settings.value("messages/columns").toByteArray());
    m_details->restoreState(settings.value("messages/details").toByteArray());
    m_table->getHeader().restoreState(settings.value("messages/list").toByteArray());
    m_tree->header()->restoreState(settings.value("messages/fields").toByteArray());
}

} // namespace tqx::view
