#include "service/subarchives.h"

#include "service/operation.h"
#include "service/records.h"
#include "service/recordvalues.h"
#include "service/visibledocuments.h"

namespace kelva {
namespace {

constexpr int maximumName = 254;

Error unknownArchive()
{
    return {ErrorCode::NotFound, QStringLiteral("The archive does not exist.")};
}

Result<QString> checkName(Database &database, const QString &name, qint64 except)
{
    const QString clean = storedText(name.trimmed(), maximumName).toString();
    if (clean.isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("The archive needs a name.")};
    if (database.value(QStringLiteral("SELECT 1 FROM subarchive WHERE name = ? AND id <> ?"), {clean, except})
            .isValid())
        return Error{ErrorCode::BadInput, QStringLiteral("There is an archive \"%1\" already.").arg(clean)};
    return clean;
}

} // namespace

Result<QStringList> SubArchives::list()
{
    return read(m_session, "SubArchives::list", [&](Database &database) -> Result<QStringList> {
        QStringList records;
        for (Query row = database.query(QStringLiteral("SELECT name, id FROM subarchive ORDER BY name"));
             row.next();)
            records << joinFields({row.text(0), row.text(1)});
        return records;
    });
}

Result<qint64> SubArchives::find(const QString &key)
{
    return read(m_session, "SubArchives::find", [&](Database &database) -> Result<qint64> {
        bool isNumber = false;
        const qint64 id = key.trimmed().toLongLong(&isNumber);
        if (!isNumber ||
            !database.value(QStringLiteral("SELECT 1 FROM subarchive WHERE id = ?"), {id}).isValid())
            return unknownArchive();
        return id;
    });
}

Result<QString> SubArchives::name(qint64 id)
{
    return read(m_session, "SubArchives::name", [&](Database &database) -> Result<QString> {
        const QVariant name =
            database.value(QStringLiteral("SELECT name FROM subarchive WHERE id = ?"), {id});
        if (!name.isValid())
            return unknownArchive();
        return name.toString();
    });
}

Result<qint64> SubArchives::create(const QString &name, const QString &comment)
{
    return change(m_session, "SubArchives::create", [&](Database &database) -> Result<qint64> {
        const Result<QString> clean = checkName(database, name, 0);
        if (!clean)
            return clean.error();
        return database.insert(QStringLiteral("INSERT INTO subarchive(name, comment) VALUES(?, ?)"),
                               {clean.value(), storedText(comment)});
    });
}

Result<void> SubArchives::rename(qint64 id, const QString &name)
{
    return change(m_session, "SubArchives::rename", [&](Database &database) -> Result<void> {
        const Result<QString> clean = checkName(database, name, id);
        if (!clean)
            return clean.error();
        database.run(QStringLiteral("UPDATE subarchive SET name = ? WHERE id = ?"), {clean.value(), id});
        if (database.affected() == 0)
            return unknownArchive();
        return {};
    });
}

Result<void> SubArchives::remove(qint64 id)
{
    return change(m_session, "SubArchives::remove", [&](Database &database) -> Result<void> {
        if (!database.value(QStringLiteral("SELECT 1 FROM subarchive WHERE id = ?"), {id}).isValid())
            return unknownArchive();
        if (database.value(QStringLiteral("SELECT 1 FROM document WHERE subarchive = ? LIMIT 1"), {id})
                .isValid())
            return Error{ErrorCode::InUse, QStringLiteral("There are documents in the archive.")};
        if (database.value(QStringLiteral("SELECT count(*) FROM subarchive")).toInt() <= 1)
            return Error{ErrorCode::Refused, QStringLiteral("The last archive cannot be deleted.")};
        database.run(QStringLiteral("DELETE FROM subarchive WHERE id = ?"), {id});
        return {};
    });
}

Result<int> SubArchives::countDocuments(qint64 id)
{
    return read(m_session, "SubArchives::countDocuments", [&](Database &database) -> Result<int> {
        // Administrators count what stands in the way of a deletion, others what they see.
        const SqlCondition visible = m_session.access().isAdmin()
                                         ? SqlCondition{sql::always, {}}
                                         : visibleDocuments(m_session, QStringLiteral("d.id"));
        return database
            .value(QStringLiteral("SELECT count(*) FROM document d WHERE d.subarchive = ? AND %1")
                       .arg(visible.sql),
                   QVariantList{id} + visible.values)
            .toInt();
    });
}

} // namespace kelva
