#include "fakes/fakearchive.h"

#include "contract/recordformat.h"

FakeArchive &FakeArchive::instance()
{
    static FakeArchive archive;
    return archive;
}

void FakeArchive::reset()
{
    const QChar f = recordformat::fieldSeparator;
    login = QStringLiteral("anna");
    password = QStringLiteral("secret");
    rights = QStringList{"kelvaADMIN", "kelvaCLASSIFY", "kelvaHISTORY", "kelvaCREATEFOLDER", "r_anna"};
    connectionMode = QStringLiteral("Fake");
    subArchives = QStringList{QString("Main archive") + f + "1", QString("Old archive") + f + "2"};
    headerTitles =
        QStringList{"Id",         "Main folder", "Description", "Status",       "Version", "Folder", "Type",
                    "Changed by", "Date",        "Changed",     "Resubmission", "Amount",  "Paid"};
    documents.clear();
    statusRows =
        QStringList{QString("1") + f + "open", QString("2") + f + "resubmission", QString("3") + f + "done"};
    settings.clear();
    searches.clear();
    minMaxDates = QStringList{"2020-01-01", "2024-12-31"};
    openedDocuments.clear();
    contents.clear();
    pieceSize = 64 * 1024;
    duringTransfer = {};
    losesDownloads = false;
    failures.clear();
    interludes.clear();
    calls.clear();
    queries.clear();
    lastError.clear();
    nextToken = 1;
}

bool FakeArchive::begin(const QString &operation, const QString &arguments)
{
    calls << (arguments.isEmpty() ? operation : operation + ' ' + arguments);
    if (interludes.contains(operation))
        interludes.take(operation)();
    if (failures.contains(operation) && !failures[operation].isEmpty()) {
        lastError = failures[operation].dequeue();
        return false;
    }
    lastError.clear();
    return true;
}

int FakeArchive::addContent(const QString &fileName, const QByteArray &bytes)
{
    const int id = contents.isEmpty() ? 1001 : qMax(contents.lastKey(), 1000) + 1;
    contents.insert(id, {fileName, bytes});
    return id;
}

QString FakeArchive::addDocument(const QString &description, const QString &folder, const QString &status)
{
    const int id = documents.isEmpty() ? 1 : documents.lastKey() + 1;
    FakeDocument document;
    document.fields = QStringList{QString("%1#%2").arg(100 + id).arg(id),
                                  "1.1",
                                  description,
                                  status,
                                  QString("1_%1").arg(nextToken++),
                                  folder,
                                  "1",
                                  "anna",
                                  "2024-03-05",
                                  "2024-03-06T10:20:30",
                                  status == "2" ? "2024-04-01" : "",
                                  "",
                                  "0"};
    documents.insert(id, document);
    contents.insert(100 + id, {"scan.pdf", description.toUtf8()});
    return QString::number(id);
}
