#include "app/kelvaabout.h"

#include "app/programversion.h"
#include "ui_kelvaabout.h"

#include <QApplication>
#include <QBitmap>

KelvaAbout::KelvaAbout(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint),
      m_ui(std::make_unique<Ui::KelvaAbout>())
{
    m_ui->setupUi(this);
    const QPixmap logo(":/icons/splash.png");
    m_ui->m_logo->setPixmap(logo);
    if (!logo.mask().isNull())
        setMask(logo.mask().scaled(size()));
    m_ui->m_bQt->setText(tr("using QT %1").arg(programversion::qtText));
    connect(m_ui->m_bQt, SIGNAL(clicked()), qApp, SLOT(aboutQt()));
    connect(m_ui->m_bClose, SIGNAL(clicked()), this, SLOT(accept()));
}

KelvaAbout::~KelvaAbout() = default;

void KelvaAbout::setInformation(const QString &line1, const QString &line2, const QString &serverVersion)
{
    m_ui->m_line1->setText("<b>" + line1.toHtmlEscaped() + "</b>");
    m_ui->m_line2->setText("<b>" + line2.toHtmlEscaped() + "</b>");
    // The label shows the version, not the build number.
    m_ui->m_build->setText(tr("Build: %1\r\nServer: %2").arg(programversion::text, serverVersion));
}
