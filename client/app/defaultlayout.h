#pragma once

/// Arrangement of docks and tool bars at the first start, as QMainWindow::saveState() of the final set of
/// docks writes it, in Base64.
namespace defaultlayout {

constexpr char state[] = "";

} // namespace defaultlayout
