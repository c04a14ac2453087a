#include "contract/folderoid.h"

#include <QRegularExpression>

QString folderoid::parent(const QString &oid)
{
    const int dot = oid.lastIndexOf('.');
    return dot < 0 ? QString() : oid.left(dot);
}

bool folderoid::isPath(const QString &oid)
{
    static const QRegularExpression path("\\A[0-9]+(\\.[0-9]+)*\\z");
    return path.match(oid).hasMatch();
}

QString folderoid::subtreeClause(const QString &oid)
{
    if (oid.isEmpty() || oid == QLatin1String(all))
        return QString();
    return QStringLiteral("(folder = '%1' OR folder like '%2.%3')").arg(oid, oid, QStringLiteral("%"));
}
