#include "app/startoptions.h"

StartOptions parseStartOptions(const QStringList &arguments)
{
    const QLatin1String profile("-profile:");
    const QLatin1String folder("-folderid:");
    StartOptions options;
    for (const QString &argument : arguments) {
        if (argument.startsWith(profile))
            options.profileId = argument.mid(profile.size());
        if (argument.startsWith(folder))
            options.folderOids << argument.mid(folder.size());
        if (argument.startsWith("-folderid"))
            options.skipResubmissions = true;
    }
    return options;
}
