#include "folders/workbenchdata.h"

#include "contract/boundedread.h"
#include "contract/recordformat.h"
#include "contract/sharedblock.h"
#include "documents/documentcolumns.h"

#include <QBuffer>
#include <QThread>

namespace {

constexpr int recordLists = 4;
constexpr int largestColumn =
    10000; // far above any archive's attributes: a random block is not taken for one

bool areAttributes(const QMap<int, QString> &columns)
{
    return columns.isEmpty() ||
           (columns.firstKey() >= documentcolumn::firstAttribute && columns.lastKey() <= largestColumn);
}

bool isBlank(const QByteArray &block)
{
    constexpr int looked = 1024;
    const QByteArray head = block.left(looked);
    return head.count('\0') == head.size();
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

bool readWorkbenchData(const QString &key, WorkbenchData &data, QString *fault)
{
    // A block that has outgrown its segment gets a new one: for a moment there is none, or an empty one.
    using Outcome = SharedBlock::Outcome;
    constexpr int attempts = 20;
    constexpr unsigned long retryMs = 50;
    QByteArray block;
    Outcome outcome = SharedBlock::read(key, block);
    const auto mayCome = [&] {
        return outcome == Outcome::Missing || (outcome == Outcome::Done && isBlank(block));
    };
    for (int i = 1; i < attempts && mayCome(); ++i) {
        QThread::msleep(retryMs);
        outcome = SharedBlock::read(key, block);
    }
    if (fault && outcome != Outcome::Missing)
        *fault = SharedBlock::text(outcome, key);
    return outcome == Outcome::Done && parseWorkbenchData(block, data);
}
