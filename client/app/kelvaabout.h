#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class KelvaAbout;
}

/// About box in the shape of the logo.
class KelvaAbout final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaAbout(QWidget *parent = nullptr);
    ~KelvaAbout() override;

    void setInformation(const QString &line1, const QString &line2, const QString &serverVersion);

private:
    const std::unique_ptr<Ui::KelvaAbout> m_ui;
};
