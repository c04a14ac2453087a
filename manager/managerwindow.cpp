#include "manager/managerwindow.h"

#include "manager/profiledialog.h"
#include "ui_managerwindow.h"
#include "widgets/plainbox.h"

#include <QAction>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

namespace kelva {
namespace {

enum Column { NameColumn, ArchiveColumn, UserColumn, StateColumn };

constexpr int idRole = Qt::UserRole;
constexpr int faultIconSize = 24;

QString clientProgram()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/kelvaclient");
}

QString usersText(int users)
{
    if (users == 0)
        return {};
    return users == 1 ? ManagerWindow::tr("A Kelva window uses it now.")
                      : ManagerWindow::tr("%1 Kelva windows use it now.").arg(users);
}

} // namespace

ManagerWindow::ManagerWindow(ProfileList &profiles, ConnectionManager *manager)
    : m_ui(std::make_unique<Ui::ManagerWindow>()),
      m_profiles(profiles),
      m_manager(manager)
{
    m_ui->setupUi(this);
    setWindowIcon(QIcon(QStringLiteral(":/icons/kelva.png")));
    m_ui->faultIcon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(faultIconSize));
    QHeaderView *header = m_ui->profiles->header();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setStretchLastSection(true);
    header->resizeSection(ArchiveColumn, 150);
    header->resizeSection(UserColumn, 100);
    m_ui->startKelva->setVisible(QFileInfo(clientProgram()).isExecutable());
    connectButtons();
    connect(&m_profiles, &ProfileList::changed, this, &ManagerWindow::refill);
    connect(&m_states, &ProfileStates::changed, this, &ManagerWindow::showState);
    if (m_manager)
        connect(&m_manager->blocks(), &BlockPublisher::renewed, this, [this](qint64 id) {
            m_states.refresh(id);
            showState(id);
        });
    refill();
    m_ui->profiles->resizeColumnToContents(NameColumn);
    header->resizeSection(NameColumn, qBound(160, header->sectionSize(NameColumn), 300));
    if (m_ui->profiles->topLevelItemCount() > 0)
        m_ui->profiles->setCurrentItem(m_ui->profiles->topLevelItem(0));
}

ManagerWindow::~ManagerWindow() = default;

void ManagerWindow::connectButtons()
{
    connect(m_ui->add, &QPushButton::clicked, this, &ManagerWindow::addProfile);
    connect(m_ui->edit, &QPushButton::clicked, this, &ManagerWindow::editProfile);
    connect(m_ui->test, &QPushButton::clicked, this, &ManagerWindow::testProfile);
    connect(m_ui->remove, &QPushButton::clicked, this, &ManagerWindow::removeProfile);
    connect(m_ui->startKelva, &QPushButton::clicked, this, &ManagerWindow::startKelva);
    connect(m_ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(m_ui->setAside, &QPushButton::clicked, this, &ManagerWindow::setAside);
    connect(m_ui->profiles, &QTreeWidget::itemSelectionChanged, this, &ManagerWindow::updateButtons);
    connect(m_ui->profiles, &QTreeWidget::itemActivated, this, &ManagerWindow::editProfile);
    auto *removeKey = new QAction(m_ui->profiles);
    removeKey->setShortcut(QKeySequence::Delete);
    removeKey->setShortcutContext(Qt::WidgetShortcut);
    connect(removeKey, &QAction::triggered, m_ui->remove, &QPushButton::click);
    m_ui->profiles->addAction(removeKey);
}

void ManagerWindow::present()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool ManagerWindow::finish(int timeoutMs)
{
    return m_states.finish(timeoutMs);
}

void ManagerWindow::closeEvent(QCloseEvent *event)
{
    if (!m_manager) {
        event->accept();
        emit quitRequested();
        return;
    }
    event->ignore();
    QMessageBox box(QMessageBox::Question, windowTitle(),
                    tr("Kelva needs the Connection Manager for as long as it runs. Should it keep running in "
                       "the background?\n\nTo see this window again, start the Connection Manager again."),
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, this);
    box.setInformativeText(usersText(m_manager->countUsers()));
    box.button(QMessageBox::Yes)->setText(tr("&Keep running"));
    box.button(QMessageBox::No)->setText(tr("&Quit"));
    for (const QMessageBox::StandardButton button : {QMessageBox::Yes, QMessageBox::No})
        box.button(button)->setIcon(QIcon());
    box.setDefaultButton(QMessageBox::Yes);
    const int answer = box.exec();
    if (answer == QMessageBox::Yes)
        hide();
    else if (answer == QMessageBox::No)
        emit quitRequested();
}

void ManagerWindow::refill()
{
    const Profile *current = selected();
    const qint64 currentId = current ? current->id
                             : m_ui->profiles->currentItem()
                                 ? m_ui->profiles->currentItem()->data(NameColumn, idRole).toLongLong()
                                 : -1;
    {
        const QSignalBlocker blocker(m_ui->profiles);
        m_ui->profiles->clear();
        for (const Profile &profile : m_profiles.profiles()) {
            auto *item = new QTreeWidgetItem(m_ui->profiles);
            item->setData(NameColumn, idRole, profile.id);
            item->setText(NameColumn, profile.name);
            item->setText(ArchiveColumn, profile.archiveName());
            item->setText(UserColumn, profile.user);
            item->setToolTip(NameColumn, profile.name);
            item->setToolTip(ArchiveColumn, tr("%1, port %2").arg(profile.host, profile.port));
        }
    }
    m_states.follow(m_profiles.profiles());
    for (const Profile &profile : m_profiles.profiles())
        showState(profile.id);
    select(currentId);
    showFault();
    updateButtons();
}

void ManagerWindow::showFault()
{
    m_ui->fault->setText(m_profiles.fault());
    m_ui->faultBar->setVisible(!m_profiles.fault().isEmpty());
}

void ManagerWindow::showState(qint64 id)
{
    QTreeWidgetItem *item = itemOf(id);
    if (!item)
        return;
    const QString fault = faultOf(id);
    const bool isChecking = m_states.isChecking(id);
    item->setText(StateColumn, isChecking ? tr("Checking...") : fault.isEmpty() ? tr("Ready") : fault);
    item->setToolTip(StateColumn, isChecking ? QString() : fault);
    item->setIcon(StateColumn, isChecking || fault.isEmpty()
                                   ? QIcon()
                                   : style()->standardIcon(QStyle::SP_MessageBoxWarning));
    updateButtons();
}

QString ManagerWindow::faultOf(qint64 id) const
{
    const QString fault = m_states.fault(id);
    return fault.isEmpty() && m_manager ? m_manager->blocks().fault(id) : fault;
}

void ManagerWindow::updateButtons()
{
    const Profile *profile = selected();
    // A fault is often longer than its column.
    const QString fault = profile && !m_states.isChecking(profile->id) ? faultOf(profile->id) : QString();
    if (!fault.isEmpty())
        m_ui->status->setText(fault);
    else if (m_manager)
        m_ui->status->setText(tr("Kelva finds its profiles as long as the Connection Manager runs."));
    else
        m_ui->status->setText(
            tr("The Connection Manager runs in the background and takes over every change."));
    const bool writable = m_profiles.fault().isEmpty();
    m_ui->add->setEnabled(writable);
    m_ui->edit->setEnabled(profile && writable);
    m_ui->remove->setEnabled(profile && writable);
    m_ui->test->setEnabled(profile && !m_states.isChecking(profile->id));
    m_ui->startKelva->setEnabled(profile);
}

const Profile *ManagerWindow::selected() const
{
    const QList<QTreeWidgetItem *> items = m_ui->profiles->selectedItems();
    return items.isEmpty() ? nullptr : m_profiles.find(items.first()->data(NameColumn, idRole).toLongLong());
}

QTreeWidgetItem *ManagerWindow::itemOf(qint64 id) const
{
    for (int i = 0; i < m_ui->profiles->topLevelItemCount(); ++i)
        if (m_ui->profiles->topLevelItem(i)->data(NameColumn, idRole).toLongLong() == id)
            return m_ui->profiles->topLevelItem(i);
    return nullptr;
}

void ManagerWindow::select(qint64 id)
{
    if (QTreeWidgetItem *item = itemOf(id))
        m_ui->profiles->setCurrentItem(item);
}

void ManagerWindow::addProfile()
{
    Profile fresh;
    fresh.host = QStringLiteral("localhost");
    qint64 id = -1;
    const auto save = [this, &id](const Profile &profile) -> Result<void> {
        const Result<Profile> added = m_profiles.store().add(profile);
        if (!added)
            return added.error();
        id = added.value().id;
        return {};
    };
    ProfileDialog(fresh, save, this).exec();
    m_profiles.follow();
    select(id);
}

void ManagerWindow::editProfile()
{
    const Profile *profile = selected();
    if (!profile || !m_ui->edit->isEnabled())
        return;
    const auto save = [this, before = *profile](const Profile &after) {
        return m_profiles.store().replace(before, after);
    };
    ProfileDialog(*profile, save, this).exec();
    m_profiles.follow();
}

void ManagerWindow::testProfile()
{
    const Profile *profile = selected();
    if (!profile)
        return;
    m_states.test(profile->id, [this, tested = *profile](const ProfileStates::Findings &findings) {
        showFindings(tested, findings);
    });
}

void ManagerWindow::showFindings(const Profile &profile, const ProfileStates::Findings &findings)
{
    if (!findings) {
        plainbox::warning(this, windowTitle(),
                          tr("The login with \"%1\" failed:\n\n%2").arg(profile.name, findings.error().text));
        return;
    }
    const ProfileFindings &found = findings.value();
    plainbox::information(
        this, windowTitle(),
        tr("The login with \"%1\" as %2 works.\n\nArchive: %3 (%4 in all)\nDocuments: %5\nFolders: %6")
            .arg(profile.name, profile.user, found.archiveName, QString::number(found.archives),
                 QString::number(found.documents), QString::number(found.folders)));
}

void ManagerWindow::removeProfile()
{
    const Profile *profile = selected();
    if (!profile)
        return;
    const qint64 id = profile->id;
    QString question =
        tr("Should the profile \"%1\" be removed? The archive and its documents stay.").arg(profile->name);
    if (const QString users = usersText(m_manager ? m_manager->countUsers(id) : 0); !users.isEmpty())
        question += QStringLiteral("\n\n") + users;
    if (plainbox::question(this, windowTitle(), question, QMessageBox::Yes | QMessageBox::No,
                           QMessageBox::No) != QMessageBox::Yes)
        return;
    if (const Result<void> removed = m_profiles.store().remove(id); !removed)
        plainbox::warning(this, windowTitle(), removed.error().text);
    m_profiles.follow();
}

void ManagerWindow::startKelva()
{
    const Profile *profile = selected();
    if (!profile)
        return;
    // It looks for its plug-ins in the directory that it is started in.
    if (!QProcess::startDetached(clientProgram(), {QStringLiteral("-profile:%1").arg(profile->id)},
                                 QCoreApplication::applicationDirPath()))
        plainbox::warning(this, windowTitle(), tr("Kelva could not be started."));
}

void ManagerWindow::setAside()
{
    if (plainbox::question(this, windowTitle(),
                           tr("Should the profile file be set aside and a new list be begun? The file is "
                              "kept under another name."),
                           QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    const Result<QString> kept = m_profiles.store().setAside();
    if (!kept)
        plainbox::warning(this, windowTitle(), kept.error().text);
    else
        plainbox::information(this, windowTitle(), tr("The file is kept as %1.").arg(kept.value()));
    m_profiles.follow();
}

} // namespace kelva
