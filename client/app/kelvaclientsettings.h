#pragma once

#include <QString>

/// The installation's own defaults: kelvaclient.ini beside the program. A write that the file's rights forbid
/// is lost without a message.
class KelvaClientSettings final
{
public:
    QString getClassificationServer() const;
    void setClassificationServer(const QString &server);
    int getClassificationPort() const;
    void setClassificationPort(int port);
    QString getCurrentSubArchive() const;
    void setCurrentSubArchive(const QString &archive);
    QString getCompany() const;
    QString getCompanyIcon() const;
    /// Always "plugins", whatever the file says.
    static QString getPluginDirectory();
};
