#include "service/connection.h"

#include "service/archive.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace kelva {

QString Connection::offlineArchive()
{
    const QString path = QCoreApplication::applicationDirPath() + QStringLiteral("/offline.kelva");
    return QFileInfo(path).isFile() ? path : QString();
}

Result<void> Connection::login(const QString &host, int port, const QString &user, const QString &password)
{
    m_session.reset();
    const Result<QString> path = archive::fileFor(host, port);
    if (!path)
        return path.error();
    auto session = Session::login(path.value(), user, password);
    if (!session)
        return session.error();
    m_session = std::move(session.value());
    return {};
}

Result<void> Connection::openOffline()
{
    m_session.reset();
    auto session = Session::openOffline(offlineArchive());
    if (!session)
        return session.error();
    m_session = std::move(session.value());
    return {};
}

bool Connection::requireSession(ExpiredAccounts expired)
{
    if (!m_session) {
        m_lastError = QStringLiteral("There is no connection to the archive.");
        return false;
    }
    // Not every operation asks what the user may do, but none is for somebody who is no user any more.
    if (expired == ExpiredAccounts::Allowed)
        return true;
    const Result<void> known = m_session->requireAccount();
    if (!known)
        setError(known.error());
    return known.ok();
}

bool Connection::refuseUnavailable()
{
    m_lastError = QStringLiteral("This is not available yet.");
    return false;
}

} // namespace kelva
