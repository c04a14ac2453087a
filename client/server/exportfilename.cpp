#include "server/exportfilename.h"

#include <QFileInfo>
#include <QRegularExpression>

namespace {

constexpr int longestName = 100;
/// Of a file name with its suffix, in UTF-8.
constexpr int longestFileNameBytes = 255;

QString cleanName(const QString &proposal)
{
    static const QRegularExpression foreign("[^a-zA-Z0-9äüöÄÜÖß. ]");
    QString name = proposal;
    name.remove(foreign);
    return name.remove(' ').left(longestName);
}

} // namespace

QString exportFileName(qint64 id, const QString &proposal, const QString &temporaryPath, int counter)
{
    const QFileInfo temporary(temporaryPath);
    const QString wanted = proposal.trimmed();
    QString name = cleanName(wanted.isEmpty() ? temporary.baseName() : wanted);
    const QString prefix = counter == 0 ? QString("%1_").arg(id) : QString("%1_%2_").arg(id).arg(counter);
    const QString suffix = temporary.completeSuffix();
    const QString ending = suffix.isEmpty() ? QString() : '.' + suffix;
    if (!ending.isEmpty() && name.endsWith(ending))
        name.chop(ending.size());
    while (!name.isEmpty() && (prefix + name + ending).toUtf8().size() > longestFileNameBytes)
        name.chop(1);
    return prefix + name + ending;
}
