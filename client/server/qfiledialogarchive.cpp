#include "server/qfiledialogarchive.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QSettings>

namespace {

constexpr char organisation[] = "Norbant GmbH";
constexpr char moveKey[] = "movetoarchive";
constexpr char versionKey[] = "createversion";

} // namespace

QFileDialogArchive::QFileDialogArchive(QWidget *parent, const QString &caption, const QString &directory)
    : QFileDialog(parent, caption, directory),
      m_move(new QCheckBox(tr("move files to archive"), this)),
      m_createVersion(new QCheckBox(tr("create version"), this))
{
    setOption(QFileDialog::DontUseNativeDialog);
    setFileMode(QFileDialog::ExistingFiles);
    if (auto *grid = qobject_cast<QGridLayout *>(layout())) {
        const int row = grid->rowCount();
        grid->addWidget(m_move, row, 1);
        grid->addWidget(m_createVersion, row + 1, 1);
    }
    const QSettings settings(organisation, QCoreApplication::applicationName());
    m_move->setChecked(settings.value(moveKey, false).toBool());
    m_createVersion->setChecked(settings.value(versionKey, false).toBool());
}

bool QFileDialogArchive::isMoveChecked() const
{
    return m_move->isChecked();
}

bool QFileDialogArchive::isCreateVersion() const
{
    return m_createVersion->isChecked();
}

void QFileDialogArchive::done(int result)
{
    QSettings settings(organisation, QCoreApplication::applicationName());
    settings.setValue(moveKey, isMoveChecked());
    settings.setValue(versionKey, isCreateVersion());
    settings.sync();
    QFileDialog::done(result);
}
