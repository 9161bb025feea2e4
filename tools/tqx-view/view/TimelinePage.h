#pragma once

#include "model/Timeline.h"

#include "view/ExportPage.h"

class QLabel;
class QSplitter;
class QTreeWidget;
class QTreeWidgetItem;

namespace tqx::view
{

class SpanPlot;

/// When messages occur, where they are missing, and where the log is damaged.
class TimelinePage : public ExportPage
{
    Q_OBJECT

public:
    explicit TimelinePage(QWidget* parent = nullptr);
    ~TimelinePage() override;

    /// The log is read when the page is shown for the first time.
    void setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued);

    const Timeline& getTimeline() const { return m_timeline; }
    QTreeWidget& getFaults() { return *m_faults; }

Q_SIGNALS:
    /// The messages at a time, or at a byte of the log, are to be shown.
    void timeWanted(qlonglong time);
    void offsetWanted(qulonglong offset);

protected:
    void showEvent(QShowEvent* event) override;
    std::optional<Exported> getExported() override;
    QString getFileName() const override { return "timeline"; }

private:
    void writeTable(QTextStream& out) const;
    void readIfNeeded();
    void showData();
    void showRows();
    void showFaults();
    void chooseFault(QTreeWidgetItem* item);

    Timeline m_timeline;
    std::shared_ptr<const MessageLog> m_log;
    bool m_isRead = true; ///< or is being read
    QLabel* m_summary;
    SpanPlot* m_plot;
    QTreeWidget* m_faults;
};

} // namespace tqx::view
