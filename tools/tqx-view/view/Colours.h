#pragma once

#include <QColor>
#include <QPalette>

namespace tqx::view
{

/// Whether text is lighter than its background.
bool isDark(const QPalette& palette);

/// The colour of the n-th of several curves, readable on the palette's base.
QColor seriesColour(int number, const QPalette& palette);

/// For what is damaged or missing.
QColor faultColour(const QPalette& palette);

/// For what is as it should be.
QColor goodColour(const QPalette& palette);

/// Background of the bytes of the selected field.
QColor markColour(const QPalette& palette);

/// For auxiliary lines.
QColor gridColour(const QPalette& palette);

/// For less important text.
QColor quietColour(const QPalette& palette);

/// The colour of a satellite system by its letter in file formats.
QColor systemColour(char system, const QPalette& palette);

} // namespace tqx::view
