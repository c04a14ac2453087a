#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class kelvaLoginDialog;
}

/// Lets the user choose one of several connection profiles.
class kelvaLoginDialog final : public QDialog
{
    Q_OBJECT

public:
    kelvaLoginDialog(QWidget *parent, bool saveGeometry);
    ~kelvaLoginDialog() override;

    void setProfiles(const QStringList &names);
    int getProfileIndex() const;

public slots:
    int exec() override;
    void accept() override;
    void reject() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void storeGeometry() const;

    const std::unique_ptr<Ui::kelvaLoginDialog> m_ui;
    const bool m_saveGeometry;
};
