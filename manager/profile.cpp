#include "manager/profile.h"

#include "contract/recordformat.h"
#include "service/archive.h"
#include "service/workbench.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QPair>

#include <algorithm>
#include <tuple>

namespace kelva {
namespace {

constexpr int longestText = 254;

QString tr(const char *text)
{
    return QCoreApplication::translate("Profile", text);
}

auto fieldsOf(const Profile &p)
{
    return std::tie(p.id, p.name, p.host, p.port, p.user, p.password, p.flag, p.archives, p.archiveIndex,
                    p.displayLine1, p.displayLine2, p.extraList1, p.extraList2);
}

bool isPlain(const QString &text)
{
    return text.size() <= longestText && std::none_of(text.begin(), text.end(), [](QChar c) {
               return c.category() == QChar::Other_Control || c == recordformat::fieldSeparator ||
                      c == recordformat::listSeparator || c == recordformat::rowSeparator;
           });
}

bool isArchiveNumber(const QString &port)
{
    bool isNumber = false;
    const int number = port.toInt(&isNumber);
    return isNumber && number > 0 && port == QString::number(number);
}

QString chosenField(const Profile &profile, int field)
{
    return profile.archives.value(profile.archiveIndex)
        .split(recordformat::fieldSeparator, Qt::KeepEmptyParts)
        .value(field);
}

} // namespace

QString Profile::archiveName() const
{
    return chosenField(*this, 0);
}

QString Profile::archiveKey() const
{
    return chosenField(*this, 1);
}

QString Profile::blockKey() const
{
    return workbenchKey(user, host, port.toInt(), id);
}

bool operator==(const Profile &a, const Profile &b)
{
    return fieldsOf(a) == fieldsOf(b);
}

QDataStream &operator<<(QDataStream &stream, const Profile &profile)
{
    return stream << profile.id << profile.name << profile.host << profile.port << profile.user
                  << profile.password << profile.flag << profile.archives << qint64(profile.archiveIndex)
                  << profile.displayLine1 << profile.displayLine2 << profile.extraList1 << profile.extraList2;
}

Profile tidied(Profile profile)
{
    for (QString *text : {&profile.name, &profile.host, &profile.port, &profile.user, &profile.displayLine1,
                          &profile.displayLine2})
        *text = text->trimmed();
    bool isNumber = false;
    if (const int number = profile.port.toInt(&isNumber); isNumber)
        profile.port = QString::number(number);
    return profile;
}

Result<void> validate(const Profile &profile, ProfileField *atFault)
{
    const auto wrong = [atFault](ProfileField field, const QString &text) {
        if (atFault)
            *atFault = field;
        return Error{ErrorCode::BadInput, text};
    };
    if (profile.name.isEmpty())
        return wrong(ProfileField::Name, tr("Please give the profile a name."));
    if (profile.host.isEmpty())
        return wrong(ProfileField::Host,
                     tr("Please enter the host, \"localhost\" for an archive of this computer."));
    if (!isArchiveNumber(profile.port))
        return wrong(ProfileField::Port, tr("The port must be a whole number above 0."));
    if (const Result<QString> file = archiveFile(profile); !file)
        return wrong(ProfileField::Host, file.error().text);
    if (profile.user.isEmpty())
        return wrong(ProfileField::User, tr("Please enter the user's login name."));
    if (profile.password.isEmpty())
        return wrong(ProfileField::Password, tr("Please enter the password."));
    const QPair<ProfileField, QString> texts[] = {
        {ProfileField::Name, profile.name},          {ProfileField::Host, profile.host},
        {ProfileField::User, profile.user},          {ProfileField::Password, profile.password},
        {ProfileField::Line1, profile.displayLine1}, {ProfileField::Line2, profile.displayLine2}};
    for (const auto &[field, text] : texts)
        if (!isPlain(text))
            return wrong(field, tr("The texts may hold at most 254 characters, and no line breaks."));
    if (profile.archiveKey().isEmpty())
        return wrong(ProfileField::Archive, tr("Please load the archives and choose one of them."));
    return {};
}

Result<QString> archiveFile(const Profile &profile)
{
    return archive::fileFor(profile.host, profile.port.toInt());
}

} // namespace kelva
