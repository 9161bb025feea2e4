#pragma once

#include <QColor>
#include <QSize>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>

class QPainter;
class QPushButton;
class QTextStream;
class QwtPlot;

namespace tqx::view
{

/// What a page can write to a file.
struct Exported {
    QString title;
    QSize size; ///< of the picture, in pixels of a screen
    std::function<void(QPainter& painter, const QRectF& area)> paint;
    std::function<void(QTextStream& out)> writeTable; ///< as comma-separated values, with a head
};

/// A page of the window that can be exported as a picture, a drawing, a document or a table.
class ExportPage : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Writes what is shown, by the ending of the name: .png, .svg, .pdf or .csv. False when there
    /// is nothing to write, or the file cannot be written.
    bool exportTo(const QString& path);

    /// Asks for a name and writes it; failed() reports what goes wrong.
    void chooseExport();

Q_SIGNALS:
    void failed(const QString& reason);

protected:
    /// Nothing while the page is empty.
    virtual std::optional<Exported> getExported() = 0;

    /// What the page is called in names of files.
    virtual QString getFileName() const = 0;

    /// A button that asks for a name.
    QPushButton* makeExportButton();
};

/// Quoted where it has to be.
QString csvCell(QString text);

/// Draws a plot as it is.
void renderPlot(QwtPlot& plot, QPainter& painter, const QRectF& area);

} // namespace tqx::view
