#pragma once

#include "indexer/extractor.h"
#include "store/database.h"
#include "store/result.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QString>
#include <QVector>

#include <functional>
#include <memory>

namespace kelva {

struct IndexerOptions
{
    Extractor extractor{};
    std::function<QDateTime()> now = [] { return QDateTime::currentDateTimeUtc(); };
    /// Asked between and during the steps of a document; true breaks it off and leaves it to do.
    std::function<bool()> cancelled = [] { return false; };
};

/// Takes the texts of an archive's files, for all its users. Any number of indexers, in any process, share
/// the work: each claims a document in a short transaction, reads its file without one, and writes the text
/// if the claim still stands. Claims of a process that died run out after ten minutes; a document that was
/// begun three times and never finished counts as failed. Where many documents come one after the other,
/// their texts are written together.
class Indexer
{
public:
    enum class Step { Nothing, Done, Failed };

    ~Indexer();
    static Result<std::unique_ptr<Indexer>> open(const QString &path, IndexerOptions options = {});

    /// The newest document to do, from claim to text. Nothing when there is none or it was broken off; every
    /// text is written then. An error is one of the archive or this machine, and the document stays to do.
    Result<Step> processNext();

private:
    struct Claim
    {
        qint64 document = 0; ///< 0 when there is nothing to do
        QString claimant;
        QString fileName;
        qint64 blob = 0;
        qint64 size = 0;
    };

    Indexer(std::unique_ptr<Database> database, IndexerOptions options);
    Result<Claim> claimNext();
    Extractor::Outcome takeText(const Claim &claim, QString *text, Result<void> *problem);
    Result<void> finish(const Claim &claim, int state, const QString &text);
    Result<void> writeTexts();
    Result<void> giveBack(const Claim &claim);

    std::unique_ptr<Database> m_database;
    IndexerOptions m_options;
    struct TakenText
    {
        qint64 document = 0;
        QString claimant;
        int state = 0;
        QString text;
    };
    QVector<TakenText> m_taken; ///< not written yet
    QElapsedTimer m_takenSince;
    int m_inARow = 0;      ///< documents since there was nothing to do
    bool m_tidied = false; ///< what killed indexers left
};

} // namespace kelva
