#include "server/kelvalogindialog.h"

#include "ui_kelvalogindialog.h"

#include <QEvent>
#include <QSettings>

namespace {

// Lower case, unlike every other settings file of the client.
const char organisation[] = "norbant gmbh";
const char application[] = "kelvalogin";

} // namespace

kelvaLoginDialog::kelvaLoginDialog(QWidget *parent, bool saveGeometry)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::kelvaLoginDialog>()),
      m_saveGeometry(saveGeometry)
{
    m_ui->setupUi(this);
}

kelvaLoginDialog::~kelvaLoginDialog() = default;

void kelvaLoginDialog::setProfiles(const QStringList &names)
{
    m_ui->m_cbProfiles->clear();
    m_ui->m_cbProfiles->insertItems(0, names);
    const QSettings settings(organisation, application);
    if (!settings.contains("lastProfile"))
        return;
    // The items carry no user data, so a plain name is not found and the first profile stays selected.
    const int index =
        m_ui->m_cbProfiles->findData(settings.value("lastProfile"), Qt::UserRole, Qt::MatchFixedString);
    if (index >= 0)
        m_ui->m_cbProfiles->setCurrentIndex(index);
}

int kelvaLoginDialog::getProfileIndex() const
{
    return m_ui->m_cbProfiles->currentIndex();
}

int kelvaLoginDialog::exec()
{
    const QSettings settings(organisation, application);
    if (m_saveGeometry && settings.contains("geometry"))
        restoreGeometry(settings.value("geometry").toByteArray());
    return QDialog::exec();
}

void kelvaLoginDialog::accept()
{
    storeGeometry();
    QSettings settings(organisation, application);
    settings.setValue("lastProfile", m_ui->m_cbProfiles->currentText());
    QDialog::accept();
}

void kelvaLoginDialog::reject()
{
    storeGeometry();
    QDialog::reject();
}

void kelvaLoginDialog::storeGeometry() const
{
    if (!m_saveGeometry)
        return;
    QSettings settings(organisation, application);
    settings.setValue("geometry", saveGeometry());
}

void kelvaLoginDialog::changeEvent(QEvent *event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
}
