#include "app/kelvachangepass.h"

#include "ui_kelvachangepass.h"

#include <QPushButton>

KelvaChangePass::KelvaChangePass(QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::KelvaChangePass>())
{
    m_ui->setupUi(this);
    for (QLineEdit *field : {m_ui->m_oldPass, m_ui->m_newPass1, m_ui->m_newPass2})
        connect(field, SIGNAL(textChanged(QString)), this, SLOT(checkInput()));
    checkInput();
}

KelvaChangePass::~KelvaChangePass() = default;

void KelvaChangePass::checkOldPass(bool check)
{
    m_checkOldPass = check;
    m_ui->m_oldPassLabel->setVisible(check);
    m_ui->m_oldPass->setVisible(check);
    checkInput();
}

QString KelvaChangePass::getOldPass() const
{
    return m_ui->m_oldPass->text();
}

QString KelvaChangePass::getNewPass() const
{
    return m_ui->m_newPass1->text();
}

void KelvaChangePass::checkInput()
{
    const QString first = m_ui->m_newPass1->text();
    const bool oldGiven = !m_checkOldPass || !m_ui->m_oldPass->text().isEmpty();
    m_ui->buttonBox->button(QDialogButtonBox::Ok)
        ->setEnabled(oldGiven && !first.isEmpty() && first == m_ui->m_newPass2->text());
}
