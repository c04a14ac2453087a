#include "service/filetexts.h"

#include "service/records.h"
#include "service/rights.h"
#include "service/session.h"

namespace kelva {
namespace {

const QString toBeDone = QStringLiteral("state = 0, claimant = '', attempts = 0");

} // namespace

Result<QStringList> FileTexts::counts()
{
    Database &database = m_session.database();
    QStringList records;
    for (Query row = database.query(
             QStringLiteral("SELECT state, count(*) FROM file_text GROUP BY state ORDER BY state"));
         row.next();)
        records << joinFields({row.text(0), row.text(1)});
    return database.result(records);
}

Result<void> FileTexts::recreate()
{
    Transaction writing(m_session.database(), Transaction::Kind::Write);
    if (const Result<void> allowed = m_session.access().require(rights::admin); !allowed)
        return allowed;
    m_session.database().run(QStringLiteral("UPDATE file_text SET ") + toBeDone);
    return writing.commit();
}

void FileTexts::enter(Database &database, qint64 archiveId)
{
    database.run(QStringLiteral("INSERT INTO file_text(document) VALUES(?)"
                                " ON CONFLICT(document) DO UPDATE SET ") +
                     toBeDone,
                 {archiveId});
}

} // namespace kelva
