#pragma once

#include "manager/connectionmanager.h"
#include "manager/profilelist.h"
#include "manager/profilestates.h"

#include <QWidget>

#include <memory>

class QTreeWidgetItem;

namespace Ui {
class ManagerWindow;
}

namespace kelva {

/// The list of profiles, with everything that can be done to them.
class ManagerWindow final : public QWidget
{
    Q_OBJECT

public:
    /// manager: what runs in this process; null when the Connection Manager runs in another, which takes
    /// over what is changed here.
    ManagerWindow(ProfileList &profiles, ConnectionManager *manager);
    ~ManagerWindow() override;

    /// Shows the window in front of all others.
    void present();
    /// Waits for logins that are being tried; false when one takes longer.
    bool finish(int timeoutMs);

signals:
    /// The user wants the program to end.
    void quitRequested();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void connectButtons();
    void refill();
    void showFault();
    void showState(qint64 id);
    QString faultOf(qint64 id) const;
    void updateButtons();
    const Profile *selected() const;
    QTreeWidgetItem *itemOf(qint64 id) const;
    void select(qint64 id);

    void addProfile();
    void editProfile();
    void testProfile();
    void removeProfile();
    void startKelva();
    void setAside();
    void showFindings(const Profile &profile, const ProfileStates::Findings &findings);

    std::unique_ptr<Ui::ManagerWindow> m_ui;
    ProfileList &m_profiles;
    ConnectionManager *m_manager;
    ProfileStates m_states;
};

} // namespace kelva
