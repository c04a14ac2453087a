#pragma once

#include <QString>

#include <array>

namespace kelva {

/// State of an archive's file and its write-ahead log, to see cheaply whether anything was written since.
class FileStamp
{
public:
    static FileStamp of(const QString &path);

    /// The files have not changed from this stamp to the other. A write in the moment of taking the stamp may
    /// leave the times as they are, so a stamp taken soon after a write equals nothing.
    bool isStill(const FileStamp &later) const;

private:
    struct File
    {
        bool exists = false;
        quint64 device = 0;
        quint64 inode = 0;
        qint64 size = 0;
        qint64 modifiedNs = 0;
    };

    static File fileState(const QString &path);

    std::array<File, 2> m_files;
    bool m_settled = false;
};

} // namespace kelva
