#pragma once

/// Names of the rights in a user's role list.
namespace userright {

constexpr char administrate[] = "kelvaADMIN";
constexpr char classify[] = "kelvaCLASSIFY";
constexpr char history[] = "kelvaHISTORY";
constexpr char createFolder[] = "kelvaCREATEFOLDER";
/// In a list of roles: every user. Nobody has it himself.
constexpr char everyUser[] = "kelvaUSER";

} // namespace userright
