#pragma once

#include <QFileDialog>

class QCheckBox;

/// Lets the user choose the files to archive, and how. The two check boxes keep their state from one dialog
/// to the next, cancelled ones included.
class QFileDialogArchive final : public QFileDialog
{
    Q_OBJECT

public:
    QFileDialogArchive(QWidget *parent, const QString &caption, const QString &directory);

    bool isMoveChecked() const;
    bool isCreateVersion() const;

protected:
    void done(int result) override;

private:
    QCheckBox *m_move;
    QCheckBox *m_createVersion;
};
