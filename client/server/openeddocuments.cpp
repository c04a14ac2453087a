#include "server/openeddocuments.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr char key[] = "OpenedDocuments";
constexpr qint64 keptSeconds = 24 * 60 * 60;

/// Fetched at, modified at, both in milliseconds, and size; the path comes last, since it may hold the
/// separator.
struct Copy
{
    qint64 fetched = 0;
    qint64 modified = 0;
    qint64 size = 0;
    QString path;

    QString text() const { return QStringLiteral("%1;%2;%3;").arg(fetched).arg(modified).arg(size) + path; }
    static Copy parse(const QString &text)
    {
        return {text.section(';', 0, 0).toLongLong(), text.section(';', 1, 1).toLongLong(),
                text.section(';', 2, 2).toLongLong(), text.section(';', 3)};
    }
};

Copy copyOf(const QString &path, const QDateTime &now)
{
    const QFileInfo file(path);
    return {now.toMSecsSinceEpoch(), file.lastModified().toMSecsSinceEpoch(), file.size(), path};
}

/// The system grants the lease only while nobody else has the file open.
bool isOpenSomewhere(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0)
        return true;
    const bool alone = ::fcntl(file, F_SETLEASE, F_WRLCK) == 0;
    ::close(file);
    return !alone;
}

} // namespace

void openeddocuments::note(QSettings &settings, const QString &path, const QDateTime &now)
{
    settings.setValue(key, settings.value(key).toStringList() << copyOf(path, now).text());
}

QStringList openeddocuments::clearUp(QSettings &settings, const QDateTime &now)
{
    QStringList kept;
    QStringList changed;
    const QStringList entries = settings.value(key).toStringList();
    for (const QString &entry : entries) {
        const Copy copy = Copy::parse(entry);
        const QFileInfo file(copy.path);
        // A name in the settings is not trusted with more than what was written there.
        if (!file.isFile() || file.isSymLink())
            continue;
        if (file.size() != copy.size || file.lastModified().toMSecsSinceEpoch() != copy.modified) {
            changed << copy.path;
            continue;
        }
        const bool old = now.toMSecsSinceEpoch() - copy.fetched > keptSeconds * 1000;
        if (!old || isOpenSomewhere(copy.path) || !QFile::remove(copy.path))
            kept << entry;
    }
    if (kept != entries)
        settings.setValue(key, kept);
    return changed;
}
