#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class KelvaDocLogin;
}

/// The splash that shows how far the login is.
class KelvaDocLogin final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaDocLogin(QWidget *parent = nullptr);
    ~KelvaDocLogin() override;

    /// The two display lines of the profile, plain text.
    void setDisplayLines(const QString &line1, const QString &line2);
    /// Shows the bar.
    void loginMode();
    void setSteps(int steps);
    /// Shows the text, moves the bar on by one and lets events run.
    void setLoginText(const QString &text);
    /// Fades the splash in.
    void runAnimation();

private:
    const std::unique_ptr<Ui::KelvaDocLogin> m_ui;
};
