#pragma once

#include <QPushButton>

/// Switches the document list between the live documents and the trash.
class KelvaTrashButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit KelvaTrashButton(QWidget *parent = nullptr);

signals:
    void moveToTrash(QStringList docIds);
};
