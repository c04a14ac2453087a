#pragma once

#include "ui_kelvanewfolder.h"

#include <QDialog>

/// Asks for name, key and keywords of a new folder. Has no logic of its own: whoever shows it reads its
/// fields.
class KelvaNewFolder final : public QDialog, public Ui_KelvaNewFolder
{
    Q_OBJECT

public:
    explicit KelvaNewFolder(QWidget *parent = nullptr) : QDialog(parent) { setupUi(this); }
};

/// Keywords as they are stored: line ends become blanks, and double blanks single ones, in one pass.
QString folderKeywords(QString text);
