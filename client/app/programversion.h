#pragma once

/// Who the program says it is.
namespace programversion {

constexpr char text[] = "14.08-1-Update12";
constexpr int build = 1;
/// Shown in the About box; a fixed text, not the version that runs.
constexpr char qtText[] = "5.4.2";
constexpr char application[] = "kelvaclient";
constexpr char organisation[] = "Norbant GmbH";

} // namespace programversion
