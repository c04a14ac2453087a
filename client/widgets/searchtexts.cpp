#include "widgets/searchtexts.h"

#include <QCoreApplication>

namespace searchtext {

QString extendedSearch()
{
    return QCoreApplication::translate("SearchTexts", "Extended Search...");
}

QString fullText()
{
    return QCoreApplication::translate("SearchTexts", "full text");
}

QString notAssigned()
{
    return QCoreApplication::translate("SearchTexts", "not assigned");
}

QString searchFor()
{
    return QCoreApplication::translate("SearchTexts", "search for");
}

QString orPrefix()
{
    return QCoreApplication::translate("SearchTexts", "or ");
}

bool takeOrPrefix(QString *op)
{
    for (const QString &prefix : {orPrefix(), QStringLiteral("or "), QStringLiteral("oder ")})
        if (op->startsWith(prefix)) {
            op->remove(0, prefix.size());
            return true;
        }
    return false;
}

} // namespace searchtext
