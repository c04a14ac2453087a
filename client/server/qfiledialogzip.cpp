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
    setOption(QFileDialog::ShowDirsOnly, !zip);
    setFileMode(zip ? QFileDialog::AnyFile : QFileDialog::Directory);
    if (zip)
        setNameFilter(tr("Zip Archive (*.zip)"));
}
