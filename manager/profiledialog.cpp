#include "manager/profiledialog.h"

#include "contract/recordformat.h"
#include "manager/profilecheck.h"
#include "manager/runaside.h"
#include "ui_profiledialog.h"

#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <tuple>

namespace kelva {

ProfileDialog::ProfileDialog(const Profile &profile, Save save, QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::ProfileDialog>()),
      m_profile(profile),
      m_original(profile),
      m_save(std::move(save)),
      m_chosenKey(profile.archiveKey())
{
    m_ui->setupUi(this);
    setWindowTitle(profile.id < 0 ? tr("New profile") : tr("Profile \"%1\"").arg(profile.name));
    setUp(profile);
    connectFields();
}

ProfileDialog::~ProfileDialog() = default;

void ProfileDialog::setUp(const Profile &profile)
{
    constexpr int longestPort = 10;
    m_ui->name->setText(profile.name);
    m_ui->host->setText(profile.host);
    const QStringList ports = localArchives();
    m_ui->portChoice->addItems(ports);
    m_ui->portChoice->setCompleter(nullptr); // it would make 12 of a 1
    m_ui->portChoice->lineEdit()->setObjectName(QStringLiteral("port"));
    m_ui->portChoice->lineEdit()->setMaxLength(longestPort);
    const bool isOnlyOne = profile.id < 0 && profile.port.isEmpty() && ports.size() == 1;
    m_ui->portChoice->setEditText(isOnlyOne ? ports.first() : profile.port);
    m_ui->user->setText(profile.user);
    m_ui->password->setText(profile.password);
    m_ui->line1->setText(profile.displayLine1);
    m_ui->line2->setText(profile.displayLine2);
    m_ui->line1->setPlaceholderText(tr("the profile's name"));
    showArchives(profile.archiveIndex);
}

void ProfileDialog::connectFields()
{
    connect(m_ui->showPassword, &QCheckBox::toggled, this, [this](bool shown) {
        m_ui->password->setEchoMode(shown ? QLineEdit::Normal : QLineEdit::Password);
    });
    connect(m_ui->load, &QPushButton::clicked, this, &ProfileDialog::loadArchives);
    connect(m_ui->host, &QLineEdit::textEdited, this, &ProfileDialog::forgetArchives);
    connect(m_ui->portChoice->lineEdit(), &QLineEdit::textEdited, this, &ProfileDialog::forgetArchives);
    connect(m_ui->portChoice, QOverload<int>::of(&QComboBox::activated), this, [this] {
        forgetArchives();
        loadArchives();
    });
}

void ProfileDialog::accept()
{
    const Profile profile = entered();
    ProfileField field = ProfileField::Name;
    const Result<void> valid = validate(profile, &field);
    const bool canLoad = field == ProfileField::Archive && profile.archives.isEmpty();
    if (!valid && !canLoad)
        complain(valid.error().text, field);
    else if (valid && isTried(profile))
        save(profile);
    else
        tryToLogIn(profile);
}

/// The login is known, or the user was told that it fails.
bool ProfileDialog::isTried(const Profile &profile) const
{
    const auto login = [](const Profile &p) {
        return std::make_tuple(p.host, p.port, p.user, p.password, p.archiveKey());
    };
    return profile == m_refused || (m_original.id >= 0 && login(profile) == login(m_original));
}

void ProfileDialog::tryToLogIn(const Profile &profile)
{
    ++m_loading; // what is being loaded comes too late
    m_ui->load->setEnabled(true);
    m_ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(false);
    showMessage(tr("The login is being tried..."));
    const auto attempt = [profile]() -> Attempt {
        Profile tried = profile;
        if (tried.archives.isEmpty()) {
            const Result<QStringList> archives = kelva::loadArchives(tried);
            if (!archives)
                return {archives, archives.error()};
            tried.archives = archives.value();
            tried.archiveIndex = 0;
        }
        const Result<ProfileFindings> found = checkProfile(tried);
        return {tried.archives, found ? Result<void>() : Result<void>(found.error())};
    };
    runAside(this, attempt, [this, profile](const Attempt &result) { concludeLogin(profile, result); });
}

void ProfileDialog::concludeLogin(const Profile &tried, const Attempt &attempt)
{
    m_ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(true);
    if (entered() != tried) {
        showMessage(QString());
        return;
    }
    if (attempt.archives && tried.archives.isEmpty()) {
        m_profile.archives = attempt.archives.value();
        const int known = archiveIndexOf(m_profile.archives, m_chosenKey);
        showArchives(std::max(0, known));
        if (attempt.login && known < 0 && m_profile.archives.size() > 1) {
            complain(tr("%1 archives were found. Please choose one of them.").arg(m_profile.archives.size()),
                     ProfileField::Archive);
            return;
        }
    }
    if (!attempt.login)
        refuseOnce(attempt.login.error());
    else
        save(entered());
}

void ProfileDialog::refuseOnce(const Error &error)
{
    const bool isPassword =
        error.code == ErrorCode::WrongPassword || error.code == ErrorCode::PasswordExpired;
    QString text = error.text;
    // Without an archive there is nothing that could be saved.
    if (const Profile profile = entered(); validate(profile)) {
        m_refused = profile;
        text += QLatin1Char('\n') + tr("To save the profile all the same, press OK again.");
    }
    complain(text, isPassword ? ProfileField::Password : ProfileField::Port);
}

void ProfileDialog::save(const Profile &profile)
{
    const Result<void> saved = m_save(profile);
    if (saved)
        QDialog::accept();
    else
        complain(saved.error().text, ProfileField::Name);
}

void ProfileDialog::complain(const QString &text, ProfileField field)
{
    showMessage(text);
    switch (field) {
    case ProfileField::Name:
        return m_ui->name->setFocus();
    case ProfileField::Host:
        return m_ui->host->setFocus();
    case ProfileField::Port:
        return m_ui->portChoice->setFocus();
    case ProfileField::User:
        return m_ui->user->setFocus();
    case ProfileField::Password:
        return m_ui->password->setFocus();
    case ProfileField::Archive:
        return m_ui->archive->isEnabled() ? m_ui->archive->setFocus() : m_ui->load->setFocus();
    case ProfileField::Line1:
        return m_ui->line1->setFocus();
    case ProfileField::Line2:
        return m_ui->line2->setFocus();
    }
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
    profile.port = m_ui->portChoice->currentText();
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
