#pragma once

#include "manager/profile.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class ProfileDialog;
}

namespace kelva {

/// Fills in a profile. Closes only when it is saved, so that nothing typed gets lost.
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
    void loadArchives();
    void takeArchives(const Result<QStringList> &archives);
    void showArchives(int index);
    void forgetArchives();
    void showMessage(const QString &text);
    Profile entered() const;

    std::unique_ptr<Ui::ProfileDialog> m_ui;
    Profile m_profile;
    Save m_save;
    QString m_chosenKey; ///< to be found again in a list loaded anew
    int m_loading = 0;   ///< number of the load whose result counts
};

} // namespace kelva
