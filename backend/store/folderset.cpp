#include "store/folderset.h"

#include "store/database.h"

namespace kelva {

FolderSet::FolderSet(Database &database, QSet<QString> oids) : m_oids(std::move(oids))
{
    database.run(
        QStringLiteral("CREATE TEMP TABLE IF NOT EXISTS opened_folder(oid TEXT PRIMARY KEY) WITHOUT ROWID"));
    database.run(QStringLiteral("DELETE FROM opened_folder"));
    Statement insert(database, QStringLiteral("INSERT INTO opened_folder VALUES(?)"));
    for (const QString &oid : qAsConst(m_oids))
        insert.run({oid});
}

QString FolderSet::condition(const QString &column)
{
    return QStringLiteral("%1 IN (SELECT oid FROM temp.opened_folder)").arg(column);
}

} // namespace kelva
