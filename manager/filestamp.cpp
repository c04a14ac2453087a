#include "manager/filestamp.h"

#include <QFile>

#include <ctime>
#include <tuple>

#include <sys/stat.h>

namespace kelva {
namespace {

constexpr qint64 secondNs = 1000000000;
/// Far above the granularity of file times.
constexpr qint64 settleNs = secondNs;

qint64 nanoseconds(const timespec &time)
{
    return time.tv_sec * secondNs + time.tv_nsec;
}

} // namespace

FileStamp::File FileStamp::fileState(const QString &path)
{
    File file;
    struct stat state = {};
    if (::stat(QFile::encodeName(path).constData(), &state) != 0)
        return file;
    file.exists = true;
    file.device = state.st_dev;
    file.inode = state.st_ino;
    file.size = state.st_size;
    // Not the change time: opening an archive as root sets the owner of its log anew and so moves it.
    file.modifiedNs = nanoseconds(state.st_mtim);
    return file;
}

FileStamp FileStamp::of(const QString &path)
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    FileStamp stamp;
    stamp.m_files = {fileState(path), fileState(path + QStringLiteral("-wal"))};
    stamp.m_settled = stamp.m_files.at(0).exists;
    for (const File &file : stamp.m_files)
        if (file.exists && file.modifiedNs > nanoseconds(now) - settleNs)
            stamp.m_settled = false;
    return stamp;
}

bool FileStamp::isStill(const FileStamp &later) const
{
    const auto fields = [](const File &f) {
        return std::make_tuple(f.exists, f.device, f.inode, f.size, f.modifiedNs);
    };
    return m_settled && fields(m_files.at(0)) == fields(later.m_files.at(0)) &&
           fields(m_files.at(1)) == fields(later.m_files.at(1));
}

} // namespace kelva
