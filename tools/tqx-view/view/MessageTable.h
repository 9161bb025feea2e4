#pragma once

#include "model/MessageRows.h"

#include <QAbstractScrollArea>

#include <cstdint>
#include <optional>

class QHeaderView;
class QStandardItemModel;

namespace tqx::view
{

/// The list of messages. Stores nothing for rows that are not on screen, so that a log may have any
/// length.
class MessageTable : public QAbstractScrollArea
{
    Q_OBJECT

public:
    enum Column { Time, Type, Size, Offset, Description, columnCount };

    /// `rows` is not owned and outlives the table.
    explicit MessageTable(MessageRows& rows, QWidget* parent = nullptr);

    /// The selected row, nothing in an empty list.
    std::optional<uint64_t> getCurrent() const { return m_current; }

    /// Selects a row and scrolls it into view.
    void select(uint64_t row);

    /// Whether new rows at the end are scrolled into view.
    void setStickingToEnd(bool isSticking);

    /// Sets the text of an empty list.
    void setEmptyText(const QString& text);

    QHeaderView& getHeader() { return *m_header; }

Q_SIGNALS:
    /// The selection changed to this entry.
    void selected(const tqx::view::MessageEntry& entry);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    int rowHeight() const;
    int visibleRows() const;
    void updateScrollBars();
    void rowsChanged(bool fromScratch);
    void selectFound(qulonglong row);
    void reportSelected();
    QString textOf(const MessageEntry& entry, int column) const;

    MessageRows& m_rows;
    QStandardItemModel* m_columns;
    QHeaderView* m_header;
    std::optional<uint64_t> m_current;
    uint64_t m_reported = ~uint64_t{0}; ///< offset of the message that selected() was emitted for
    uint64_t m_wantedOffset = 0;        ///< of the message to select again after a new filter
    bool m_hasWanted = false;
    bool m_isSticking = false;
    QString m_emptyText;
};

} // namespace tqx::view
