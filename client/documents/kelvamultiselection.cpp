#include "documents/kelvamultiselection.h"

#include "documents/kelvadelegate.h"
#include "ui_kelvamultiselection.h"

#include <QAction>

KelvaMultiSelection::KelvaMultiSelection(const KelvaDelegate *delegate,
                                         const QList<QTableWidgetItem *> &items, QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::KelvaMultiSelection>())
{
    m_ui->setupUi(this);
    KelvaDelegate *copy = delegate->clone(m_ui->m_extSelection);
    copy->setDelegateColumn(0);
    m_ui->m_extSelection->setItemDelegate(copy);
    auto *remove = new QAction(tr("&Remove"), m_ui->m_extSelection);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetShortcut);
    m_ui->m_extSelection->addAction(remove);
    connect(remove, SIGNAL(triggered()), this, SLOT(removeLine()));
    connect(m_ui->m_bAdd, SIGNAL(clicked()), this, SLOT(addLine()));
    initialize(items);
}

KelvaMultiSelection::~KelvaMultiSelection() = default;

void KelvaMultiSelection::initialize(const QList<QTableWidgetItem *> &items)
{
    for (const QTableWidgetItem *item : items)
        addLineMan(item->clone());
}

void KelvaMultiSelection::addLineMan(QTableWidgetItem *item)
{
    const int row = m_ui->m_extSelection->rowCount();
    m_ui->m_extSelection->insertRow(row);
    m_ui->m_extSelection->setItem(row, 0, item);
}

void KelvaMultiSelection::addLine()
{
    auto *item = new QTableWidgetItem;
    addLineMan(item);
    m_ui->m_extSelection->setCurrentItem(item);
    m_ui->m_extSelection->editItem(item);
}

void KelvaMultiSelection::removeLine()
{
    m_ui->m_extSelection->removeRow(m_ui->m_extSelection->currentRow());
}

int KelvaMultiSelection::getRows() const
{
    return m_ui->m_extSelection->rowCount();
}

QTableWidgetItem *KelvaMultiSelection::getItem(int row) const
{
    return m_ui->m_extSelection->item(row, 0);
}

void KelvaMultiSelection::accept()
{
    // An editor that is still open writes its value when it loses the focus.
    m_ui->buttonBox->setFocus();
    for (int row = getRows() - 1; row >= 0; --row)
        if (getItem(row)->text().isEmpty())
            m_ui->m_extSelection->removeRow(row);
    QDialog::accept();
}
