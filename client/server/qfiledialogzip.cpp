#include "server/qfiledialogzip.h"

#include <QCheckBox>
#include <QGridLayout>

QFileDialogZip::QFileDialogZip(QWidget *parent, const QString &caption, const QString &directory)
    : QFileDialog(parent, caption, directory)
{
    setOption(QFileDialog::DontUseNativeDialog);
    auto *zip = new QCheckBox(tr("export as ZIP-Archive"), this);
    if (auto *grid = qobject_cast<QGridLayout *>(layout()))
        grid->addWidget(zip, grid->rowCount(), 1);
    connect(zip, SIGNAL(stateChanged(int)), this, SLOT(changeZipState(int)));
    changeZipState(zip->checkState());
}

void QFileDialogZip::changeZipState(int state)
{
    const bool zip = state == Qt::Checked;
    // In this order: choosing directories takes the option back.
    setFileMode(zip ? QFileDialog::AnyFile : QFileDialog::Directory);
    setOption(QFileDialog::ShowDirsOnly, !zip);
    if (zip)
        setNameFilter(tr("Zip Archive (*.zip)"));
}
