#pragma once

#include "admin/samplevocabulary.h"
#include "service/bulkload.h"

#include <QDate>
#include <QRandomGenerator>

namespace kelva {

/// Makes up the documents of the sample archive, one after the other and always the same ones.
class SampleDocuments
{
public:
    struct Event
    {
        int action;
        QString time;
        QString user;
    };

    SampleDocuments(const SampleVocabulary &vocabulary, quint32 seed, const QDate &today);

    BulkDocument next(bool withFile);
    /// What happened to the last document.
    const QList<Event> &events() const { return m_events; }

private:
    int pick(int count) { return int(m_random.bounded(quint32(count))); }
    void describe(BulkDocument &document, const SampleVocabulary::Folder &folder);
    void setStatus(BulkDocument &document);
    void setAttributes(BulkDocument &document);
    void addFile(BulkDocument &document, const QString &folderName);
    void addEvents(const BulkDocument &document);

    const SampleVocabulary m_vocabulary;
    const QDate m_today;
    QRandomGenerator m_random;
    int m_number = 0;
    QList<Event> m_events;
};

} // namespace kelva
