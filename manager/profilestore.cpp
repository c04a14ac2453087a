#include "manager/profilestore.h"

#include "manager/profilefile.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <limits>

namespace kelva {
namespace {

constexpr int lockTimeoutMs = 5000;
constexpr qint64 largestFile = 16 * 1024 * 1024;
constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

QString tr(const char *text)
{
    return QCoreApplication::translate("ProfileStore", text);
}

Result<void> checkName(const QList<Profile> &profiles, const Profile &profile)
{
    for (const Profile &other : profiles)
        if (other.id != profile.id && other.name.compare(profile.name, Qt::CaseInsensitive) == 0)
            return Error{ErrorCode::InUse, tr("There is a profile named \"%1\" already.").arg(other.name)};
    return {};
}

int indexOf(const QList<Profile> &profiles, qint64 id)
{
    for (int i = 0; i < profiles.size(); ++i)
        if (profiles.at(i).id == id)
            return i;
    return -1;
}

const Error &gone()
{
    static const Error error{ErrorCode::NotFound, tr("There is no such profile any more.")};
    return error;
}

} // namespace

struct ProfileStore::Content : ProfileFile
{
};

ProfileStore::ProfileStore(const QString &file) : m_file(file) {}

QString ProfileStore::defaultFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/kelva/profiles.json");
}

Result<QList<Profile>> ProfileStore::load() const
{
    Result<Content> content = read();
    if (!content)
        return content.error();
    return content.value().profiles;
}

Result<Profile> ProfileStore::add(const Profile &profile)
{
    Profile stored = profile;
    const Result<void> done = change([&stored](Content &content) -> Result<void> {
        if (const Result<void> free = checkName(content.profiles, stored); !free)
            return free;
        if (content.nextId >= std::numeric_limits<int>::max())
            return Error{ErrorCode::Storage, tr("There are no numbers left for new profiles.")};
        stored.id = content.nextId++;
        content.profiles << stored;
        return {};
    });
    if (!done)
        return done.error();
    return stored;
}

Result<void> ProfileStore::replace(const Profile &before, const Profile &after)
{
    return change([&](Content &content) -> Result<void> {
        const int index = indexOf(content.profiles, before.id);
        if (index < 0)
            return gone();
        if (content.profiles.at(index) != before)
            return Error{ErrorCode::Conflict,
                         tr("The profile \"%1\" was changed by another program in the meantime. Please look "
                            "at it again.")
                             .arg(before.name)};
        if (const Result<void> free = checkName(content.profiles, after); !free)
            return free;
        content.profiles[index] = after;
        content.profiles[index].id = before.id;
        return {};
    });
}

Result<void> ProfileStore::remove(qint64 id)
{
    return change([id](Content &content) -> Result<void> {
        const int index = indexOf(content.profiles, id);
        if (index < 0)
            return gone();
        content.profiles.removeAt(index);
        return {};
    });
}

Result<QString> ProfileStore::setAside()
{
    QLockFile lock(m_file + QStringLiteral(".lock"));
    if (!lock.tryLock(lockTimeoutMs))
        return Error{ErrorCode::Busy, tr("The profiles are being changed by another program.")};
    const QString stem =
        m_file + QDateTime::currentDateTime().toString(QStringLiteral("'.damaged-'yyyyMMdd-HHmmss"));
    QString target = stem;
    for (int i = 2; QFile::exists(target); ++i)
        target = stem + QLatin1Char('-') + QString::number(i);
    if (!QFile::rename(m_file, target))
        return Error{ErrorCode::Storage, tr("The file %1 could not be renamed.").arg(m_file)};
    return target;
}

Result<ProfileStore::Content> ProfileStore::read() const
{
    QFile file(m_file);
    if (!file.exists())
        return Content{};
    if (!file.open(QIODevice::ReadOnly))
        return Error{ErrorCode::Storage,
                     tr("The profiles in %1 cannot be read: %2").arg(m_file, file.errorString())};
    if (file.size() > largestFile)
        return Error{
            ErrorCode::NotAnArchive,
            tr("The profile file %1 is damaged: it is too large. It was left as it is.").arg(m_file)};
    // It holds passwords, and an editor or a copy may have opened it to others.
    if ((file.permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther)))
        file.setPermissions(ownerOnly);
    Result<ProfileFile> parsed = parseProfileFile(file.readAll());
    if (!parsed && parsed.error().code == ErrorCode::WrongVersion)
        return Error{ErrorCode::WrongVersion,
                     tr("The profile file %1 was written by a newer version.").arg(m_file)};
    if (!parsed)
        return Error{
            parsed.error().code,
            tr("The profile file %1 is damaged: %2 It was left as it is.").arg(m_file, parsed.error().text)};
    return Content{parsed.value()};
}

Result<void> ProfileStore::change(const std::function<Result<void>(Content &)> &edit)
{
    if (const Result<void> prepared = prepareDirectory(); !prepared)
        return prepared;
    QLockFile lock(m_file + QStringLiteral(".lock"));
    if (!lock.tryLock(lockTimeoutMs))
        return Error{ErrorCode::Busy, tr("The profiles are being changed by another program.")};
    Result<Content> content = read();
    if (!content)
        return content.error();
    if (const Result<void> edited = edit(content.value()); !edited)
        return edited;
    return write(content.value());
}

Result<void> ProfileStore::write(const Content &content)
{
    QSaveFile file(m_file);
    // Closed to others before the first password goes in.
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(ownerOnly) ||
        file.write(formatProfileFile(content)) < 0 || !file.commit())
        return Error{ErrorCode::Storage,
                     tr("The profiles could not be saved in %1: %2").arg(m_file, file.errorString())};
    return {};
}

Result<void> ProfileStore::prepareDirectory() const
{
    const QDir directory = QFileInfo(m_file).absoluteDir();
    if (!directory.mkpath(QStringLiteral(".")) ||
        !QFile::setPermissions(directory.path(), ownerOnly | QFile::ExeOwner))
        return Error{ErrorCode::Storage, tr("The directory %1 cannot be made.").arg(directory.path())};
    return {};
}

} // namespace kelva
