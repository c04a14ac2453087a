#include "documents/kelvatrashbutton.h"

KelvaTrashButton::KelvaTrashButton(QWidget *parent) : QPushButton(parent)
{
    setCheckable(true);
}
