#include "app/kelvaclientmain.h"

#include "contract/classifyinterface.h"
#include "documents/classificationedit.h"
#include "documents/documentcolumns.h"
#include "documents/kelvacalendar.h"
#include "documents/qinfoviewmodel.h"
#include "documents/refreshgate.h"
#include "widgets/itemroles.h"
#include "widgets/plainbox.h"
#include "widgets/waitcursor.h"

#include <QStandardItem>

namespace edit = classificationedit;

void KelvaClientMain::infoViewItemChanged()
{
    if (QStandardItem *item = m_infoView->getModel()->itemFromIndex(m_infoView->currentIndex()))
        infoViewItemChanged(item);
}

void KelvaClientMain::infoViewItemChanged(QStandardItem *item)
{
    CellEdit entered;
    entered.column = item->column();
    entered.text = item->text();
    entered.rawValue = item->data(itemrole::rawValue).toString();
    entered.docId = m_infoView->itemFromSource(item->row(), documentcolumn::id)
                        ->data(itemrole::classificationId)
                        .toString();
    entered.fromTable = sender() == m_infoView->getModel();
    m_gate->enter(entered);
}

void KelvaClientMain::saveEdit(const CellEdit &entered)
{
    const WaitCursor cursor;
    const auto &[column, docId, text, raw, fromTable] = entered;
    Q_UNUSED(fromTable)
    switch (column) {
    case documentcolumn::folder:
        if (edit::isStatusNode(raw))
            updateStatus(docId, edit::statusOfNode(raw), true);
        else
            updateDocFolder(docId, raw, true);
        break;
    case documentcolumn::mainFolder:
        updateMandant(docId, raw, true);
        break;
    case documentcolumn::description:
        updateBemerkung(docId, text);
        break;
    case documentcolumn::status:
        updateStatus(docId, raw, true);
        break;
    case documentcolumn::type:
        updateDocArt(docId, raw);
        break;
    case documentcolumn::date:
        updateDatum(docId, text);
        break;
    default:
        if (column < documentcolumn::changeTime)
            updateDocuments({}); // throws the edit away
        else
            updateFromColumn(text, column, docId);
    }
}

bool KelvaClientMain::checkIfChanged(const QString &version, const QString &docId)
{
    if (m_infoView->getVersion(docId) == version)
        return false;
    plainbox::critical(this, tr("Warning"),
                       tr("Classify not possible, the entry has been processed in the meantime!"));
    return true;
}

RecordEditor KelvaClientMain::recordEditor() const
{
    return RecordEditor(classifyClient, m_infoView->getModel()->columnCount() + 1);
}

RecordEditor::Result KelvaClientMain::editDocument(const QString &docId, const RecordEditor::Change &change)
{
    return recordEditor().edit(
        docId, [&](const QString &version) { return !checkIfChanged(version, docId); }, change);
}

bool KelvaClientMain::editDocument(const QString &docId, const RecordEditor::Change &change,
                                   const QString &readFailure, const QString &saveFailure, bool update)
{
    const RecordEditor::Result result = editDocument(docId, change);
    if (result == RecordEditor::Result::Dropped)
        return false; // neither saved nor refreshed
    if (result == RecordEditor::Result::ReadFailed || result == RecordEditor::Result::SaveFailed)
        plainbox::critical(this, tr("Error"),
                           result == RecordEditor::Result::ReadFailed ? readFailure : saveFailure);
    if (update)
        updateDocuments({});
    return result == RecordEditor::Result::Saved;
}

void KelvaClientMain::updateBemerkung(const QString &docId, const QString &value)
{
    editDocument(
        docId,
        [&](QStringList &fields) {
            edit::replaceField(fields, edit::description, value);
            return true;
        },
        tr("The document data could not be read!"), tr("The description could not be saved!"), true);
}

void KelvaClientMain::updateDocArt(const QString &docId, const QString &value)
{
    const QString failure = tr("The document type could not be changed!");
    editDocument(
        docId,
        [&](QStringList &fields) {
            edit::replaceField(fields, edit::type, value);
            return true;
        },
        failure, failure, true);
}

void KelvaClientMain::updateDatum(const QString &docId, const QString &value)
{
    const QString failure = tr("The date could not be changed!");
    editDocument(
        docId,
        [&](QStringList &fields) {
            edit::replaceField(fields, edit::date, value);
            return true;
        },
        failure, failure, true);
}

void KelvaClientMain::updateDocFolder(const QString &id, const QString &folder, bool update)
{
    // The two texts differ in their last character.
    editDocument(
        id,
        [&](QStringList &fields) {
            edit::moveToFolder(fields, folder);
            return true;
        },
        tr("The document cannot be moved."), tr("The document cannot be moved!"), update);
}

void KelvaClientMain::updateMandant(const QString &docId, const QString &folder, bool update)
{
    const RecordEditor::Result result = editDocument(docId, [&](QStringList &fields) {
        edit::replaceField(fields, edit::mainFolder, folder);
        edit::replaceField(fields, edit::folder, folder);
        return true;
    });
    // After the warning of a conflict as well.
    if (result != RecordEditor::Result::Saved)
        plainbox::critical(this, tr("Error"), tr("The main folder could not be changed!"));
    if (update)
        updateDocuments({});
}

void KelvaClientMain::updateStatus(const QString &docId, const QString &status, bool update)
{
    const auto change = [&](QStringList &fields) {
        QString date;
        // Fixed German text.
        if (status == QLatin1String(documentstatus::resubmission) &&
            !askResubmissionDate(QString("%1 wiedervorlegen am...").arg(docId), date))
            return false;
        edit::setStatus(fields, status, date);
        return true;
    };
    const RecordEditor::Result result = editDocument(docId, change);
    if (result == RecordEditor::Result::Dropped)
        return;
    if (result == RecordEditor::Result::ReadFailed)
        plainbox::critical(this, tr("Error"),
                           tr("The status could not be changed! (%1)").arg(classifyClient->lastMessage()));
    else if (result == RecordEditor::Result::SaveFailed)
        plainbox::critical(this, tr("Error"), tr("The status could not be changed!"));
    if (update)
        updateDocuments({});
}

bool KelvaClientMain::askResubmissionDate(const QString &title, QString &date)
{
    const SuspendedWaitCursor pointer;
    KelvaCalendar calendar(this, true, false);
    calendar.setExtended(false);
    calendar.setWindowTitle(title);
    if (calendar.exec() != QDialog::Accepted || !calendar.selectedDate().isValid())
        return false;
    date = calendar.selectedDate().toString("yyyy-MM-dd");
    return true;
}

void KelvaClientMain::updateFromColumn(const QString &value, int column, const QString &docId)
{
    const RecordEditor::Result result = editDocument(docId, [&](QStringList &fields) {
        edit::setColumn(fields, column, value);
        return true;
    });
    if (result == RecordEditor::Result::ReadFailed || result == RecordEditor::Result::SaveFailed)
        plainbox::critical(this, tr("Error"),
                           tr("The document could not be classified: ") + classifyClient->lastError());
    updateDocuments({});
}

QMap<QString, QString> KelvaClientMain::getCurrentBemerkungen(bool onlyWritable) const
{
    return m_session.offline ? QMap<QString, QString>() : m_infoView->getCurrentBemerkungen(onlyWritable);
}
