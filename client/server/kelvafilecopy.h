#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include <memory>

namespace Ui {
class KelvaFileCopy;
}

/// Progress of a transfer. The transfer blocks; this dialog lets events run whenever it is told of progress,
/// and being application-modal it is all that can be used meanwhile. Has no parent, as it may be a value
/// member of what outlives no window.
class KelvaFileCopy final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaFileCopy(const QString &title = QString());
    ~KelvaFileCopy() override;

    void setText(const QString &text);
    /// How many files the bar of the whole counts; it is hidden below two.
    void setTotal(int files);
    void setFinishedFilesCount(int files);
    /// Shows the dialog in the middle of the window, which may be null.
    void showOver(const QWidget *window);
    /// Closing the dialog, in whatever way, asks for the end of the transfer.
    void reject() override;

signals:
    void cancelClicked();

public slots:
    /// Sizes in bytes, as numbers or as decimal texts. A new maximum begins a new file.
    void setProgressMax(QString bytes);
    void setProgressValue(QString bytes);
    void setProgressMax(qlonglong bytes);
    void setProgressValue(qlonglong bytes);
    /// Everything has been sent: there is nothing to cancel any more.
    void copyFinished();
    void emitCancelClicked();

private:
    const std::unique_ptr<Ui::KelvaFileCopy> m_ui;
    int m_finishedFiles = 0;
    QElapsedTimer m_sinceStart;
    qint64 m_current = 0;
    qint64 m_total = 1;
};
