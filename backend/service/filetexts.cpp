#include "service/filetexts.h"

#include "service/operation.h"
#include "service/records.h"

namespace kelva {
namespace {

const QString toBeDone = QStringLiteral("state = 0, claimant = '', attempts = 0");

} // namespace

Result<QStringList> FileTexts::counts()
{
    return read(m_session, "FileTexts::counts", [](Database &database) -> Result<QStringList> {
        QStringList records;
        for (Query row = database.query(
                 QStringLiteral("SELECT state, count(*) FROM file_text GROUP BY state ORDER BY state"));
             row.next();)
            records << joinFields({row.text(0), row.text(1)});
        return records;
    });
}

Result<void> FileTexts::recreate()
{
    return change(m_session, "FileTexts::recreate", [&](Database &database) -> Result<void> {
        database.run(QStringLiteral("UPDATE file_text SET ") + toBeDone);
        return {};
    });
}

void FileTexts::enter(Database &database, qint64 archiveId)
{
    database.run(QStringLiteral("INSERT INTO file_text(document) VALUES(?)"
                                " ON CONFLICT(document) DO UPDATE SET ") +
                     toBeDone,
                 {archiveId});
}

} // namespace kelva
