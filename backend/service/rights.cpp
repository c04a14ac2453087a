#include "service/rights.h"

namespace kelva {

QStringList rights::assignable()
{
    return {admin, classify, versioning, tesmo, history, createFolder, allDocuments, webClient};
}

bool rights::isSystemRole(const QString &role)
{
    return role.startsWith(QLatin1String("kelva")) || role == tesmo || role == publicFolder ||
           role.startsWith(personalPrefix) || role.startsWith(directoryPrefix);
}

} // namespace kelva
