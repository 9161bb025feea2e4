#pragma once

#include "model/MessageLog.h"
#include "model/TaskQueue.h"

#include <QObject>
#include <QStringList>
#include <QTimer>

#include <memory>

namespace tqx::view
{

class TqxLog;

/// The log that a window shows: opened in another thread, and followed while its file grows.
class LogDocument : public QObject
{
    Q_OBJECT

public:
    explicit LogDocument(QObject* parent = nullptr);
    ~LogDocument() override;

    /// Opens files as one log, replacing the current one; opened() or failed() follows.
    void open(const QStringList& paths);

    /// Shows a log that was made elsewhere; with `isContinued`, it begins with the one
    /// that is shown.
    void show(std::shared_ptr<const MessageLog> log, bool isContinued = false);

    void close();

    bool isLoading() const { return m_isLoading; }
    const QStringList& getPaths() const { return m_paths; }

    /// Null while there is none.
    const std::shared_ptr<const MessageLog>& getLog() const { return m_log; }

    /// The log in terms of its own format, beyond messages; null for other formats.
    std::shared_ptr<const TqxLog> getTqxLog() const { return m_tqxLog; }

    /// Whether data appended to the file are shown as they come.
    void setFollowing(bool isFollowing);
    bool isFollowing() const { return m_isFollowing; }
    /// Whether the log is one that can grow: a single file that is not compressed.
    bool canFollow() const;

    /// How often a followed file is checked.
    static constexpr int followMillis = 500;

Q_SIGNALS:
    void loading();
    void progress(qulonglong done, qulonglong all);
    /// There is another log, or none; with `isContinued` the one before has become longer.
    void opened(bool isContinued);
    void failed(const QString& reason);
    void warned(const QString& reason);

private:
    void take(std::shared_ptr<const TqxLog> log, bool isContinued);
    void lookForMore();

    QStringList m_paths;
    std::shared_ptr<const MessageLog> m_log;
    std::shared_ptr<const TqxLog> m_tqxLog;
    bool m_isLoading = false;
    bool m_isFollowing = false;
    bool m_isLooking = false;
    QTimer m_timer;
    TaskQueue m_tasks;
};

} // namespace tqx::view
