#include "search/kelvaextsearch.h"

#include "contract/classifyinterface.h"
#include "contract/userrights.h"
#include "documents/kelvacombodelegate.h"
#include "search/criteriacolumns.h"
#include "search/filtermodel.h"
#include "ui_kelvaextsearch.h"
#include "widgets/itemroles.h"
#include "widgets/plainbox.h"
#include "widgets/searchtexts.h"

#include <QInputDialog>
#include <QSignalBlocker>
#include <QStandardItem>

namespace {

QStandardItem *roleItem(const QString &role)
{
    auto *item = new QStandardItem(QIcon(":/icons/report_user.png"), role);
    item->setData(role, itemrole::storedId);
    item->setData(role, itemrole::content);
    item->setData(QStringLiteral("R"), itemrole::roles);
    item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled);
    return item;
}

} // namespace

void KelvaExtSearch::setClassifyClient(ClassifyInterface *client)
{
    m_client = client;
    loadSearchDefs();
    m_templateAdmin = m_client->getUserRights().contains(userright::administrate);
    m_ui->m_showAll->setVisible(m_templateAdmin);
    showRoles();
    reloadSearch(QString());
}

void KelvaExtSearch::loadSearchDefs()
{
    m_personalRole = personalRole(m_client->getLoginName());
    QComboBox *box = m_ui->m_SavedSearch;
    const QStringList records = m_client->getSearches(m_client->getLoginName());
    if (records.isEmpty() && !m_client->lastError().isEmpty()) {
        plainbox::critical(this, tr("Error"),
                           tr("The saved searches could not be loaded: %1").arg(m_client->lastError()));
        return; // with the ones that are known
    }
    disconnect(box, SIGNAL(currentTextChanged(QString)), this, SLOT(reloadSearch(QString)));
    box->clear();
    box->addItem(QString());
    box->setItemData(0, 0, itemrole::rawValue);
    QList<SearchTemplate> searches;
    for (const QString &record : records) {
        const SearchTemplate search = SearchTemplate::parse(record);
        const int entry = box->count();
        box->addItem(search.name);
        box->setItemData(entry, search.id, itemrole::storedId);
        box->setItemData(entry, search.isPersonal(m_personalRole) ? 0 : 1, itemrole::rawValue);
        box->setItemData(entry, search.content, itemrole::content);
        box->setItemData(entry, search.roles, itemrole::roles);
    }
    box->model()->sort(0);
    box->setCurrentIndex(0);
    for (int entry = 1; entry < box->count(); ++entry)
        searches.append({box->itemData(entry, itemrole::storedId).toString(), box->itemText(entry),
                         box->itemData(entry, itemrole::content).toString(),
                         box->itemData(entry, itemrole::roles).toStringList()});
    connect(box, SIGNAL(currentTextChanged(QString)), this, SLOT(reloadSearch(QString)));
    updateFilterModel(searches);
    updateButtons();
}

void KelvaExtSearch::updateFilterModel(const QList<SearchTemplate> &searches)
{
    emit modelReset();
    m_filterModel->setSearches(searches, m_personalRole);
    emit filterUpdated();
}

QStandardItem *KelvaExtSearch::getCurrentFilter() const
{
    return m_filterModel->searchItem(m_ui->m_SavedSearch->currentData(itemrole::storedId).toString());
}

void KelvaExtSearch::selectEntry(const QString &id)
{
    const QSignalBlocker blocker(m_ui->m_SavedSearch);
    const int entry = m_ui->m_SavedSearch->findData(id, itemrole::storedId);
    if (entry > 0)
        m_ui->m_SavedSearch->setCurrentIndex(entry);
}

void KelvaExtSearch::showNone()
{
    {
        const QSignalBlocker blocker(m_ui->m_SavedSearch);
        m_ui->m_SavedSearch->setCurrentIndex(0);
    }
    reloadSearch(QString());
}

void KelvaExtSearch::reloadSearch(const QString &name)
{
    clearSearch();
    // Of several with one name the first, unless another one of them is selected.
    const int entry =
        m_ui->m_SavedSearch->currentText() == name
            ? m_ui->m_SavedSearch->currentIndex()
            : qMax(0, m_ui->m_SavedSearch->findText(name, Qt::MatchExactly | Qt::MatchCaseSensitive));
    {
        const QSignalBlocker blocker(m_ui->m_SavedSearch);
        m_ui->m_SavedSearch->setCurrentIndex(entry);
    }
    const QList<TemplateRow> rows =
        readTemplateRows(m_ui->m_SavedSearch->itemData(entry, itemrole::content).toString());
    for (const TemplateRow &row : rows)
        loadRow(row);
    showAssignedRoles(entry > 0 ? m_ui->m_SavedSearch->itemData(entry, itemrole::roles).toStringList()
                                : QStringList{m_personalRole});
    initUsersAndRoles();
    updateButtons();
    setChanged(false);
}

void KelvaExtSearch::loadRow(const TemplateRow &criteria)
{
    const int row = appendRow();
    const QSignalBlocker blocker(m_ui->m_extSearchTable);
    cell(row, criteriacolumn::field)->setText(criteria.field);
    filterChanged(row);
    cell(row, criteriacolumn::value)->setText(criteria.valueText);
    if (!criteria.storedValue.isEmpty())
        cell(row, criteriacolumn::value)->setData(itemrole::rawValue, criteria.storedValue);
    if (const auto *choices = qobject_cast<const KelvaComboDelegate *>(valueDelegate(row)))
        cell(row, criteriacolumn::value)->setIcon(choices->getIcon(criteria.storedValue));
    const KelvaComboDelegate *operators = operatorDelegate(row);
    if (!operators)
        return; // the words of a full-text search have one operator only
    QString op = criteria.op;
    const bool isOr = searchtext::takeOrPrefix(&op);
    QString displayText = operators->getData(op);
    if (displayText == searchtext::notAssigned())
        displayText = op; // of another kind of field, or from elsewhere
    if (!isOr) {
        cell(row, criteriacolumn::op)->setText(displayText);
        cell(row, criteriacolumn::op)->setData(itemrole::rawValue, op);
        return;
    }
    makeOrRow(row, op, displayText);
    if (row == 0)
        addButtons(row); // no row above it takes it along when it is removed
    if (row > 0 && !isOrRow(row - 1))
        fixHead(row - 1);
}

QList<TemplateRow> KelvaExtSearch::templateRows() const
{
    QList<TemplateRow> rows;
    for (int row = 0; row < m_ui->m_extSearchTable->rowCount(); ++row) {
        if (cellText(row, criteriacolumn::field).isEmpty())
            continue; // not filled in yet
        QString op = cellText(row, criteriacolumn::op);
        const bool isOr = searchtext::takeOrPrefix(&op);
        if (isOr || operatorDelegate(row)) {
            const QString stored = cell(row, criteriacolumn::op)->data(itemrole::rawValue).toString();
            op = (isOr ? QStringLiteral("or ") : QString()) + (stored.isEmpty() ? op : stored);
        }
        rows.append({cellText(row, criteriacolumn::field), op, cellText(row, criteriacolumn::value),
                     cell(row, criteriacolumn::value)->data(itemrole::rawValue).toString()});
    }
    return rows;
}

bool KelvaExtSearch::checkCriteria()
{
    if (!templateRows().isEmpty())
        return true;
    plainbox::information(this, tr("Save search"),
                          tr("The search could not be saved, no search criterias defined!"));
    return false;
}

QStringList KelvaExtSearch::rolesToSave() const
{
    QStringList roles;
    for (int row = 0; m_templateAdmin && row < m_ui->m_bearbUsers->rowCount(); ++row)
        roles << m_ui->m_bearbUsers->item(row)->text();
    // Whoever stores a search keeps it.
    if (!roles.contains(m_personalRole))
        roles << m_personalRole;
    return roles;
}

void KelvaExtSearch::saveSearch()
{
    if (!checkCriteria())
        return;
    const QString name = askName();
    if (name.isEmpty())
        return;
    if (!m_client->saveSearch(name, writeTemplateRows(templateRows()), rolesToSave())) {
        plainbox::critical(this, tr("Error"),
                           tr("The search could not be saved: %1").arg(m_client->lastMessage()));
        return;
    }
    loadSearchDefs();
    // The criteria stay where they are if the service should know the search by another name.
    const QString id = newestOfName(name);
    if (id.isEmpty())
        return;
    selectEntry(id);
    reloadSearch(name);
}

/// Of several stored searches of one name the one that came last; empty when there is none.
QString KelvaExtSearch::newestOfName(const QString &name) const
{
    qint64 newest = -1;
    for (int entry = 1; entry < m_ui->m_SavedSearch->count(); ++entry)
        if (m_ui->m_SavedSearch->itemText(entry) == name)
            newest = qMax(newest, m_ui->m_SavedSearch->itemData(entry, itemrole::storedId).toLongLong());
    return newest < 0 ? QString() : QString::number(newest);
}

/// A name as the service stores it; empty when the user gives up. Searches are told apart by their id.
QString KelvaExtSearch::askName()
{
    constexpr int longest = 254;
    bool accepted = false;
    const QString typed = QInputDialog::getText(this, tr("Save search"), tr("Name"), QLineEdit::Normal,
                                                tr("New search"), &accepted);
    return accepted ? typed.simplified().left(longest).trimmed() : QString();
}

void KelvaExtSearch::updateSearch()
{
    if (m_ui->m_SavedSearch->currentIndex() <= 0) {
        saveSearch();
        return;
    }
    if (!checkCriteria())
        return;
    const QString name = m_ui->m_SavedSearch->currentText();
    const QString id = m_ui->m_SavedSearch->currentData(itemrole::storedId).toString();
    if (!m_client->updateSearch(id.toInt(), name, writeTemplateRows(templateRows()), rolesToSave())) {
        // "serach" is how this message is known.
        plainbox::critical(this, tr("Error"),
                           tr("The serach could not be saved: %1").arg(m_client->lastMessage()));
        return;
    }
    loadSearchDefs();
    selectEntry(id);
    reloadSearch(name);
}

void KelvaExtSearch::deleteSearch()
{
    if (m_ui->m_SavedSearch->currentIndex() <= 0)
        return;
    if (!m_client->deleteSearch(m_ui->m_SavedSearch->currentData(itemrole::storedId).toString())) {
        plainbox::critical(this, tr("Error"),
                           tr("The search template could not be deleted: %1").arg(m_client->lastError()));
        return;
    }
    loadSearchDefs(); // the criteria stay in the table
}

void KelvaExtSearch::showAssignedRoles(const QStringList &roles)
{
    m_ui->m_bearbUsers->clear();
    for (const QString &role : roles)
        m_ui->m_bearbUsers->addRow(roleItem(role));
}

void KelvaExtSearch::initUsersAndRoles()
{
    m_ui->m_Users->clear();
    for (const QString &role : qAsConst(m_allRoles))
        if (m_ui->m_bearbUsers->findItems(role).isEmpty())
            m_ui->m_Users->addRow(roleItem(role));
}

void KelvaExtSearch::updateButtons()
{
    const bool personal = m_ui->m_SavedSearch->currentIndex() > 0 &&
                          m_ui->m_SavedSearch->currentData(itemrole::rawValue).toInt() == 0;
    for (QPushButton *button : {m_ui->m_bUpdateSearch, m_ui->m_bDeleteSearch})
        button->setEnabled(m_templateAdmin || personal);
}

void KelvaExtSearch::showRoles()
{
    m_ui->m_roles->setVisible(m_templateAdmin && !m_simple && m_ui->m_showAll->isChecked());
}

void KelvaExtSearch::addRoles()
{
    if (m_ui->m_Users->moveSelectedTo(m_ui->m_bearbUsers))
        setChanged(true);
}

void KelvaExtSearch::removeRoles()
{
    if (m_ui->m_bearbUsers->moveSelectedTo(m_ui->m_Users))
        setChanged(true);
}

void KelvaExtSearch::setChanged(bool changed)
{
    m_changed = changed;
    checkIfAllUsers();
}

void KelvaExtSearch::checkIfAllUsers()
{
    const QSignalBlocker blocker(m_ui->m_globalFilter);
    m_ui->m_globalFilter->setChecked(!m_ui->m_bearbUsers->findItems(userright::everyUser).isEmpty());
}

void KelvaExtSearch::allStateChanged(int state)
{
    QUserListView *from = state == Qt::Checked ? m_ui->m_Users : m_ui->m_bearbUsers;
    QUserListView *to = state == Qt::Checked ? m_ui->m_bearbUsers : m_ui->m_Users;
    const QList<QStandardItem *> items = from->findItems(userright::everyUser);
    if (items.isEmpty())
        return;
    to->addRow(from->takeItem(items.first()));
    setChanged(true);
}

void KelvaExtSearch::checkForSave()
{
    if (m_changed && m_ui->m_SavedSearch->currentIndex() > 0 &&
        plainbox::question(this, tr("Save"),
                           tr("The permissions for the filter has changed, save changes?")) ==
            QMessageBox::Yes)
        updateSearch();
}
