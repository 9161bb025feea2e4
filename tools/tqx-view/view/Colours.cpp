#include "view/Colours.h"

#include <array>
#include <cmath>

namespace tqx::view
{

namespace
{

// Distinguishable with red-green colour blindness, too.
constexpr std::array<QRgb, 8> onLight = {0xff1f6fb4, 0xffc8500a, 0xff1a7f5a, 0xffa03c82,
                                         0xff6b5b00, 0xff3f3f9f, 0xff8f3a2a, 0xff4d6d7d};
constexpr std::array<QRgb, 8> onDark = {0xff6db6f5, 0xffffa25c, 0xff58d0a0, 0xffeb8fd0,
                                        0xffe6d255, 0xffa6a6ff, 0xffff9f8f, 0xffa9c4d2};

QColor mixed(const QColor& one, const QColor& other, double share)
{
    const auto mix = [share](int a, int b) {
        return static_cast<int>(std::lround(a * (1 - share) + b * share));
    };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()),
            mix(one.blue(), other.blue())};
}

} // namespace

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Text).lightness() > palette.color(QPalette::Base).lightness();
}

QColor seriesColour(int number, const QPalette& palette)
{
    const auto place = static_cast<size_t>(number) % onLight.size();
    return QColor(isDark(palette) ? onDark[place] : onLight[place]);
}

QColor faultColour(const QPalette& palette)
{
    return isDark(palette) ? QColor(255, 107, 97) : QColor(200, 30, 30);
}

QColor goodColour(const QPalette& palette)
{
    return isDark(palette) ? QColor(84, 150, 205) : QColor(90, 150, 200);
}

QColor markColour(const QPalette& palette)
{
    return isDark(palette) ? QColor(120, 92, 0) : QColor(255, 226, 120);
}

QColor gridColour(const QPalette& palette)
{
    return mixed(palette.color(QPalette::Base), palette.color(QPalette::Text), 0.18);
}

QColor quietColour(const QPalette& palette)
{
    return mixed(palette.color(QPalette::Base), palette.color(QPalette::Text), 0.6);
}

QColor systemColour(char system, const QPalette& palette)
{
    constexpr char letters[] = "GRECJIS";
    for (int i = 0; letters[i] != 0; ++i) {
        if (letters[i] == system)
            return seriesColour(i, palette);
    }
    return seriesColour(7, palette);
}

} // namespace tqx::view
