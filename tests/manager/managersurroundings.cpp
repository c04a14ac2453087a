#include "manager/managersurroundings.h"

#include "contract/recordformat.h"
#include "support/outside.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace kelva;

ManagerSurroundings::ManagerSurroundings()
{
    qputenv("KELVA_HOME", QFile::encodeName(QFileInfo(archive.path()).absolutePath()));
}

ProfileFixture::ProfileFixture()
{
    QDir(QFileInfo(store.file()).absolutePath()).removeRecursively();
}

Profile ProfileFixture::profile(const QString &name, const QString &user) const
{
    Profile profile;
    profile.name = name;
    profile.host = "localhost";
    profile.port = "1";
    profile.user = user;
    profile.password = "secret";
    profile.flag = true;
    profile.archives = QStringList{QString("Archive") + recordformat::fieldSeparator + "1",
                                   QString("Attic") + recordformat::fieldSeparator + "2"};
    profile.displayLine1 = "Müller & Söhne";
    profile.displayLine2 = "Second";
    profile.extraList1 = QStringList{"a", "b"};
    profile.extraList2 = QStringList{""};
    return profile;
}

Profile ProfileFixture::added(const Profile &profile)
{
    const Result<Profile> stored = store.add(profile);
    if (!stored)
        qFatal("%s", qPrintable(stored.error().text));
    return stored.value();
}

void ProfileFixture::writeFile(const QByteArray &bytes) const
{
    QDir().mkpath(QFileInfo(store.file()).absolutePath());
    outside::write(store.file(), bytes);
}

QByteArray ProfileFixture::readFile() const
{
    return outside::read(store.file());
}
