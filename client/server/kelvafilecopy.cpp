#include "server/kelvafilecopy.h"

#include "server/transferprogress.h"
#include "ui_kelvafilecopy.h"

#include <QCoreApplication>
#include <QDebug>

namespace {

/// Before that, speed and remaining time are guesses.
constexpr qint64 firstReportMs = 10;
constexpr int percents = 100;

} // namespace

KelvaFileCopy::KelvaFileCopy(const QString &title) : m_ui(std::make_unique<Ui::KelvaFileCopy>())
{
    m_ui->setupUi(this);
    setWindowTitle(title);
    setWindowModality(Qt::ApplicationModal);
    setAttribute(Qt::WA_QuitOnClose, false); // the program does not go on for the sake of it
    setTotal(0);
    connect(m_ui->m_bCancel, SIGNAL(clicked()), this, SLOT(emitCancelClicked()));
    m_sinceStart.start();
}

KelvaFileCopy::~KelvaFileCopy() = default;

void KelvaFileCopy::setText(const QString &text)
{
    m_ui->m_Text->setText(
        m_ui->m_Text->fontMetrics().elidedText(text, Qt::ElideMiddle, m_ui->m_Text->width()));
}

void KelvaFileCopy::setTotal(int files)
{
    // Each file counts for a hundred steps, so that the bar moves within a file, too.
    m_ui->m_pTotal->setMaximum(qMax(files, 1) * percents);
    m_ui->m_totalLabel->setVisible(files > 1);
    m_ui->m_pTotal->setVisible(files > 1);
}

void KelvaFileCopy::setFinishedFilesCount(int files)
{
    m_finishedFiles = files;
    m_ui->m_pTotal->setValue(files * percents);
}

void KelvaFileCopy::showOver(const QWidget *window)
{
    if (!isVisible() && window) {
        ensurePolished();
        adjustSize();
        move(window->frameGeometry().center() - rect().center());
    }
    show();
}

void KelvaFileCopy::setProgressMax(QString bytes)
{
    setProgressMax(bytes.toLongLong());
}

void KelvaFileCopy::setProgressMax(qlonglong bytes)
{
    m_total = bytes;
    m_current = 0;
    m_ui->m_Progress->setMaximum(percents);
    m_ui->m_Progress->setValue(0);
    m_ui->m_Speed->clear();
    m_sinceStart.restart();
}

void KelvaFileCopy::setProgressValue(QString bytes)
{
    qDebug() << "PROGRESS VALUE: " << bytes;
    setProgressValue(bytes.toLongLong());
}

void KelvaFileCopy::setProgressValue(qlonglong bytes)
{
    m_current = bytes;
    const qint64 elapsed = m_sinceStart.elapsed();
    if (m_total > 1 && m_current != 0 && elapsed > firstReportMs) {
        const TransferProgress progress = transferProgress(m_current, m_total, elapsed);
        m_ui->m_Progress->setValue(progress.percent);
        m_ui->m_bCancel->setEnabled(true);
        m_ui->m_Speed->setText(progress.text);
        m_ui->m_pTotal->setValue(m_finishedFiles * percents + progress.percent);
    }
    QCoreApplication::processEvents();
}

void KelvaFileCopy::copyFinished()
{
    m_ui->m_bCancel->setEnabled(false);
    m_ui->m_Progress->setMaximum(0);
    m_ui->m_Progress->setValue(0);
    setText(tr("Document sent. Waiting for confirmation..."));
    // No events now: a cancel could not take back what has arrived.
    repaint();
}

void KelvaFileCopy::emitCancelClicked()
{
    emit cancelClicked();
}

void KelvaFileCopy::reject()
{
    emit cancelClicked();
    QDialog::reject();
}
