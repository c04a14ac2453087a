#include "folders/workbenchdata.h"

#include "documents/documentcolumns.h"
#include "server/boundedread.h"
#include "server/recordformat.h"

#include <QBuffer>
#include <QSharedMemory>

namespace {

constexpr int recordLists = 4;
constexpr int largestColumn =
    10000; // far above any archive's attributes: a random block is not taken for one

bool areAttributes(const QMap<int, QString> &columns)
{
    return columns.isEmpty() ||
           (columns.firstKey() >= documentcolumn::firstAttribute && columns.lastKey() <= largestColumn);
}

} // namespace

QMap<QString, QString> WorkbenchData::retentionByType() const
{
    QMap<QString, QString> retention;
    for (const QString &type : types) {
        const QStringList fields = type.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        if (fields.size() > 2)
            retention.insert(fields.at(0), fields.at(2));
    }
    return retention;
}

QString workbenchKey(const QString &login, const QString &host, int port, qint64 profileId)
{
    // No separator before the profile's id.
    return QStringLiteral("kelva_%1_%2_%3%4")
        .arg(login, host, QString::number(port), QString::number(profileId));
}

bool parseWorkbenchData(const QByteArray &block, WorkbenchData &data)
{
    QBuffer buffer;
    buffer.setData(block);
    buffer.open(QIODevice::ReadOnly);
    QDataStream stream(&buffer);

    QStringList dropped;
    readBounded(stream, dropped);
    readBounded(stream, data.searchColumns);
    readBounded(stream, dropped);
    stream >> data.comboColumns >> data.lineColumns >> data.checkColumns >> data.dateColumns;

    QList<QStringList> records;
    readBounded(stream, records, [](QDataStream &from, QStringList &list) { readBounded(from, list); });
    QList<QList<QByteArray>> pictures;
    readBounded(stream, pictures,
                [](QDataStream &from, QList<QByteArray> &list) { readBounded(from, list); });
    if (stream.status() != QDataStream::Ok || records.size() != recordLists || pictures.size() != recordLists)
        return false;
    for (const QMap<int, QString> *columns :
         {&data.comboColumns, &data.lineColumns, &data.checkColumns, &data.dateColumns})
        if (!areAttributes(*columns))
            return false;
    data.mainFolders = records.at(0);
    data.status = records.at(1);
    data.types = records.at(2);
    data.folders = records.at(3);
    data.mainFolderPictures = pictures.at(0);
    data.statusPictures = pictures.at(1);
    data.typePictures = pictures.at(2);
    data.folderPictures = pictures.at(3);
    return true;
}

bool readWorkbenchData(const QString &key, WorkbenchData &data)
{
    QSharedMemory segment(key);
    if (!segment.attach() || !segment.lock())
        return false;
    // Copy first, parse after: a bad block must not keep the lock.
    const QByteArray block(static_cast<const char *>(segment.constData()), segment.size());
    segment.unlock();
    segment.detach();
    return parseWorkbenchData(block, data);
}
