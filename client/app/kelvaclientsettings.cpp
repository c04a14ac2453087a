#include "app/kelvaclientsettings.h"

#include <QCoreApplication>
#include <QSettings>

namespace {

QVariant read(const char *key, const QVariant &fallback)
{
    const QSettings file(QCoreApplication::applicationDirPath() + "/kelvaclient.ini", QSettings::IniFormat);
    return file.value(key, fallback);
}

void write(const char *key, const QVariant &value)
{
    QSettings file(QCoreApplication::applicationDirPath() + "/kelvaclient.ini", QSettings::IniFormat);
    file.setValue(key, value);
}

} // namespace

QString KelvaClientSettings::getClassificationServer() const
{
    return read("Classify/classServer", QString()).toString();
}

void KelvaClientSettings::setClassificationServer(const QString &server)
{
    write("Classify/classServer", server);
}

int KelvaClientSettings::getClassificationPort() const
{
    return read("Classify/classPort", 0).toInt();
}

void KelvaClientSettings::setClassificationPort(int port)
{
    write("Classify/classPort", port);
}

QString KelvaClientSettings::getCurrentSubArchive() const
{
    return read("curSubArchive", QString()).toString();
}

void KelvaClientSettings::setCurrentSubArchive(const QString &archive)
{
    write("curSubArchive", archive);
}

QString KelvaClientSettings::getCompany() const
{
    return read("company", QString()).toString();
}

QString KelvaClientSettings::getCompanyIcon() const
{
    return read("companyIcon", QString()).toString();
}

QString KelvaClientSettings::getPluginDirectory()
{
    return QStringLiteral("plugins");
}
