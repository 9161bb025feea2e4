#include "model/MessageRows.h"

#include <QElapsedTimer>

#include <algorithm>
#include <exception>
#include <utility>

namespace tqx::view
{

namespace
{

constexpr qint64 reportEveryMillis = 200;
constexpr size_t mostAtOnce = 1 << 20; // so as not to block the receiver

} // namespace

MessageRows::MessageRows(QObject* parent) : QObject(parent) {}

MessageRows::~MessageRows() = default;

void MessageRows::setLog(std::shared_ptr<const MessageLog> log, bool isContinued)
{
    const bool goesOn = isContinued && m_log && log && !m_isSearching;
    const uint32_t lastPage = goesOn && m_log->getPageCount() > 0 ? m_log->getPageCount() - 1 : 0;
    m_log = std::move(log);
    m_loading.cancel();
    m_searching.cancel();
    ++m_generation;
    if (!goesOn) {
        m_pages.clear();
        m_uses.clear();
        m_rows = RowSet();
        search(0);
        return;
    }
    // The last page may have grown; pages that were being loaded are requested again.
    for (auto page = m_pages.begin(); page != m_pages.end();) {
        if (page->second.isLoaded && page->first < lastPage) {
            ++page;
            continue;
        }
        m_uses.erase(page->second.use);
        page = m_pages.erase(page);
    }
    search(lastPage);
}

void MessageRows::setFilter(const MessageFilter& filter)
{
    m_filter = filter;
    m_searching.cancel();
    ++m_generation;
    m_rows = RowSet();
    search(0);
}

void MessageRows::search(uint32_t firstPage)
{
    m_isSearching = false;
    if (!m_log) {
        Q_EMIT rowsChanged(true);
        return;
    }
    if (m_filter.isEverything()) {
        m_rows = RowSet::allOf(*m_log);
        Q_EMIT rowsChanged(firstPage == 0);
        return;
    }
    m_isSearching = true;
    m_rows.truncate(firstPage);
    if (firstPage == 0)
        Q_EMIT rowsChanged(true);
    m_searching.run([this, log = m_log, filter = m_filter, firstPage,
                     generation = m_generation](const TaskToken& token) {
        Found some;
        const auto report = [&](bool isComplete, const QString& reason = QString()) {
            QMetaObject::invokeMethod(
                this,
                [this, some = std::move(some), isComplete, reason, generation] {
                    if (generation == m_generation)
                        take(some, isComplete, reason);
                },
                Qt::QueuedConnection);
            some.clear();
        };
        try {
            const std::unique_ptr<MessageReader> reader = log->find(filter, firstPage);
            QElapsedTimer sinceReport;
            sinceReport.start();
            MessageEntry entry;
            while (!token.isCancelled() && reader->next(entry)) {
                some.emplace_back(entry.page, entry.place);
                if (some.size() >= mostAtOnce || sinceReport.elapsed() > reportEveryMillis) {
                    report(false);
                    sinceReport.restart();
                }
            }
            report(true);
        } catch (const std::exception& error) {
            report(true, QString::fromUtf8(error.what()));
        }
    });
}

void MessageRows::take(const Found& some, bool isComplete, const QString& reason)
{
    for (const auto& [page, place] : some)
        m_rows.add(page, place);
    m_isSearching = !isComplete;
    Q_EMIT rowsChanged(false);
    if (!reason.isEmpty())
        Q_EMIT failed(reason);
}

std::optional<MessageEntry> MessageRows::getEntry(uint64_t row)
{
    if (row >= m_rows.size())
        return std::nullopt;
    const RowSet::Row wanted = m_rows.at(row);
    const auto page = m_pages.find(wanted.page);
    if (page == m_pages.end()) {
        load(wanted.page);
        return std::nullopt;
    }
    m_uses.splice(m_uses.begin(), m_uses, page->second.use);
    const Entries& entries = page->second.entries;
    if (!page->second.isLoaded)
        return std::nullopt;
    if (!wanted.place)
        return wanted.index < entries.size() ? std::optional(entries[wanted.index]) : std::nullopt;
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), *wanted.place,
        [](const MessageEntry& entry, uint16_t place) { return entry.place < place; });
    return found != entries.end() ? std::optional(*found) : std::nullopt;
}

void MessageRows::load(uint32_t page)
{
    m_uses.push_front(page);
    m_pages[page].use = m_uses.begin();
    while (m_pages.size() > mostPages) {
        m_pages.erase(m_uses.back());
        m_uses.pop_back();
    }
    m_loading.run([this, log = m_log, page](const TaskToken& token) {
        Entries entries;
        QString reason;
        try {
            entries = log->loadPage(page);
        } catch (const std::exception& error) {
            reason = QString::fromUtf8(error.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, page, entries = std::move(entries), reason, token]() mutable {
                if (token.isCancelled())
                    return;
                keep(page, std::move(entries));
                if (!reason.isEmpty())
                    Q_EMIT failed(reason);
            },
            Qt::QueuedConnection);
    });
}

void MessageRows::keep(uint32_t page, Entries entries)
{
    const auto kept = m_pages.find(page);
    if (kept == m_pages.end())
        return;
    kept->second.entries = std::move(entries);
    kept->second.isLoaded = true;
    Q_EMIT loaded();
}

void MessageRows::findTime(int64_t time)
{
    MessageFilter filter = m_filter;
    filter.from = std::max(time, filter.from.value_or(time));
    findFirst(filter, 0, 0);
}

void MessageRows::findOffset(uint64_t offset)
{
    findFirst(m_filter, 0, offset);
}

void MessageRows::findFirst(MessageFilter filter, uint32_t firstPage, uint64_t offset)
{
    if (!m_log)
        return;
    m_loading.run([this, log = m_log, filter = std::move(filter), firstPage, offset, rows = m_rows,
                   generation = m_generation](const TaskToken& token) {
        uint64_t row = rows.size();
        try {
            uint32_t page = firstPage;
            if (offset > 0)
                page = log->pageAt(offset);
            const std::unique_ptr<MessageReader> reader = log->find(filter, page);
            MessageEntry entry;
            bool isFound = false;
            while (!token.isCancelled() && !isFound && reader->next(entry))
                isFound = entry.offset + entry.size > offset;
            if (isFound)
                row = rows.rowOf(entry.page, entry.place, log->loadPage(entry.page));
        } catch (const std::exception&) {
            return; // the search for the rows reports it
        }
        if (row >= rows.size())
            return;
        QMetaObject::invokeMethod(
            this,
            [this, row, generation] {
                if (generation == m_generation)
                    Q_EMIT found(row);
            },
            Qt::QueuedConnection);
    });
}

} // namespace tqx::view
