#pragma once

namespace kelva {

/// Takes from this process for good what a reader of files that are open already does not need: sockets,
/// programs, opening files for writing and, where the kernel knows Landlock, opening any beyond the system's
/// own data, unlinking and renaming. False when the kernel does not do it.
bool enterSandbox();

} // namespace kelva
