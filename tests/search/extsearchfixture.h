#pragma once

#include "fakes/fakeclassifyclient.h"

#include "folders/kelvadoctree.h"
#include "search/kelvaextsearch.h"

#include <QComboBox>
#include <QTableWidget>
#include <QToolButton>

#include <memory>

/// The extended search with a field of every kind, on a screen and against the fake archive, driven as a user
/// drives it.
class ExtSearchFixture
{
public:
    /// Fields: Id (no editor), Status, Kind, Description, Amount, Folder, Paid, Date, full text.
    explicit ExtSearchFixture(bool offline = false);

    /// Logs in with the fake archive's rights.
    void connectClient();
    QTableWidget *table() const { return dialog->findChild<QTableWidget *>("m_extSearchTable"); }
    QString text(int row, int column) const { return table()->item(row, column)->text(); }
    /// Editor of a field or an operator; null when it is closed.
    QComboBox *editor(int row, int column) const;
    /// Chooses in such an editor; false when the text is not offered.
    bool choose(int row, int column, const QString &choice);
    QToolButton *button(int row, int column) const;
    /// Chooses field and operator in the last row and sets its value.
    void fill(const QString &field, const QString &op, const QString &value,
              const QString &stored = QString());
    QComboBox *savedSearches() const { return dialog->findChild<QComboBox *>("m_SavedSearch"); }
    void click(const char *name) const { dialog->findChild<QAbstractButton *>(name)->click(); }
    /// One line for each row: texts of its cells, "/" between.
    QString rows() const;

    FakeClassifyClient client;
    KelvaDocTree tree;
    std::unique_ptr<KelvaExtSearch> dialog;
};
