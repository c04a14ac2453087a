#include "server/folderoid.h"

QString folderoid::parent(const QString &oid)
{
    const int dot = oid.lastIndexOf('.');
    return dot < 0 ? QString() : oid.left(dot);
}

QString folderoid::subtreeClause(const QString &oid)
{
    if (oid.isEmpty() || oid == QLatin1String(all))
        return QString();
    return QStringLiteral("(folder = '%1' OR folder like '%2.%3')").arg(oid, oid, QStringLiteral("%"));
}
