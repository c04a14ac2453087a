#include "app/kelvadoclogin.h"

#include "ui_kelvadoclogin.h"

#include <QBitmap>
#include <QCoreApplication>
#include <QPropertyAnimation>

KelvaDocLogin::KelvaDocLogin(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint),
      m_ui(std::make_unique<Ui::KelvaDocLogin>())
{
    m_ui->setupUi(this);
    setAutoFillBackground(false);
    const QPixmap logo(":/icons/splash.png");
    m_ui->m_logo->setPixmap(logo);
    if (!logo.mask().isNull())
        setMask(logo.mask().scaled(size()));
    m_ui->m_progress->hide();
}

KelvaDocLogin::~KelvaDocLogin() = default;

void KelvaDocLogin::setDisplayLines(const QString &line1, const QString &line2)
{
    m_ui->m_lines->setText("<b><span style='font-size: 7pt;font-family:\"Arial-bold\";'>" +
                           line1.toHtmlEscaped() + "</span></b><br/><b>" + line2.toHtmlEscaped() + "</b>");
}

void KelvaDocLogin::loginMode()
{
    m_ui->m_progress->show();
    repaint();
    update();
}

void KelvaDocLogin::setSteps(int steps)
{
    m_ui->m_progress->setRange(0, steps);
}

void KelvaDocLogin::setLoginText(const QString &text)
{
    m_ui->m_text->setText(text);
    m_ui->m_progress->setValue(m_ui->m_progress->value() + 1);
    update();
    QCoreApplication::processEvents();
}

void KelvaDocLogin::runAnimation()
{
    auto *fadeIn = new QPropertyAnimation(this, "windowOpacity", this);
    fadeIn->setDuration(2000);
    fadeIn->setStartValue(0.1);
    fadeIn->setEndValue(1.0);
    fadeIn->start(QAbstractAnimation::DeleteWhenStopped);
}
