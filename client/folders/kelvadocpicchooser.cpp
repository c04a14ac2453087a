#include "folders/kelvadocpicchooser.h"

#include "ui_kelvapicforfolder.h"

#include <QFileDialog>

KelvaDocPicChooser::KelvaDocPicChooser(QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::KelvaPicForFolder>())
{
    m_ui->setupUi(this);
    connect(m_ui->m_getPicFile, SIGNAL(clicked()), this, SLOT(chooseFile()));
}

KelvaDocPicChooser::~KelvaDocPicChooser() = default;

QString KelvaDocPicChooser::fileName() const
{
    return m_ui->m_picFileName->text();
}

void KelvaDocPicChooser::chooseFile()
{
    const QString file = QFileDialog::getOpenFileName(this, tr("Open Image"), QString(),
                                                      tr("Image Files (*.png *.jpg *.jpeg *.bmp *.ico)"));
    m_ui->m_picFileName->setText(file);
    m_ui->m_picPreview->setPixmap(file.isEmpty() ? QPixmap() : QPixmap(file));
}
