#pragma once

#include "search/searchclause.h"
#include "search/searchtemplate.h"

#include <QAbstractItemDelegate>
#include <QDialog>

#include <functional>
#include <initializer_list>
#include <memory>

class ClassifyInterface;
class FilterModel;
class KelvaComboDelegate;
class KelvaDelegate;
class KelvaDelegateWrapper;
class QStandardItem;
class QTableWidgetItem;

namespace Ui {
class KelvaExtSearch;
}

/// The extended search: a table of criteria, which can be kept in the archive as a stored search. It stays
/// from login to login; what is in the table is what getFilter() answers, shown or not.
class KelvaExtSearch final : public QDialog
{
    Q_OBJECT

public:
    /// Gives the delegate of the document column with this field key, null when there is none. It is cloned.
    using DelegateLookup = std::function<const KelvaDelegate *(const QString &field)>;

    KelvaExtSearch(bool offline, QWidget *parent);
    ~KelvaExtSearch() override;

    void setDelegateLookup(DelegateLookup lookup) { m_lookup = std::move(lookup); }
    /// Without a lookup: the delegates of the fields, in the order of setFilters(). They are lent.
    void setDelegates(const QList<KelvaDelegate *> &delegates) { m_delegates = delegates; }
    /// Rows of display text and field key. Begins with one empty row.
    void setFilters(const QStringList &rows);
    /// Role names that a stored search can be given.
    void setUsers(const QStringList &roles) { m_allRoles = roles; }
    /// Lends the service and loads the stored searches that the user may see.
    void setClassifyClient(ClassifyInterface *client);

    /// The clause of the rows; getFullText() is the words for the full-text search that go with it.
    QString getFilter();
    QString getFullText() const { return m_fullText; }
    /// Item of the selected stored search in filterModel(); null when none is selected.
    QStandardItem *getCurrentFilter() const;
    /// The stored searches, for a tree. Its items change between modelReset() and filterUpdated().
    FilterModel *filterModel() const { return m_filterModel; }

    /// Documents that are to be resubmitted within so many days.
    void setResubmissionFilter(int days);
    /// Takes over status values that have changed.
    void updateStatusDelegates();
    /// Without stored searches and roles.
    void setSimpleMode(bool simple);

public slots:
    void accept() override;
    void reject() override;
    void clearSearch();
    void addLine();
    /// Shows the stored search of this name, of several the selected one if it is among them; the empty name
    /// shows none.
    void reloadSearch(const QString &name);
    /// Selects the stored search of this id without showing it; nothing for an id that is not known.
    void selectEntry(const QString &id);
    /// Asks for a name and stores the rows as a new search.
    void saveSearch();
    /// Stores them over the selected one.
    void updateSearch();
    void deleteSearch();

signals:
    void modelReset();
    void filterUpdated();

protected:
    /// Tab goes through the rows of criteria and their buttons, and from the last one on to the rest.
    bool focusNextPrevChild(bool next) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    void criterionChanged(QTableWidgetItem *item);
    void leaveTable(QWidget *editor, QAbstractItemDelegate::EndEditHint hint);
    void chooseValues();
    void removeLine();
    void addRoles();
    void removeRoles();
    void markChanged() { setChanged(true); }
    void allStateChanged(int state);
    void showRoles();

private:
    // kelvaextsearch.cpp
    SearchRow searchRow(int row) const;
    const KelvaDelegate *delegateFor(const QString &field) const;
    QString fieldKey(int row) const;

    // kelvaextsearch_rows.cpp
    QTableWidgetItem *cell(int row, int column) const;
    QString cellText(int row, int column) const;
    KelvaDelegate *valueDelegate(int row) const;
    KelvaComboDelegate *operatorDelegate(int row) const;
    int appendRow();
    int rowOf(const QObject *button) const;
    int columnOf(int row, const QWidget *button) const;
    QWidget *stopBehind(int row, int column, bool forward);
    void addButtons(int row);
    void filterChanged(int row);
    void replaceValueDelegate(int row, const KelvaDelegate *source);
    void offerOperators(int row, const KelvaDelegate *source);
    void operatorChanged(int row);
    void valueChanged(QTableWidgetItem *item);
    void closeEditors(int row, std::initializer_list<int> columns);
    bool isOrRow(int row) const;
    int rowsBelow(int row) const;
    void makeOrRow(int row, const QString &op, const QString &displayText);
    void fixHead(int row);
    void freeHead(int row);
    void insertOrRow(int row, const QTableWidgetItem *value);
    void removeRows(int row, int count);

    // kelvaextsearch_templates.cpp
    void loadSearchDefs();
    void updateFilterModel(const QList<SearchTemplate> &searches);
    void showNone();
    QString askName();
    QString newestOfName(const QString &name) const;
    void loadRow(const TemplateRow &row);
    QList<TemplateRow> templateRows() const;
    bool checkCriteria();
    QStringList rolesToSave() const;
    void showAssignedRoles(const QStringList &roles);
    void initUsersAndRoles();
    void updateButtons();
    void setChanged(bool changed);
    void checkIfAllUsers();
    void checkForSave();

    const std::unique_ptr<Ui::KelvaExtSearch> m_ui;
    const bool m_offline;
    DelegateLookup m_lookup;
    QList<KelvaDelegate *> m_delegates;
    QStringList m_fields; ///< keys, in the order of setFilters()
    KelvaComboDelegate *m_fieldDelegate;
    KelvaDelegateWrapper *m_cells; ///< every cell's delegate
    QString m_fullText;
    ClassifyInterface *m_client = nullptr;
    FilterModel *m_filterModel;
    QStringList m_allRoles;
    QString m_personalRole;
    bool m_templateAdmin = false;
    bool m_simple = false;
    bool m_changed = false;
};
