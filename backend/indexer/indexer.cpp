#include "indexer/indexer.h"

#include "service/blobs.h"
#include "service/filetexts.h"
#include "service/temporaryfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <utility>

namespace kelva {
namespace {

constexpr qint64 claimSeconds = 600;
constexpr int maximumAttempts = 3;
/// A file is copied out of the archive for its reader; larger ones hold pictures or sound rather than words.
constexpr qint64 maximumFileSize = 256 * 1024 * 1024;

const QString copyName = QStringLiteral("kelva-indexed-copy");

/// Copies of indexers that were killed, of the directory that all copies lie in.
void removeAbandonedCopies(const QDir &directory)
{
    const QDateTime abandoned = QDateTime::currentDateTime().addSecs(-claimSeconds);
    for (const QFileInfo &copy : directory.entryInfoList({copyName + QStringLiteral("-*")}, QDir::Files))
        if (copy.lastModified() < abandoned)
            QFile::remove(copy.filePath());
}

/// Removes the copy of a file whatever becomes of it.
struct TemporaryCopy
{
    explicit TemporaryCopy(QString file) : path(std::move(file)) {}
    ~TemporaryCopy() { QFile::remove(path); }
    TemporaryCopy(const TemporaryCopy &) = delete;
    TemporaryCopy &operator=(const TemporaryCopy &) = delete;

    QString path;
};

} // namespace

Indexer::Indexer(std::unique_ptr<Database> database, IndexerOptions options)
    : m_database(std::move(database)),
      m_options(std::move(options))
{
}

Indexer::~Indexer()
{
    // What is lost here is done again when its claim has run out.
    (void)writeTexts();
}

Result<std::unique_ptr<Indexer>> Indexer::open(const QString &path, IndexerOptions options)
{
    if (!options.extractor.isInstalled())
        return Error{ErrorCode::NotAvailable,
                     QStringLiteral("The program kelvatextract, which reads files, is not there.")};
    auto database = Database::open(path, Database::Mode::ReadWrite);
    if (!database)
        return database.error();
    return std::unique_ptr<Indexer>(new Indexer(std::move(database.value()), std::move(options)));
}

Result<Indexer::Claim> Indexer::claimNext()
{
    const qint64 now = m_options.now().toSecsSinceEpoch();
    // A claim of the future is one from before the clock was set back.
    const QString wanted = QStringLiteral("SELECT document FROM file_text WHERE state = 0 AND (claimant = ''"
                                          " OR claimed NOT BETWEEN ? AND ?) ORDER BY document DESC LIMIT 1");
    const QVariantList when{now - claimSeconds, now + claimSeconds};
    // Mostly there is nothing to do, and that is found out without locking the archive.
    if (!m_database->value(wanted, when).isValid())
        return m_database->result(Claim());
    Transaction writing(*m_database, Transaction::Kind::WriteBehind);
    Claim claim;
    claim.document = m_database->value(wanted, when).toLongLong();
    if (claim.document == 0)
        return m_database->result(Claim());
    claim.claimant = QUuid::createUuid().toString(QUuid::WithoutBraces);
    Query row = m_database->query(
        QStringLiteral("SELECT d.file_name, b.id, b.size FROM document d"
                       " LEFT JOIN file_version v ON v.document = d.id AND v.version = d.version"
                       " LEFT JOIN blob b ON b.id = v.blob WHERE d.id = ?"),
        {claim.document});
    if (row.next()) {
        claim.fileName = row.text(0);
        claim.blob = row.number(1);
        claim.size = row.number(2);
    }
    m_database->run(QStringLiteral("UPDATE file_text SET claimant = ?, claimed = ?, attempts = attempts + 1"
                                   " WHERE document = ?"),
                    {claim.claimant, now, claim.document});
    if (const Result<void> done = writing.commit(); !done)
        return done.error();
    return claim;
}

Result<Indexer::Step> Indexer::processNext()
{
    const Result<Claim> claimed = claimNext();
    if (!claimed)
        return claimed.error();
    const Claim &claim = claimed.value();
    if (claim.document == 0) {
        m_options.extractor.end();
        m_inARow = 0;
        if (const Result<void> written = writeTexts(); !written)
            return written.error();
        return Step::Nothing;
    }
    QString text;
    Result<void> problem;
    const Extractor::Outcome outcome = takeText(claim, &text, &problem);
    if (outcome == Extractor::Outcome::Cancelled || outcome == Extractor::Outcome::NoProgram) {
        const Result<void> given = giveBack(claim);
        const Result<void> written = writeTexts();
        for (const Result<void> &part : {problem, given, written})
            if (!part)
                return part.error();
        return Step::Nothing;
    }
    const bool isDone = outcome == Extractor::Outcome::Done;
    const Result<void> written = finish(claim, isDone ? FileTexts::Processed : FileTexts::Failed, text);
    if (!written)
        return written.error();
    return isDone ? Step::Done : Step::Failed;
}

Extractor::Outcome Indexer::takeText(const Claim &claim, QString *text, Result<void> *problem)
{
    using Outcome = Extractor::Outcome;
    const int attempts =
        m_database
            ->value(QStringLiteral("SELECT attempts FROM file_text WHERE document = ?"), {claim.document})
            .toInt();
    if (attempts > maximumAttempts)
        return Outcome::Failed;
    const std::optional<FileKind> kind = kindOfFile(claim.fileName);
    // What holds no words is done with.
    if (!kind || claim.blob == 0 || claim.size == 0)
        return Outcome::Done;
    if (claim.size > maximumFileSize)
        return Outcome::Failed;
    const Result<QString> path =
        makeTemporaryFile(copyName + QLatin1Char('.') + QFileInfo(claim.fileName).suffix());
    if (!path) {
        *problem = path.error();
        return Outcome::NoProgram;
    }
    const TemporaryCopy copy(path.value());
    if (!std::exchange(m_tidied, true))
        removeAbandonedCopies(QFileInfo(copy.path).absoluteDir());
    const Result<void> copied =
        copyBlob(*m_database, claim.blob, copy.path, [this](qint64) { return !m_options.cancelled(); });
    if (!copied) {
        if (copied.error().code == ErrorCode::NotAnArchive)
            return Outcome::Failed;
        if (m_options.cancelled())
            return Outcome::Cancelled;
        *problem = copied.error();
        return Outcome::NoProgram;
    }
    const Outcome outcome = m_options.extractor.extract(copy.path, *kind, m_options.cancelled, text);
    if (outcome == Outcome::NoProgram)
        *problem =
            Error{ErrorCode::NotAvailable, QStringLiteral("The program kelvatextract does not start.")};
    return outcome;
}

Result<void> Indexer::finish(const Claim &claim, int state, const QString &text)
{
    // Each writing takes the full-text index as long as the texts of many files do.
    constexpr int writtenAlone = 8;
    constexpr int mostTexts = 64;
    constexpr qint64 longestMs = 500;
    if (m_taken.isEmpty())
        m_takenSince.start();
    m_taken.append({claim.document, claim.claimant, state, text});
    if (++m_inARow > writtenAlone && m_taken.size() < mostTexts && m_takenSince.elapsed() < longestMs)
        return {};
    return writeTexts();
}

Result<void> Indexer::writeTexts()
{
    if (m_taken.isEmpty())
        return {};
    QStringList rows;
    QVariantList values;
    for (const TakenText &taken : qAsConst(m_taken)) {
        rows << QStringLiteral("(?, ?, ?, ?)");
        values << taken.document << taken.claimant << taken.state << taken.text;
    }
    Transaction writing(*m_database, Transaction::Kind::WriteBehind);
    // In one statement, as the full-text index writes out what it has gathered before each. A new version, or
    // whoever took over a claim that ran out, has the last word.
    m_database->run(
        QStringLiteral("WITH taken(document, claimant, state, text) AS (VALUES %1)"
                       " UPDATE file_text SET state = t.state, text = t.text, claimant = '',"
                       " attempts = 0 FROM taken AS t"
                       " WHERE file_text.document = t.document AND file_text.claimant = t.claimant")
            .arg(rows.join(QLatin1Char(','))),
        values);
    const Result<void> written = writing.commit();
    if (written)
        m_taken.clear();
    return written;
}

Result<void> Indexer::giveBack(const Claim &claim)
{
    Transaction writing(*m_database, Transaction::Kind::WriteBehind);
    m_database->run(QStringLiteral("UPDATE file_text SET claimant = '', attempts = attempts - 1"
                                   " WHERE document = ? AND claimant = ?"),
                    {claim.document, claim.claimant});
    return writing.commit();
}

} // namespace kelva
