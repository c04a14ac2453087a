#include "manager/instancelock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kelva {

InstanceLock::~InstanceLock()
{
    release();
}

Result<bool> InstanceLock::take(const QString &name)
{
    release();
    const QString path = QDir::tempPath() + QLatin1Char('/') + name + QStringLiteral(".lock");
    m_file = ::open(QFile::encodeName(path).constData(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    struct stat state = {};
    if (m_file < 0 || ::fstat(m_file, &state) != 0 || state.st_uid != ::getuid()) {
        release();
        return Error{ErrorCode::Storage,
                     QCoreApplication::translate("InstanceLock", "The file %1 cannot be used.").arg(path)};
    }
    if (::flock(m_file, LOCK_EX | LOCK_NB) == 0)
        return true;
    release();
    return false;
}

void InstanceLock::release()
{
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
}

} // namespace kelva
