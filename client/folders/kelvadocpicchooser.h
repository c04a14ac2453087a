#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class KelvaPicForFolder;
}

/// Lets the user choose a picture file for a folder.
class KelvaDocPicChooser final : public QDialog
{
    Q_OBJECT

public:
    explicit KelvaDocPicChooser(QWidget *parent = nullptr);
    ~KelvaDocPicChooser() override;

    /// Path of the chosen file, empty for none.
    QString fileName() const;

private slots:
    void chooseFile();

private:
    const std::unique_ptr<Ui::KelvaPicForFolder> m_ui;
};
