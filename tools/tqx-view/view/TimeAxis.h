#pragma once

class QwtPlot;

namespace tqx::view
{

/// Makes the lower axis of a plot one of calendar times, in milliseconds since 1970.
void useTimeAxis(QwtPlot& plot);

} // namespace tqx::view
