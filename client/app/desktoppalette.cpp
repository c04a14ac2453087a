#include "app/desktoppalette.h"

namespace {

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness() ||
           palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
}

} // namespace

QPalette programPalette(const QPalette &desktop, const QPalette &light)
{
    QPalette palette = isDark(desktop) ? light : desktop;
    palette.setColor(QPalette::All, QPalette::Window, QColor(243, 249, 255));
    palette.setColor(QPalette::All, QPalette::Button, QColor(241, 239, 255));
    return palette;
}
