#include "folders/folderlink.h"

QString folderLinkText(const FolderLink &link)
{
    QString text = link.html ? QStringLiteral("http://localhost:17003")
                             : QStringLiteral("kelva-link://") + link.host + ':' + link.port;
    text += QStringLiteral("/openDoc?openmode=3&folderid=") + link.oid + QStringLiteral("&archive=") +
            link.archive;
    if (link.html)
        text += QStringLiteral("&host=") + link.host + QStringLiteral("&port=") + link.port;
    return text;
}
