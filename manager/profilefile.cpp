#include "manager/profilefile.h"

#include "contract/recordformat.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <cmath>
#include <limits>

namespace kelva {
namespace {

constexpr int formatVersion = 1;

QString tr(const char *text)
{
    return QCoreApplication::translate("ProfileFile", text);
}

/// Takes the fields of an object, and remembers the first that is missing or of another kind.
class Reader
{
public:
    explicit Reader(const QJsonObject &object) : m_object(object) {}

    void take(const char *key, QString &text)
    {
        const QJsonValue value = valueOf(key, &QJsonValue::isString);
        text = value.toString();
    }
    void take(const char *key, bool &flag) { flag = valueOf(key, &QJsonValue::isBool).toBool(); }
    void take(const char *key, qint64 &number, qint64 smallest)
    {
        const double value = valueOf(key, &QJsonValue::isDouble).toDouble();
        if (value != std::floor(value) || value < double(smallest) ||
            value > double(std::numeric_limits<int>::max()))
            note(key);
        else
            number = static_cast<qint64>(value);
    }
    void take(const char *key, QStringList &texts)
    {
        const QJsonArray array = valueOf(key, &QJsonValue::isArray).toArray();
        for (const QJsonValue &value : array) {
            if (!value.isString())
                note(key);
            texts << value.toString();
        }
    }
    QJsonArray array(const char *key) { return valueOf(key, &QJsonValue::isArray).toArray(); }

    const QString &fault() const { return m_fault; }

private:
    QJsonValue valueOf(const char *key, bool (QJsonValue::*isRight)() const)
    {
        const QJsonValue value = m_object.value(QLatin1String(key));
        if (!(value.*isRight)())
            note(key);
        return value;
    }
    void note(const char *key)
    {
        if (m_fault.isEmpty())
            m_fault = QLatin1String(key);
    }

    const QJsonObject &m_object;
    QString m_fault;
};

Error damaged(const QString &text)
{
    return {ErrorCode::NotAnArchive, text};
}

Result<QStringList> parseArchives(const QJsonArray &array)
{
    QStringList archives;
    for (const QJsonValue &value : array) {
        const QJsonObject object = value.toObject();
        Reader reader(object);
        QString name;
        QString key;
        reader.take("name", name);
        reader.take("key", key);
        if (!reader.fault().isEmpty())
            return damaged(QStringLiteral("archives"));
        archives << name + recordformat::fieldSeparator + key;
    }
    return archives;
}

Result<Profile> parseProfile(const QJsonObject &object)
{
    Reader reader(object);
    Profile profile;
    qint64 index = 0;
    reader.take("id", profile.id, 0);
    reader.take("name", profile.name);
    reader.take("host", profile.host);
    reader.take("port", profile.port);
    reader.take("user", profile.user);
    reader.take("password", profile.password);
    reader.take("flag", profile.flag);
    Result<QStringList> archives = parseArchives(reader.array("archives"));
    reader.take("archiveIndex", index, 0);
    reader.take("displayLine1", profile.displayLine1);
    reader.take("displayLine2", profile.displayLine2);
    reader.take("extraList1", profile.extraList1);
    reader.take("extraList2", profile.extraList2);
    if (!reader.fault().isEmpty())
        return damaged(reader.fault());
    if (!archives)
        return archives.error();
    profile.archives = archives.value();
    profile.archiveIndex = static_cast<int>(index);
    return profile;
}

QJsonObject formatProfile(const Profile &profile)
{
    QJsonArray archives;
    for (const QString &archive : profile.archives) {
        const QStringList fields = archive.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        archives << QJsonObject{{QStringLiteral("name"), fields.value(0)},
                                {QStringLiteral("key"), fields.value(1)}};
    }
    return {{QStringLiteral("id"), profile.id},
            {QStringLiteral("name"), profile.name},
            {QStringLiteral("host"), profile.host},
            {QStringLiteral("port"), profile.port},
            {QStringLiteral("user"), profile.user},
            {QStringLiteral("password"), profile.password},
            {QStringLiteral("flag"), profile.flag},
            {QStringLiteral("archives"), archives},
            {QStringLiteral("archiveIndex"), profile.archiveIndex},
            {QStringLiteral("displayLine1"), profile.displayLine1},
            {QStringLiteral("displayLine2"), profile.displayLine2},
            {QStringLiteral("extraList1"), QJsonArray::fromStringList(profile.extraList1)},
            {QStringLiteral("extraList2"), QJsonArray::fromStringList(profile.extraList2)}};
}

} // namespace

Result<ProfileFile> parseProfileFile(const QByteArray &bytes)
{
    QJsonParseError parsing;
    const QJsonObject object = QJsonDocument::fromJson(bytes, &parsing).object();
    if (parsing.error != QJsonParseError::NoError)
        return damaged(tr("%1 at byte %2.").arg(parsing.errorString()).arg(parsing.offset));
    Reader reader(object);
    qint64 format = 0;
    reader.take("format", format, 1);
    if (reader.fault().isEmpty() && format != formatVersion)
        return Error{ErrorCode::WrongVersion, QString()};
    ProfileFile content;
    reader.take("nextId", content.nextId, 0);
    const QJsonArray profiles = reader.array("profiles");
    if (!reader.fault().isEmpty())
        return damaged(tr("\"%1\" is missing or wrong.").arg(reader.fault()));
    QSet<qint64> ids;
    for (int i = 0; i < profiles.size(); ++i) {
        Result<Profile> profile = parseProfile(profiles.at(i).toObject());
        if (!profile)
            return damaged(tr("\"%1\" of profile %2 is missing or wrong.")
                               .arg(profile.error().text, QString::number(i + 1)));
        const qint64 id = profile.value().id;
        if (ids.contains(id) || id >= content.nextId)
            return damaged(tr("\"id\" of profile %1 is not unique.").arg(i + 1));
        ids << id;
        content.profiles << profile.value();
    }
    return content;
}

QByteArray formatProfileFile(const ProfileFile &content)
{
    QJsonArray profiles;
    for (const Profile &profile : content.profiles)
        profiles << formatProfile(profile);
    const QJsonObject object{{QStringLiteral("format"), formatVersion},
                             {QStringLiteral("nextId"), content.nextId},
                             {QStringLiteral("profiles"), profiles}};
    return QJsonDocument(object).toJson();
}

} // namespace kelva
