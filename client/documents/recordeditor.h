#pragma once

#include <QString>
#include <QStringList>

#include <functional>

class ClassifyInterface;

/// The one cycle in which a classification is changed: read the whole record, see that nobody else has
/// changed it, change some fields, write it back. It says how that went and shows nothing.
class RecordEditor
{
public:
    enum class Result {
        Saved,
        ReadFailed, ///< no record, or one of another length: a value would land in another field
        Conflict,   ///< changed meanwhile; nothing was written
        Dropped,    ///< the change gave it up
        SaveFailed
    };
    /// Whether this version token is the one that the user sees.
    using IsCurrent = std::function<bool(const QString &version)>;
    /// Changes the fields of a record, which has lost its document id; false gives the edit up.
    using Change = std::function<bool(QStringList &fields)>;

    /// The service is lent. length: fields of a record with its document id and rights.
    RecordEditor(ClassifyInterface *service, int length) : m_service(service), m_length(length) {}

    Result edit(const QString &docId, const IsCurrent &isCurrent, const Change &change) const;
    /// The same for a record that was read before, as getDocument() or getDocuments() gives one.
    Result edit(const QString &docId, QStringList record, const IsCurrent &isCurrent,
                const Change &change) const;

private:
    ClassifyInterface *m_service;
    const int m_length;
};
