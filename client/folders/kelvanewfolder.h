#pragma once

#include "ui_kelvanewfolder.h"

#include <QDialog>

/// Asks for name, key and keywords of a new folder, and for a name in any case. Whoever shows it reads its
/// fields.
class KelvaNewFolder final : public QDialog, public Ui_KelvaNewFolder
{
    Q_OBJECT

public:
    explicit KelvaNewFolder(QWidget *parent = nullptr);
    /// Says below which folder the new one will stand; not shown without a name.
    void setParentName(const QString &name);

private slots:
    void checkName();
};

/// Keywords as they are stored: line ends become blanks, and double blanks single ones, in one pass.
QString folderKeywords(QString text);
