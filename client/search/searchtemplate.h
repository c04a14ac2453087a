#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// A row of criteria as a stored search keeps it.
struct TemplateRow
{
    QString field; ///< display text
    QString op;    ///< operator, not its display text; with searchtext::takeOrPrefix()'s prefix or without
    QString valueText;   ///< display text
    QString storedValue; ///< empty where the text is the value
};

/// Rows joined by recordformat::rowSeparator, their four fields by recordformat::listSeparator. Separators
/// inside a text are dropped.
QString writeTemplateRows(const QList<TemplateRow> &rows);
/// Also reads rows of three fields, which have no stored value.
QList<TemplateRow> readTemplateRows(const QString &content);

/// A search stored in the archive, open to the users of its roles.
struct SearchTemplate
{
    QString id;
    QString name;
    QString content;
    QStringList roles;

    /// From a record of getSearches().
    static SearchTemplate parse(const QString &record);
    /// Whether it is for the user of this personal role alone. Any other search is a global one.
    bool isPersonal(const QString &personalRole) const;
};

/// "r_" and the login.
QString personalRole(const QString &login);
