#include "folders/kelvanewfolder.h"

QString folderKeywords(QString text)
{
    return text.replace('\r', ' ').replace('\n', ' ').replace(QStringLiteral("  "), QStringLiteral(" "));
}
