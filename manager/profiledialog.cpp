#include "manager/profiledialog.h"

#include "manager/profilecheck.h"
#include "manager/runaside.h"
#include "server/recordformat.h"
#include "ui_profiledialog.h"

#include <algorithm>

namespace kelva {

ProfileDialog::ProfileDialog(const Profile &profile, Save save, QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::ProfileDialog>()),
      m_profile(profile),
      m_save(std::move(save)),
      m_chosenKey(profile.archiveKey())
{
    m_ui->setupUi(this);
    setWindowTitle(profile.id < 0 ? tr("New profile") : tr("Profile \"%1\"").arg(profile.name));
    m_ui->name->setText(profile.name);
    m_ui->host->setText(profile.host);
    m_ui->port->setText(profile.port);
    m_ui->user->setText(profile.user);
    m_ui->password->setText(profile.password);
    m_ui->line1->setText(profile.displayLine1);
    m_ui->line2->setText(profile.displayLine2);
    m_ui->line1->setPlaceholderText(tr("the profile's name"));
    showArchives(profile.archiveIndex);
    connect(m_ui->showPassword, &QCheckBox::toggled, this, [this](bool shown) {
        m_ui->password->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    });
    connect(m_ui->load, &QPushButton::clicked, this, &ProfileDialog::loadArchives);
    connect(m_ui->host, &QLineEdit::textEdited, this, &ProfileDialog::forgetArchives);
    connect(m_ui->port, &QLineEdit::textEdited, this, &ProfileDialog::forgetArchives);
}

ProfileDialog::~ProfileDialog() = default;

void ProfileDialog::accept()
{
    const Profile profile = entered();
    if (const Result<void> valid = validate(profile); !valid) {
        showMessage(valid.error().text);
        return;
    }
    if (const Result<void> saved = m_save(profile); !saved) {
        showMessage(saved.error().text);
        return;
    }
    QDialog::accept();
}

void ProfileDialog::loadArchives()
{
    const int number = ++m_loading;
    if (m_ui->archive->currentIndex() >= 0)
        m_chosenKey = m_ui->archive->currentData().toString();
    m_ui->load->setEnabled(false);
    showMessage(tr("The archives are being loaded..."));
    runAside(
        this, [profile = entered()] { return kelva::loadArchives(profile); },
        [this, number](const Result<QStringList> &archives) {
            if (number == m_loading)
                takeArchives(archives);
        });
}

void ProfileDialog::takeArchives(const Result<QStringList> &archives)
{
    m_ui->load->setEnabled(true);
    if (!archives) {
        showMessage(archives.error().text);
        return;
    }
    m_profile.archives = archives.value();
    showArchives(std::max(0, archiveIndexOf(m_profile.archives, m_chosenKey)));
    const int count = m_profile.archives.size();
    showMessage(count == 1 ? tr("One archive was found.") : tr("%1 archives were found.").arg(count));
    m_ui->archive->setFocus();
}

void ProfileDialog::showArchives(int index)
{
    m_ui->archive->clear();
    for (const QString &archive : qAsConst(m_profile.archives)) {
        const QStringList fields = archive.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        m_ui->archive->addItem(fields.value(0), fields.value(1));
    }
    m_ui->archive->setEnabled(!m_profile.archives.isEmpty());
    m_ui->archive->setCurrentIndex(index);
}

void ProfileDialog::forgetArchives()
{
    // They are those of another port.
    ++m_loading;
    m_ui->load->setEnabled(true);
    m_profile.archives.clear();
    showArchives(-1);
    showMessage(QString());
}

void ProfileDialog::showMessage(const QString &text)
{
    m_ui->message->setText(text);
}

Profile ProfileDialog::entered() const
{
    Profile profile = m_profile;
    profile.name = m_ui->name->text();
    profile.host = m_ui->host->text();
    profile.port = m_ui->port->text();
    profile.user = m_ui->user->text();
    profile.password = m_ui->password->text();
    profile.archiveIndex = m_ui->archive->currentIndex();
    profile.displayLine1 = m_ui->line1->text();
    profile.displayLine2 = m_ui->line2->text();
    profile = tidied(profile);
    if (profile.displayLine1.isEmpty())
        profile.displayLine1 = profile.name;
    return profile;
}

} // namespace kelva
