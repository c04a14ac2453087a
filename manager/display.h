#pragma once

namespace kelva {

/// A display can be reached, or the environment asks for a platform that may need none. To be asked before a
/// QApplication is made, which ends the program when it finds no display.
bool hasDisplay();

} // namespace kelva
