#include "view/TimeAxis.h"

#include <qwt_date_scale_draw.h>
#include <qwt_date_scale_engine.h>
#include <qwt_plot.h>

namespace tqx::view
{

void useTimeAxis(QwtPlot& plot)
{
    auto* dates = new QwtDateScaleDraw(Qt::UTC);
    dates->setDateFormat(QwtDate::Millisecond, "hh:mm:ss.zzz");
    dates->setDateFormat(QwtDate::Second, "hh:mm:ss");
    dates->setDateFormat(QwtDate::Minute, "hh:mm\nyyyy-MM-dd");
    dates->setDateFormat(QwtDate::Hour, "hh:mm\nyyyy-MM-dd");
    dates->setDateFormat(QwtDate::Day, "yyyy-MM-dd");
    plot.setAxisScaleDraw(QwtPlot::xBottom, dates);
    plot.setAxisScaleEngine(QwtPlot::xBottom, new QwtDateScaleEngine(Qt::UTC));
    constexpr int mostLabels = 7;
    plot.setAxisMaxMajor(QwtPlot::xBottom, mostLabels);
}

} // namespace tqx::view
