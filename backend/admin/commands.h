#pragma once

#include <QStringList>

namespace kelva {

/// Runs one command of the command line, without the program's name. 0 on success, 1 when the work failed, 2
/// when the command line is wrong; messages go to standard output and error.
int runCommand(const QStringList &arguments);

} // namespace kelva
