#include "view/ExportPage.h"

#include <QFileDialog>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QSaveFile>
#include <QSvgGenerator>
#include <QTextStream>

#include <qwt_plot.h>
#include <qwt_plot_renderer.h>

namespace tqx::view
{

namespace
{

constexpr int dotsPerInch = 96;
constexpr double pointsPerDot = 72.0 / dotsPerInch;

bool endsWith(const QString& path, const char* ending)
{
    return path.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
}

void paintOn(QPaintDevice& device, const Exported& exported, const QColor& background)
{
    QPainter painter(&device);
    const QRect area({0, 0}, exported.size);
    painter.fillRect(area, background);
    exported.paint(painter, area);
}

void writeDrawing(QIODevice& file, const Exported& exported, const QColor& background)
{
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setResolution(dotsPerInch);
    generator.setSize(exported.size);
    generator.setViewBox(QRect({0, 0}, exported.size));
    generator.setTitle(exported.title);
    paintOn(generator, exported, background);
}

/// One page as large as the picture.
void writeDocument(QIODevice& file, const Exported& exported, const QColor& background)
{
    QPdfWriter writer(&file);
    writer.setResolution(dotsPerInch);
    writer.setTitle(exported.title);
    writer.setPageSize(QPageSize(QSizeF(exported.size) * pointsPerDot, QPageSize::Point));
    writer.setPageMargins({0, 0, 0, 0});
    paintOn(writer, exported, background);
}

bool writePicture(QIODevice& file, const Exported& exported, const QColor& background)
{
    constexpr int scale = 2; // sharp on paper
    QImage image(exported.size * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    paintOn(image, exported, background);
    return image.save(&file, "PNG");
}

} // namespace

bool ExportPage::exportTo(const QString& path)
{
    const std::optional<Exported> exported = getExported();
    QSaveFile file(path);
    if (!exported || !file.open(QIODevice::WriteOnly))
        return false;
    const QColor background = palette().color(QPalette::Base);
    if (endsWith(path, ".csv")) {
        QTextStream out(&file);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        out.setCodec("UTF-8"); // the default of later versions
#endif
        exported->writeTable(out);
    } else if (endsWith(path, ".svg")) {
        writeDrawing(file, *exported, background);
    } else if (endsWith(path, ".pdf")) {
        writeDocument(file, *exported, background);
    } else if (!endsWith(path, ".png") || !writePicture(file, *exported, background)) {
        return false;
    }
    return file.commit();
}

void ExportPage::chooseExport()
{
    if (!getExported()) {
        Q_EMIT failed(tr("There is nothing to export yet"));
        return;
    }
    QString kind;
    QString path = QFileDialog::getSaveFileName(
        this, tr("Export"), getFileName() + ".png",
        tr("Picture (*.png);;Drawing (*.svg);;Document (*.pdf);;Table (*.csv)"), &kind);
    if (path.isEmpty())
        return;
    // A name without an ending gets that of the kind that was chosen.
    bool hasEnding = false;
    for (const char* ending : {".png", ".svg", ".pdf", ".csv"})
        hasEnding = hasEnding || endsWith(path, ending);
    if (!hasEnding)
        path += kind.section("*", 1).remove(')');
    if (!exportTo(path))
        Q_EMIT failed(tr("%1 cannot be written").arg(path));
}

QPushButton* ExportPage::makeExportButton()
{
    auto* button = new QPushButton(tr("&Export…"), this);
    button->setObjectName("export");
    button->setToolTip(tr("Write a picture (.png, .svg, .pdf) or a table (.csv)"));
    connect(button, &QPushButton::clicked, this, &ExportPage::chooseExport);
    return button;
}

QString csvCell(QString text)
{
    return text.contains(',') || text.contains('"') ? '"' + text.replace('"', "\"\"") + '"' : text;
}

void renderPlot(QwtPlot& plot, QPainter& painter, const QRectF& area)
{
    QwtPlotRenderer renderer;
    renderer.setDiscardFlags(QwtPlotRenderer::DiscardBackground);
    renderer.render(&plot, &painter, area);
}

} // namespace tqx::view
