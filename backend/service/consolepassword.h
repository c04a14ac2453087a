#pragma once

#include <QString>

namespace kelva {

/// One line from standard input. At a terminal it is asked for and not shown while it is typed.
QString readConsolePassword();

} // namespace kelva
