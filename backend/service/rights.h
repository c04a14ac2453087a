#pragma once

#include <QString>
#include <QStringList>

/// Role names with a meaning of their own. Every right is a role.
namespace kelva::rights {

inline const QString admin = QStringLiteral("kelvaADMIN");
inline const QString classify = QStringLiteral("kelvaCLASSIFY");
inline const QString versioning = QStringLiteral("kelvaVERSIONING");
inline const QString tesmo = QStringLiteral("TesmoLogon");
inline const QString history = QStringLiteral("kelvaHISTORY");
inline const QString createFolder = QStringLiteral("kelvaCREATEFOLDER");
inline const QString allDocuments = QStringLiteral("kelvaALLDOCS");
inline const QString webClient = QStringLiteral("kelvaWEBCLIENT");
/// Stands for every user in a list of roles; nobody has it assigned.
inline const QString everyUser = QStringLiteral("kelvaUSER");
/// Marks a folder in its list of roles as seen by all.
inline const QString publicFolder = QStringLiteral("publicFolder");
inline const QString personalPrefix = QStringLiteral("r_");
inline const QString directoryPrefix = QStringLiteral("LDAP_");

/// The eight that can be given to a user.
QStringList assignable();
/// Roles that nobody can delete: rights, kelvaUSER, personal and directory roles.
bool isSystemRole(const QString &role);

} // namespace kelva::rights
