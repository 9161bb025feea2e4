#pragma once

#include "model/MessageLog.h"
#include "model/RowSet.h"
#include "model/TaskQueue.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tqx::view
{

/// The list of the messages that a filter selects. Rows are loaded by pages in another thread when
/// first requested; only the most recently used pages stay in memory.
class MessageRows : public QObject
{
    Q_OBJECT

public:
    explicit MessageRows(QObject* parent = nullptr);
    ~MessageRows() override;

    /// Shows a log; null for none. `isContinued`: it extends the log that was shown, whose rows do
    /// not change.
    void setLog(std::shared_ptr<const MessageLog> log, bool isContinued = false);

    /// Selects other messages; rows appear as they are found.
    void setFilter(const MessageFilter& filter);
    const MessageFilter& getFilter() const { return m_filter; }

    const std::shared_ptr<const MessageLog>& getLog() const { return m_log; }
    uint64_t getCount() const { return m_rows.size(); }

    /// Whether the search for rows is still running.
    bool isSearching() const { return m_isSearching; }

    /// The message of a row, nothing while it is being loaded: loaded() follows then.
    std::optional<MessageEntry> getEntry(uint64_t row);

    /// Looks for the first row at or after a time, or at or after a byte of the log; found()
    /// follows if there is one.
    void findTime(int64_t time);
    void findOffset(uint64_t offset);

    /// Pages that are kept in memory.
    static constexpr size_t mostPages = 64;
    size_t getLoadedPages() const { return m_pages.size(); }

Q_SIGNALS:
    /// The rows have changed; with `fromScratch`, all of them.
    void rowsChanged(bool fromScratch);
    /// getEntry() has more entries.
    void loaded();
    void found(qulonglong row);
    /// The filter is invalid or the log cannot be read.
    void failed(const QString& reason);

private:
    using Entries = std::vector<MessageEntry>;
    using Found = std::vector<std::pair<uint32_t, uint16_t>>; ///< pages and places
    struct Page {
        Entries entries;
        bool isLoaded = false;
        std::list<uint32_t>::iterator use;
    };

    void search(uint32_t firstPage);
    void take(const Found& some, bool isComplete, const QString& reason);
    void load(uint32_t page);
    void keep(uint32_t page, Entries entries);
    void findFirst(MessageFilter filter, uint32_t firstPage, uint64_t offset);

    std::shared_ptr<const MessageLog> m_log;
    MessageFilter m_filter;
    RowSet m_rows;
    bool m_isSearching = false;
    unsigned m_generation = 0; ///< incremented when earlier results become invalid
    std::unordered_map<uint32_t, Page> m_pages;
    std::list<uint32_t> m_uses; ///< pages, the last used first

    // Last, so that their tasks end first.
    TaskQueue m_loading;
    TaskQueue m_searching;
};

} // namespace tqx::view
