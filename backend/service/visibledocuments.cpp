#include "service/visibledocuments.h"

#include "service/session.h"

namespace kelva {

bool maySeeDocument(Session &session, qint64 archiveId)
{
    const SqlCondition visible = visibleDocuments(session, QStringLiteral("d.id"));
    return session.database()
        .value(QStringLiteral("SELECT 1 FROM document d WHERE d.id = ? AND %1").arg(visible.sql),
               QVariantList{archiveId} + visible.values)
        .isValid();
}

SqlCondition visibleDocuments(Session &session, const QString &column)
{
    const Access &access = session.access();
    if (access.seesEveryDocument())
        return {sql::always, {}};
    return {QStringLiteral("(EXISTS(SELECT 1 FROM classification c WHERE c.document = %1 AND %2)"
                           " OR EXISTS(SELECT 1 FROM document own WHERE own.id = %1 AND own.account = ?"
                           " AND NOT EXISTS(SELECT 1 FROM classification c WHERE c.document = own.id)))")
                .arg(column, access.visibleCondition(QStringLiteral("c.folder"))),
            {session.account()}};
}

} // namespace kelva
