#include "server/kelvaarchiveworker.h"

#include "contract/kelvaarchiveclientinterface.h"
#include "server/exportfilename.h"
#include "server/openeddocuments.h"
#include "widgets/plainbox.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QSettings>
#include <QTemporaryFile>
#include <QUrl>

#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What a document is fetched for, as the service records it.
enum TransferMode { toView = 0, toExport = 1, toMail = 2 };

/// Can only be read by setting it, which must not happen while other threads make files.
const mode_t fileMask = [] {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}();

/// Never overwrites. On one file system the file only gets another name, which happens whole or not at all.
/// Otherwise it is copied, and the first one stays.
bool placeFile(const QString &from, const QString &to)
{
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, QFile::encodeName(from).constData(), AT_FDCWD, target.constData(),
                    RENAME_NOREPLACE) != 0 &&
        !QFile::copy(from, to))
        return false;
    // The temporary file was this user's alone; an exported one is like any other that he saves.
    ::chmod(target.constData(), 0666 & ~fileMask);
    return true;
}

/// A free name beside a file, in the same directory; empty when nothing can be written there.
QString nameBeside(const QString &file)
{
    QTemporaryFile beside(QFileInfo(file).absolutePath() + QStringLiteral("/.kelva-XXXXXX"));
    return beside.open() ? beside.fileName() : QString();
}

/// A later start clears it up.
void leaveBehind(const QString &path)
{
    QSettings settings("Norbant GmbH", QCoreApplication::applicationName());
    openeddocuments::note(settings, path, QDateTime::currentDateTime());
}

bool renameOver(const QString &from, const QString &to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

bool KelvaArchiveWorker::requireClient()
{
    if (!client)
        lastError = tr("There is no connection to the archive.");
    return client;
}

void KelvaArchiveWorker::setFileCount(int count)
{
    fileCount = count;
    finishedCount = 0;
    if (count == 0)
        uploadProgress.hide();
}

bool KelvaArchiveWorker::uploadFile(const QString &archive, const QString &file, bool newDocument)
{
    canceled = false;
    if (!requireClient())
        return false;
    uploadProgress.setTotal(fileCount);
    // Fixed text.
    uploadProgress.setWindowTitle("Archiviere Dokument...");
    uploadProgress.setFinishedFilesCount(finishedCount);
    uploadProgress.showOver(parentWidget);
    uploadProgress.setText(tr("Uploading %1...").arg(QFileInfo(file).fileName()));
    const bool done = client->uploadDocument(archive, file, newDocument);
    if (done) {
        lastArchivedDocId = client->getLastDocId();
        // The dialog stays for the next file of the batch.
        if (finishedCount < fileCount - 1)
            return true;
    } else {
        fail();
    }
    uploadProgress.hide();
    return done;
}

void KelvaArchiveWorker::startDownloads(KelvaFileCopy &progress, int count)
{
    canceled = false;
    connect(client, SIGNAL(totalFileSize(QString)), &progress, SLOT(setProgressMax(QString)));
    connect(client, SIGNAL(currentReadSize(QString)), &progress, SLOT(setProgressValue(QString)));
    connect(&progress, SIGNAL(cancelClicked()), this, SLOT(cancelStreaming()));
    progress.setTotal(count);
    progress.showOver(parentWidget);
    progress.setText(tr("Downloading ..."));
}

bool KelvaArchiveWorker::download(KelvaFileCopy &progress, int index, qint64 id, int mode, QString &path)
{
    progress.setFinishedFilesCount(index);
    QCoreApplication::processEvents();
    if (id > std::numeric_limits<int>::max()) {
        lastError = tr("The document number %1 is too large.").arg(id);
        return false;
    }
    if (!client->downloadDocument(static_cast<int>(id), path, mode))
        return fail();
    if (!path.isEmpty() && QFileInfo(path).isFile())
        return true;
    lastError = tr("The file of document %1 did not arrive.").arg(id);
    return false;
}

QString KelvaArchiveWorker::getNewFileName(const QString &path, const QMap<QString, QString> &names,
                                           qint64 id) const
{
    const auto name = names.constFind(QString::number(id));
    if (name == names.constEnd())
        return path;
    const QString directory = QDir::toNativeSeparators(QFileInfo(path).absolutePath() + QDir::separator());
    int counter = 0;
    QString candidate;
    do {
        candidate = directory + exportFileName(id, *name, path, counter++);
    } while (QFile::exists(candidate));
    return QFile::rename(path, candidate) ? candidate : path;
}

bool KelvaArchiveWorker::exportDocuments(const QList<qint64> &ids, const QMap<QString, QString> &names,
                                         const QString &target, bool openOnly, QStringList &files, int mode)
{
    if (!requireClient())
        return false;
    // Fixed text.
    KelvaFileCopy progress("Exportiere Dokument...");
    startDownloads(progress, ids.size());
    if (mode == -1)
        mode = openOnly ? toView : toExport;
    for (int i = 0; i < ids.size(); ++i) {
        QString path;
        if (!download(progress, i, ids.at(i), mode, path))
            return false;
        if (canceled) {
            QFile::remove(path);
            break;
        }
        path = getNewFileName(path, names, ids.at(i));
        qDebug() << "EXPORT TO" << path;
        if (openOnly) {
            files << path;
            leaveBehind(path);
            QDesktopServices::openUrl(QUrl::fromLocalFile(path));
        } else {
            saveExported(path, target, files);
        }
    }
    return true;
}

void KelvaArchiveWorker::saveExported(const QString &path, const QString &directory, QStringList &files)
{
    const QString separator = directory.endsWith(QDir::separator()) ? QString() : QString(QDir::separator());
    const QString target = directory + separator + QFileInfo(path).fileName();
    if (QFile::exists(target)) {
        // A refused file stays where it was fetched to.
        if (plainbox::question(nullptr, tr("File exists"),
                               tr("The file %1 alredy exists, overwrite?").arg(target),
                               QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes) {
            leaveBehind(path);
            return;
        }
        overwriteExported(path, target, files);
    } else if (placeFile(path, target)) {
        files << target;
    } else {
        plainbox::critical(nullptr, tr("Error"), tr("The file could not be saved!"));
    }
    QFile::remove(path);
}

void KelvaArchiveWorker::overwriteExported(const QString &path, const QString &target, QStringList &files)
{
    // The old file goes only when the new one is there whole.
    const QString beside = nameBeside(target);
    if (beside.isEmpty()) {
        plainbox::critical(nullptr, tr("Error"), tr("The file could not be overwritten."));
    } else if (!placeFile(path, beside)) {
        plainbox::critical(nullptr, tr("Error"), tr("The file could not be saved!"));
        QFile::remove(beside);
    } else if (!renameOver(beside, target)) {
        plainbox::critical(nullptr, tr("Error"), tr("The file could not be overwritten."));
        QFile::remove(beside);
    } else {
        files << target;
    }
}

bool KelvaArchiveWorker::mailDocuments(const QList<qint64> &ids, const QMap<QString, QString> &names,
                                       const QString &command)
{
    if (!requireClient())
        return false;
    // Fixed text.
    KelvaFileCopy progress("Dokument(e) verschicken");
    startDownloads(progress, ids.size());
    QString mail = "mailto:?subject=&body=";
    QStringList quoted;
    for (int i = 0; i < ids.size(); ++i) {
        QString path;
        if (!download(progress, i, ids.at(i), toMail, path))
            return false;
        path = getNewFileName(path, names, ids.at(i));
        temporaryFiles << path;
        if (canceled)
            return false;
        mail += "&attach=" + path;
        quoted << '"' + path + '"';
    }
    progress.hide();
    startMailProgram(command, mail, quoted.join(','));
    return true;
}

void KelvaArchiveWorker::startMailProgram(const QString &command, const QString &mail, const QString &quoted)
{
    if (command.isEmpty()) {
        QProcess::startDetached("xdg-email", QStringList(mail));
        return;
    }
    QStringList words = QProcess::splitCommand(command.arg(quoted));
    const QString program = words.isEmpty() ? QString() : words.takeFirst();
    if (!QProcess::startDetached(program, words))
        plainbox::critical(nullptr, tr("E-Mail Command"),
                           tr("The e-mail could not be created, unable to start Mail-Client!"));
}
