#pragma once

#include "store/result.h"

#include <QByteArray>
#include <QString>

namespace kelva {

class Session;

struct Setting
{
    QByteArray value;
    QString owner;
};

/// Options that all clients of the archive share. Read by every session, written by administrators.
class Settings
{
public:
    explicit Settings(Session &session) : m_session(session) {}

    /// NotFound with exactly "No data found." for an unknown key.
    Result<Setting> get(const QString &section, const QString &key);
    /// replace false: an existing record is kept and the call fails.
    Result<void> save(const QString &section, const QString &key, const Setting &setting, bool replace);

private:
    Session &m_session;
};

} // namespace kelva
