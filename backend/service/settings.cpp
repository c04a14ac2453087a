#include "service/settings.h"

#include "service/operation.h"

namespace kelva {

Result<Setting> Settings::get(const QString &section, const QString &key)
{
    // Keys and their passwords lie there.
    const char *const operation = section == QLatin1String("SSL") ? "Settings::get, secret" : "Settings::get";
    return read(m_session, operation, [&](Database &database) -> Result<Setting> {
        Query row =
            database.query(QStringLiteral("SELECT value, owner FROM setting WHERE section = ? AND name = ?"),
                           {section, key});
        if (row.next())
            return Setting{row.bytes(0), row.text(1)};
        return Error{ErrorCode::NotFound, QStringLiteral("No data found.")};
    });
}

Result<void> Settings::save(const QString &section, const QString &key, const Setting &setting, bool replace)
{
    return change(m_session, "Settings::save", [&](Database &database) -> Result<void> {
        if (key.isEmpty())
            return Error{ErrorCode::BadInput, QStringLiteral("A setting needs a name.")};
        const bool known =
            database
                .value(QStringLiteral("SELECT 1 FROM setting WHERE section = ? AND name = ?"), {section, key})
                .isValid();
        if (known && !replace)
            return Error{ErrorCode::BadInput, QStringLiteral("There is a setting %1 already.").arg(key)};
        const QByteArray value = setting.value.isNull() ? QByteArray("") : setting.value;
        database.run(
            QStringLiteral(
                "INSERT INTO setting(section, name, value, owner) VALUES(?, ?, ?, ?)"
                " ON CONFLICT(section, name) DO UPDATE SET value = excluded.value, owner = excluded.owner"),
            {section, key, value, setting.owner});
        return {};
    });
}

} // namespace kelva
