#include "service/settings.h"

#include "service/rights.h"
#include "service/session.h"

namespace kelva {

Result<Setting> Settings::get(const QString &section, const QString &key)
{
    Database &database = m_session.database();
    Transaction reading(database, Transaction::Kind::Read);
    // Keys and their passwords lie there.
    if (section == QLatin1String("SSL") && !m_session.access().isAdmin())
        return m_session.access().require(rights::admin).error();
    Query row = database.query(
        QStringLiteral("SELECT value, owner FROM setting WHERE section = ? AND name = ?"), {section, key});
    if (row.next())
        return Setting{row.bytes(0), row.text(1)};
    return database.failed() ? database.result(Setting()).error()
                             : Error{ErrorCode::NotFound, QStringLiteral("No data found.")};
}

Result<void> Settings::save(const QString &section, const QString &key, const Setting &setting, bool replace)
{
    Database &database = m_session.database();
    Transaction writing(database, Transaction::Kind::Write);
    if (const Result<void> allowed = m_session.access().require(rights::admin); !allowed)
        return allowed;
    if (key.isEmpty())
        return Error{ErrorCode::BadInput, QStringLiteral("A setting needs a name.")};
    const bool known =
        database.value(QStringLiteral("SELECT 1 FROM setting WHERE section = ? AND name = ?"), {section, key})
            .isValid();
    if (known && !replace)
        return Error{ErrorCode::BadInput, QStringLiteral("There is a setting %1 already.").arg(key)};
    const QByteArray value = setting.value.isNull() ? QByteArray("") : setting.value;
    database.run(
        QStringLiteral("INSERT OR REPLACE INTO setting(section, name, value, owner) VALUES(?, ?, ?, ?)"),
        {section, key, value, setting.owner});
    return writing.commit();
}

} // namespace kelva
