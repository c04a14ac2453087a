#include "app/kelvaclientmain.h"

#include "documents/documentcolumns.h"
#include "documents/refreshgate.h"
#include "search/kelvastatusbarext.h"
#include "server/kelvaarchiveworker.h"
#include "server/qfiledialogzip.h"
#include "widgets/plainbox.h"

#include <QCheckBox>
#include <QSettings>
#include <QStandardPaths>

void KelvaClientMain::exportDocument()
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    // The default is the name of the place, not its path.
    const QString start =
        settings.value("lastArchiveDir", QStandardPaths::displayName(QStandardPaths::DocumentsLocation))
            .toString();
    QFileDialogZip dialog(this, tr("Select folder"), start);
    if (dialog.exec() != QDialog::Accepted)
        return;
    settings.setValue("lastArchiveDir", dialog.directory().absolutePath());
    settings.sync();
    if (dialog.isZipMode())
        notAvailableYet();
    else
        doExportDocument(dialog.selectedFiles().value(0, dialog.directory().absolutePath()), false, -1);
}

QStringList KelvaClientMain::doExportDocument(const QString &path, bool open, int index)
{
    statusBar()->clearMessage();
    QList<qint64> ids;
    const QStringList selected = getCurrentRealDocIds(false);
    for (const QString &id : selected)
        ids << id.toLongLong();
    QStringList files;
    const RefreshGate::Hold hold(*m_gate); // a refresh would ask the connection that is transferring
    if (archiveWorker->exportDocuments(ids, getCurrentBemerkungen(false), path, open, files, index)) {
        statusBar()->showMessage(tr("File(s) exported."));
        return files;
    }
    if (archiveWorker->isCanceled()) {
        statusBar()->showMessage(tr("Export canceled."));
    } else {
        statusBar()->showMessage(tr("Export error: %1").arg(archiveWorker->getLastError()));
        plainbox::critical(this, tr("Export error"), archiveWorker->getLastError());
    }
    return {};
}

void KelvaClientMain::showDocument()
{
    doExportDocument(QString(), true, -1);
}

void KelvaClientMain::documentDoubleClicked(const QModelIndex &index)
{
    if (!index.isValid() || index.column() != documentcolumn::id)
        return;
    doExportDocument(QString(), true, -1);
    if (statusBarExt->getShowUnReadCheckBox()->isChecked())
        doUpdateDocuments(); // opening has marked the document as read
}
