#pragma once

#include "manager/profile.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class ProfileDialog;
}

namespace kelva {

/// Fills in a profile. OK loads the archives if that was not done, tries the login and saves; after a login
/// that failed a second OK saves all the same. Closes only when it is saved, so that nothing typed gets lost.
class ProfileDialog final : public QDialog
{
    Q_OBJECT

public:
    /// Stores the tidied and valid profile; its error is shown in the dialog.
    using Save = std::function<Result<void>(const Profile &)>;

    /// A profile without an id is a new one.
    ProfileDialog(const Profile &profile, Save save, QWidget *parent);
    ~ProfileDialog() override;

    void accept() override;

private:
    struct Attempt
    {
        Result<QStringList> archives;
        Result<void> login;
    };
    void setUp(const Profile &profile);
    void connectFields();
    void tryToLogIn(const Profile &profile);
    void concludeLogin(const Profile &tried, const Attempt &attempt);
    void refuseOnce(const Error &error);
    void save(const Profile &profile);
    bool isTried(const Profile &profile) const;
    void complain(const QString &text, ProfileField field);
    void loadArchives();
    void takeArchives(const Result<QStringList> &archives);
    void showArchives(int index);
    void forgetArchives();
    void showMessage(const QString &text);
    Profile entered() const;

    std::unique_ptr<Ui::ProfileDialog> m_ui;
    Profile m_profile;
    const Profile m_original;
    Profile m_refused; ///< whose login failed: once more OK, and it is saved
    Save m_save;
    QString m_chosenKey; ///< to be found again in a list loaded anew
    int m_loading = 0;   ///< number of the load whose result counts
};

} // namespace kelva
