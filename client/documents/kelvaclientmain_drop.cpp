#include "app/kelvaclientmain.h"

#include "contract/classifyinterface.h"
#include "contract/recordformat.h"
#include "documents/classificationedit.h"
#include "documents/documentcolumns.h"
#include "documents/kelvatrashbutton.h"
#include "documents/qinfoviewmodel.h"
#include "documents/refreshgate.h"
#include "search/kelvastatusbarext.h"
#include "widgets/plainbox.h"

#include <QHoverEvent>
#include <QProgressDialog>

namespace edit = classificationedit;

namespace {

const char resubmissionNode[] = "0.2";

} // namespace

void KelvaClientMain::updateDocAfterDrop(const QString &docId, const QString &value)
{
    const RefreshGate::Hold hold(*m_gate);
    if (edit::isStatusNode(value))
        updateStatus(docId, edit::statusOfNode(value), false);
    else
        updateDocFolder(docId, value, false);
    // The tree takes back the highlight of the drop when the pointer seems to move.
    const QPointF pointer = m_tWOrdner->viewport()->mapFromGlobal(QCursor::pos());
    QCoreApplication::postEvent(m_tWOrdner->viewport(),
                                new QHoverEvent(QEvent::HoverLeave, pointer, pointer));
}

void KelvaClientMain::updateDocsAfterDrop(const QStringList &docIds, const QString &folder)
{
    if (statusBarExt->getTrashButton()->isChecked())
        return;
    const RefreshGate::Hold hold(*m_gate); // the refresh at the end is made up for when it ends
    QString date;
    if (folder == resubmissionNode && !askResubmissionDate(tr("Resubmit documents at..."), date)) {
        updateDocuments({});
        return;
    }
    QProgressDialog progress(tr("Classifying documents..."), tr("Cancel"), 0, docIds.size(), this);
    progress.setWindowModality(Qt::WindowModal);
    QStringList rows = classifyClient->getDocuments(
        {"docs_id in (" + docIds.join(',') + ")", QString("OPT:LIMIT;%1").arg(docIds.size() + 1)});
    if (rows.isEmpty())
        plainbox::critical(this, tr("Error"), tr("The document data could not be read."));
    else
        rows.removeFirst(); // the header
    QStringList handled;
    for (const QString &row : qAsConst(rows)) {
        QCoreApplication::processEvents();
        if (progress.wasCanceled())
            break;
        if (!classifyDropped(row, folder, date, progress, handled))
            break;
        progress.setValue(progress.value() + 1);
        QCoreApplication::processEvents();
    }
    progress.hide();
    updateDocuments(handled);
}

/// One row of getDocuments(). False ends the whole, after a word to the user.
bool KelvaClientMain::classifyDropped(const QString &row, const QString &folder, const QString &date,
                                      QProgressDialog &progress, QStringList &handled)
{
    const auto giveUp = [&](const QString &text) {
        progress.hide();
        plainbox::critical(this, tr("Error"), text);
        return false;
    };
    const QStringList fields = row.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
    if (!row.isEmpty() && !fields.last().contains('W'))
        return true;
    const QString id = fields.first().section(recordformat::documentIdSeparator, 1, 1);
    if (date.isEmpty() && !row.isEmpty()) {
        handled << id;
        updateDocAfterDrop(id, folder);
        return true;
    }
    const RecordEditor::Result result = recordEditor().edit(
        id, fields, [&](const QString &version) { return !checkIfChanged(version, id); },
        [&](QStringList &record) {
            edit::setStatus(record, documentstatus::resubmission, date);
            return true;
        });
    if (result == RecordEditor::Result::ReadFailed)
        return giveUp(tr("The document data could not be read."));
    handled << id;
    if (result == RecordEditor::Result::Conflict)
        return giveUp(tr("Resubmission could not be set, the document was changed in the meantime!"));
    if (result == RecordEditor::Result::SaveFailed)
        return giveUp(tr("The document could not be classified: ") + classifyClient->lastError());
    return true;
}
