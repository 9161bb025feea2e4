#pragma once

#include <QColor>
#include <QPalette>

namespace tqx::view
{

/// Whether texts are lighter than what they are on.
bool isDark(const QPalette& palette);

/// The colour of the n-th of several curves, readable on the palette's base.
QColor seriesColour(int number, const QPalette& palette);

/// Of what is damaged or missing.
QColor faultColour(const QPalette& palette);

/// Of what is as it should be.
QColor goodColour(const QPalette& palette);

/// Below the bytes of the field that is selected.
QColor markColour(const QPalette& palette);

/// Of lines that only help the eye.
QColor gridColour(const QPalette& palette);

/// Of words of less weight.
QColor quietColour(const QPalette& palette);

/// The colour of a satellite system by its letter in file formats.
QColor systemColour(char system, const QPalette& palette);

} // namespace tqx::view
