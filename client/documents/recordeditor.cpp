#include "documents/recordeditor.h"

#include "contract/classifyinterface.h"
#include "documents/classificationedit.h"

RecordEditor::Result RecordEditor::edit(const QString &docId, const IsCurrent &isCurrent,
                                        const Change &change) const
{
    return edit(docId, m_service->getDocument(docId, QString()), isCurrent, change);
}

RecordEditor::Result RecordEditor::edit(const QString &docId, QStringList record, const IsCurrent &isCurrent,
                                        const Change &change) const
{
    if (record.isEmpty() || record.size() != m_length)
        return Result::ReadFailed;
    record.removeFirst();
    if (!isCurrent(record.value(classificationedit::version)))
        return Result::Conflict;
    if (!change(record))
        return Result::Dropped;
    return m_service->saveDocument(docId, record) ? Result::Saved : Result::SaveFailed;
}
