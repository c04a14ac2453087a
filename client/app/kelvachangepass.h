#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class KelvaChangePass;
}

/// Asks for the old password and twice for the new one.
class KelvaChangePass final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaChangePass(QWidget *parent = nullptr);
    ~KelvaChangePass() override;

    /// Whether the old password is asked for; it is unless told otherwise.
    void checkOldPass(bool check);
    /// Not trimmed.
    QString getOldPass() const;
    QString getNewPass() const;

private slots:
    void checkInput();

private:
    const std::unique_ptr<Ui::KelvaChangePass> m_ui;
    bool m_checkOldPass = true;
};
