#pragma once

#include <QPalette>

/// The program's own colours on the desktop's. Its style sheets are for dark text on light ground: of a dark
/// desktop nothing is taken, and light, the style's own palette, is what they go on.
QPalette programPalette(const QPalette &desktop, const QPalette &light);
