#pragma once

#include "documents/fieldkind.h"

#include <QObject>
#include <QString>

class KelvaDelegate;
class QTableWidget;
class QTableWidgetItem;

/// The input of the one-line search: a table of one cell, so that the delegates of the document columns serve
/// it.
class SearchCell final : public QObject
{
    Q_OBJECT

public:
    /// A child of the table, which it sets up.
    explicit SearchCell(QTableWidget *table);

    /// An empty cell for words.
    void takeWords();
    /// An empty cell that is edited as the column of this delegate, or not at all. A list stands open on its
    /// first entry.
    void takeLike(const KelvaDelegate *column);
    /// An empty cell; what edits it stays.
    void clear();
    void setEnabled(bool enable);
    /// Starts editing.
    void edit();

    /// Plain when nothing edits it.
    FieldKind kind() const;
    bool isTyped() const { return kind() == FieldKind::Text || kind() == FieldKind::Number; }
    QString text() const;
    /// Without entered().
    void setText(const QString &text);
    /// What is searched for: the stored value; of a list also the key of a name that was typed instead of
    /// chosen.
    QString value() const;

signals:
    /// Something was entered, and the editor that it was entered into is done with it.
    void entered();

private slots:
    void noteEntry();
    void announce();

private:
    QTableWidgetItem *cell() const;
    void replace(KelvaDelegate *delegate);
    void openList(const KelvaDelegate *delegate);

    QTableWidget *m_table;
    bool m_noted = false;
};
