#include "server/kelvaprofiledata.h"

#include "contract/boundedread.h"

QDataStream &operator>>(QDataStream &stream, kelvaProfileData &profile)
{
    QStringList archiveList;
    qint64 archiveIndex = 0;
    stream >> profile.id >> profile.name >> profile.host >> profile.port >> profile.user >>
        profile.password >> profile.flag;
    readBounded(stream, archiveList);
    stream >> archiveIndex;
    const bool listed = archiveIndex >= 0 && archiveIndex < archiveList.size();
    profile.archiveEntry = listed ? archiveList.at(static_cast<int>(archiveIndex)) : QString();
    stream >> profile.displayLine1 >> profile.displayLine2;
    readBounded(stream, profile.extraList1);
    readBounded(stream, profile.extraList2);
    return stream;
}
