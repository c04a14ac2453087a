#pragma once

#include <QString>
#include <QStringList>

/// What the command line asks for. Unknown arguments are ignored.
struct StartOptions
{
    QString profileId;              ///< of the last "-profile:"; empty counts as none
    QStringList folderOids;         ///< of every "-folderid:", in turn
    bool skipResubmissions = false; ///< some argument begins with "-folderid", colon or not
};

StartOptions parseStartOptions(const QStringList &arguments);
