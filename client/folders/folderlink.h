#pragma once

#include <QString>

/// Where a folder is, for a link to it.
struct FolderLink
{
    bool html = false; ///< through the local web service
    QString host;
    QString port;
    QString archive;
    QString oid;
};

QString folderLinkText(const FolderLink &link);
