#pragma once

#include <QFileDialog>

/// Lets the user choose where documents are exported to: a directory, or a ZIP file.
class QFileDialogZip final : public QFileDialog
{
    Q_OBJECT

public:
    QFileDialogZip(QWidget *parent, const QString &caption, const QString &directory);

    bool isZipMode() const { return fileMode() != QFileDialog::Directory; }

public slots:
    void changeZipState(int state);
};
