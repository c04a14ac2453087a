#include "support/workbenchfixture.h"

#include "contract/recordformat.h"

#include <QDataStream>

namespace {

QStringList records(std::initializer_list<QStringList> rows)
{
    QStringList list;
    for (const QStringList &row : rows)
        list << row.join(recordformat::fieldSeparator);
    return list;
}

QList<QByteArray> noPictures(int count)
{
    return QVector<QByteArray>(count).toList();
}

} // namespace

WorkbenchData WorkbenchFixture::vocabulary()
{
    WorkbenchData data;
    data.searchColumns = records({{"Id", "docid"},
                                  {"Main folder", "mandant"},
                                  {"Description", "bemerkung"},
                                  {"Status", "status"},
                                  {"Version", "version"},
                                  {"Folder", "folder"},
                                  {"Type", "docart"},
                                  {"Changed by", "changeid"},
                                  {"Date", "cdate"},
                                  {"Changed", "ctimestamp"},
                                  {"Resubmission", "defdate"},
                                  {"Amount", "attr1"},
                                  {"Paid", "attr2"},
                                  {"Rights", "rights"}});
    data.lineColumns.insert(11, "type:Numeric");
    data.checkColumns.insert(12, QString());
    data.mainFolders = records({{"1.1", "Customers"}, {"1.2", "Suppliers"}});
    data.status = records({{"1", "open"}, {"2", "resubmission"}, {"3", "done"}});
    data.types = records({{"1", "Invoice", "10;0;0"}, {"2", "Letter"}});
    data.folders = records({{"1", "Company", "0", "C", "-1", "0", "", "", "all of it"},
                            {"1.1", "Customers", "M", "CU", "1", "0", "", "", ""},
                            {"1.1.1", "Müller & Söhne", "0", "", "1.1", "0", "", "", ""},
                            {"1.2", "Suppliers", "M", "SU", "1", "0", "", "E", ""},
                            {"1.3", "Closed", "I", "", "1", "0", "", "", ""}});
    data.mainFolderPictures = noPictures(data.mainFolders.size());
    data.statusPictures = noPictures(data.status.size());
    data.typePictures = noPictures(data.types.size());
    data.folderPictures = noPictures(data.folders.size());
    return data;
}

QByteArray WorkbenchFixture::block(const WorkbenchData &data)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << QStringList{"titles"} << data.searchColumns << QStringList{"keys"} << data.comboColumns
           << data.lineColumns << data.checkColumns << data.dateColumns
           << QList<QStringList>{data.mainFolders, data.status, data.types, data.folders}
           << QList<QList<QByteArray>>{data.mainFolderPictures, data.statusPictures, data.typePictures,
                                       data.folderPictures};
    return bytes;
}

WorkbenchFixture::WorkbenchFixture(const QString &key, const QByteArray &block)
    : m_segment(key),
      m_ready(m_segment.publish(block) == SharedBlock::Outcome::Done)
{
}
