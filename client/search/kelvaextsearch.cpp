#include "search/kelvaextsearch.h"

#include "contract/recordformat.h"
#include "documents/documentcolumns.h"
#include "documents/kelvacheckboxdelegate.h"
#include "documents/kelvacombodelegate.h"
#include "documents/kelvadelegatewrapper.h"
#include "documents/kelvalinedelegate.h"
#include "search/criteriacolumns.h"
#include "search/filtermodel.h"
#include "ui_kelvaextsearch.h"
#include "widgets/itemroles.h"
#include "widgets/searchtexts.h"

#include <QHeaderView>
#include <QLocale>
#include <QSignalBlocker>

namespace {

KelvaComboDelegate *newFieldDelegate(const QStringList &values, QObject *parent)
{
    // Its editors stay open: they write at once, and their lists open when the user wants them to.
    auto *delegate = new KelvaComboDelegate(values, {}, parent, false, QIcon(), true, false);
    delegate->setShowPopup(false);
    return delegate;
}

} // namespace

KelvaExtSearch::KelvaExtSearch(bool offline, QWidget *parent)
    : QDialog(parent),
      m_ui(std::make_unique<Ui::KelvaExtSearch>()),
      m_offline(offline),
      m_fieldDelegate(newFieldDelegate({}, this)),
      m_cells(new KelvaDelegateWrapper(this)),
      m_filterModel(new FilterModel(this))
{
    m_ui->setupUi(this);
    // Before the table: it moves on to the next cell, and what is heard here is where it came from.
    connect(m_cells, SIGNAL(closeEditor(QWidget *, QAbstractItemDelegate::EndEditHint)), this,
            SLOT(leaveTable(QWidget *, QAbstractItemDelegate::EndEditHint)));
    m_ui->m_extSearchTable->setItemDelegate(m_cells);
    m_ui->m_extSearchTable->horizontalHeader()->setHighlightSections(false);
    m_ui->m_extSearchTable->verticalHeader()->setDefaultSectionSize(m_ui->m_SavedSearch->sizeHint().height());
    const int widths[] = {200, 150, 300, 50, 50};
    for (int column = 0; column < criteriacolumn::count; ++column)
        m_ui->m_extSearchTable->setColumnWidth(column, widths[column]);
    connect(m_ui->m_extSearchTable, SIGNAL(itemChanged(QTableWidgetItem *)), this,
            SLOT(criterionChanged(QTableWidgetItem *)));
    m_ui->m_SavedSearch->installEventFilter(this);
    connect(m_ui->m_bAdd, SIGNAL(clicked()), this, SLOT(addLine()));
    connect(m_ui->m_bSaveSearch, SIGNAL(clicked()), this, SLOT(saveSearch()));
    connect(m_ui->m_bUpdateSearch, SIGNAL(clicked()), this, SLOT(updateSearch()));
    connect(m_ui->m_bDeleteSearch, SIGNAL(clicked()), this, SLOT(deleteSearch()));
    connect(m_ui->m_showAll, SIGNAL(toggled(bool)), this, SLOT(showRoles()));
    connect(m_ui->m_globalFilter, SIGNAL(stateChanged(int)), this, SLOT(allStateChanged(int)));
    connect(m_ui->m_addRoles, SIGNAL(clicked()), this, SLOT(addRoles()));
    connect(m_ui->m_removeRoles, SIGNAL(clicked()), this, SLOT(removeRoles()));
    for (const char *signal : {SIGNAL(doubleClicked(QModelIndex)), SIGNAL(changeCurrent())}) {
        connect(m_ui->m_Users, signal, this, SLOT(addRoles()));
        connect(m_ui->m_bearbUsers, signal, this, SLOT(removeRoles()));
    }
    for (QUserListView *list : {m_ui->m_bearbUsers, m_ui->m_Users})
        connect(list, SIGNAL(changed()), this, SLOT(markChanged()));
    showRoles();
    updateButtons();
}

KelvaExtSearch::~KelvaExtSearch() = default;

void KelvaExtSearch::setFilters(const QStringList &rows)
{
    clearSearch();
    m_fields.clear();
    QStringList values;
    for (const QString &row : rows) {
        const QStringList fields = row.split(recordformat::fieldSeparator, Qt::KeepEmptyParts);
        m_fields << fields.value(1);
        values << fields.value(1) + recordformat::fieldSeparator + fields.value(0);
    }
    delete m_fieldDelegate;
    m_fieldDelegate = newFieldDelegate(values, this);
    addLine();
    m_ui->m_extSearchTable->setColumnWidth(criteriacolumn::value, 300);
}

const KelvaDelegate *KelvaExtSearch::delegateFor(const QString &field) const
{
    if (field == searchtext::fullText())
        return nullptr; // a column with its number would be another one
    return m_lookup ? m_lookup(field) : m_delegates.value(m_fields.indexOf(field));
}

QString KelvaExtSearch::fieldKey(int row) const
{
    const QString text = cellText(row, criteriacolumn::field);
    // Two fields may have one title; the key says which was chosen.
    const QString chosen = cell(row, criteriacolumn::field)->data(itemrole::rawValue).toString();
    if (m_fields.contains(chosen) && m_fieldDelegate->getData(chosen) == text)
        return chosen;
    const QString field = m_fieldDelegate->getValue(text);
    return m_fields.contains(field) ? field : SearchRow::unknownField;
}

SearchRow KelvaExtSearch::searchRow(int row) const
{
    SearchRow criteria;
    criteria.fieldText = cellText(row, criteriacolumn::field);
    criteria.field = fieldKey(row);
    criteria.op = cellText(row, criteriacolumn::op);
    criteria.valueText = cellText(row, criteriacolumn::value);
    criteria.storedValue = cell(row, criteriacolumn::value)->data(itemrole::rawValue).toString();
    const KelvaDelegate *delegate = valueDelegate(row);
    if (delegate && delegate->kind() == FieldKind::CheckBox)
        criteria.kind = SearchRow::Value::CheckBox;
    else if (delegate && delegate->kind() == FieldKind::Number)
        criteria.kind = SearchRow::Value::Number;
    return criteria;
}

QString KelvaExtSearch::getFilter()
{
    QList<SearchRow> rows;
    for (int row = 0; row < m_ui->m_extSearchTable->rowCount(); ++row)
        rows << searchRow(row);
    const ExtendedSearch search = extendedSearch(rows, m_offline, QLocale().decimalPoint());
    m_fullText = search.fullText;
    return search.clause;
}

void KelvaExtSearch::setResubmissionFilter(int days)
{
    // The rows are no longer those of a stored search, which must not be written over with them.
    showNone();
    loadRow({m_fieldDelegate->getData("defdate"), "<=", QStringLiteral("[HEUTE+%1]").arg(days), QString()});
    const auto *status = qobject_cast<const KelvaComboDelegate *>(delegateFor("status"));
    loadRow({m_fieldDelegate->getData("status"), "=",
             status ? status->getData(documentstatus::resubmission) : QString(),
             documentstatus::resubmission});
}

void KelvaExtSearch::updateStatusDelegates()
{
    for (int row = 0; row < m_ui->m_extSearchTable->rowCount(); ++row)
        if (fieldKey(row) == "status")
            filterChanged(row);
}

void KelvaExtSearch::setSimpleMode(bool simple)
{
    m_simple = simple;
    m_ui->m_templates->setVisible(!simple);
    showRoles();
}

bool KelvaExtSearch::eventFilter(QObject *watched, QEvent *event)
{
    // A turn of the wheel in passing would take all criteria away.
    return (watched == m_ui->m_SavedSearch && event->type() == QEvent::Wheel) ||
           QDialog::eventFilter(watched, event);
}

void KelvaExtSearch::accept()
{
    // An editor that is still open writes its value when it loses the focus.
    m_ui->m_bOk->setFocus();
    QDialog::accept();
}

void KelvaExtSearch::reject()
{
    checkForSave();
    QDialog::reject();
}
