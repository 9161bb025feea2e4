#pragma once

#include "model/MessageLog.h"
#include "view/ExportPage.h"

#include <memory>
#include <vector>

class QLabel;
class QLineEdit;
class QSettings;
class QSplitter;
class QStringListModel;

namespace tqx::view
{

class PlotPanel;

/// Plots of fields, one below the other over the same times.
class PlotPage : public ExportPage
{
    Q_OBJECT

public:
    explicit PlotPage(QWidget* parent = nullptr);
    ~PlotPage() override;

    void setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued);

    /// Adds a plot of a field; `choice` is the series to show, "" for all.
    void add(const QString& expression, const QString& choice);

    /// The times shown, in milliseconds on the log's time scale.
    void setRange(double from, double to);
    void showWhole();

    /// All times and values, whatever was chosen before.
    void showAll();
    double getFrom() const { return m_from; }
    double getTo() const { return m_to; }

    const std::vector<PlotPanel*>& getPanels() const { return m_panels; }

    void save(QSettings& settings) const;
    void restore(const QSettings& settings);

Q_SIGNALS:
    /// The messages at a time are to be shown.
    void timeWanted(qlonglong time);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    std::optional<Exported> getExported() override;
    QString getFileName() const override { return "plots"; }

private:
    void addTyped();
    void remove(PlotPanel* panel);
    void showCursor(double time);
    void hideCursor();
    void panelChanged();
    void arrange();
    void move(double share);
    void zoom(double factor);
    void renderAll(QPainter& painter, const QRectF& area);
    void writeTable(QTextStream& out) const;

    std::shared_ptr<const MessageLog> m_log;
    std::vector<PlotPanel*> m_panels;
    QLineEdit* m_name;
    QStringListModel* m_names;
    QLabel* m_time;
    QSplitter* m_stack;
    double m_from = 0;
    double m_to = 1;
    bool m_isWhole = true; ///< all times are shown, also those that come
};

} // namespace tqx::view
