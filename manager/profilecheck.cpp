#include "manager/profilecheck.h"

#include "contract/recordformat.h"
#include "service/archive.h"
#include "service/folders.h"
#include "service/session.h"
#include "service/subarchives.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>

namespace kelva {
namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ProfileCheck", text);
}

} // namespace

Result<QStringList> loadArchives(const Profile &profile)
{
    const Result<QString> path = archiveFile(profile);
    if (!path)
        return path.error();
    Result<QStringList> archives = archive::subArchives(path.value());
    if (archives && archives.value().isEmpty())
        return Error{ErrorCode::NotFound, tr("There are no archives at this port.")};
    return archives;
}

QStringList localArchives()
{
    QList<int> numbers;
    const QString suffix = QStringLiteral(".kelva");
    for (const QString &file : QDir(archive::home()).entryList({QLatin1Char('*') + suffix}, QDir::Files)) {
        const QString name = file.chopped(suffix.size());
        if (const int number = name.toInt(); number > 0 && name == QString::number(number))
            numbers << number;
    }
    std::sort(numbers.begin(), numbers.end());
    QStringList names;
    for (const int number : qAsConst(numbers))
        names << QString::number(number);
    return names;
}

int archiveIndexOf(const QStringList &archives, const QString &key)
{
    for (int i = 0; i < archives.size(); ++i)
        if (archives.at(i).split(recordformat::fieldSeparator, Qt::KeepEmptyParts).value(1) == key)
            return i;
    return -1;
}

Result<ProfileFindings> checkProfile(const Profile &profile)
{
    const Result<QString> path = archiveFile(profile);
    if (!path)
        return path.error();
    auto session = Session::login(path.value(), profile.user, profile.password);
    if (!session)
        return session.error();
    SubArchives subArchives(*session.value());
    const Result<QStringList> archives = subArchives.list();
    if (!archives)
        return archives.error();
    const int index = archiveIndexOf(archives.value(), profile.archiveKey());
    if (index < 0)
        return Error{ErrorCode::NotFound, tr("The archive \"%1\" is not there any more. Please load the "
                                             "archives again and choose another.")
                                              .arg(profile.archiveName())};
    const Result<qint64> id = subArchives.find(profile.archiveKey());
    if (!id)
        return id.error();
    const Result<int> documents = subArchives.countDocuments(id.value());
    if (!documents)
        return documents.error();
    const Result<Records> folders = Folders(*session.value()).list(Folders::Scope::InUse);
    if (!folders)
        return folders.error();
    ProfileFindings findings;
    findings.archiveName =
        archives.value().at(index).split(recordformat::fieldSeparator, Qt::KeepEmptyParts).value(0);
    findings.archives = archives.value().size();
    findings.folders = folders.value().rows.size();
    findings.documents = documents.value();
    return findings;
}

} // namespace kelva
