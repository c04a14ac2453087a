#include "folders/kelvanewfolder.h"

#include <QPushButton>

KelvaNewFolder::KelvaNewFolder(QWidget *parent) : QDialog(parent)
{
    setupUi(this);
    connect(m_Name, SIGNAL(textChanged(QString)), this, SLOT(checkName()));
    checkName();
    setParentName(QString());
}

void KelvaNewFolder::setParentName(const QString &name)
{
    m_parentName->setText(name);
    m_belowLabel->setVisible(!name.isEmpty());
    m_parentName->setVisible(!name.isEmpty());
}

void KelvaNewFolder::checkName()
{
    buttonBox->button(QDialogButtonBox::Ok)->setEnabled(!m_Name->text().trimmed().isEmpty());
}

QString folderKeywords(QString text)
{
    return text.replace('\r', ' ').replace('\n', ' ').replace(QStringLiteral("  "), QStringLiteral(" "));
}
