#pragma once

#include <QColor>
#include <QDate>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

/// What the look of a row depends on beside the row itself.
struct DocumentRowContext
{
    QDate today;
    bool noEdit = true; ///< the session is read-only
    bool trash = false;
    /// Document type to retention "years;months;days".
    QMap<QString, QString> retention;
    /// Archive ids that the user has opened; only looked at when marksUnread is set.
    bool marksUnread = false;
    QSet<QString> opened;
};

/// How one document row is shown.
struct DocumentRowLook
{
    enum class Clock { None, Red, Yellow, Green, Plain };

    QString archiveId;
    QString classificationId;
    bool redPage = false; ///< instead of the icon of the file's type
    Clock clock = Clock::None;
    bool note = false;
    bool key = false;
    bool readOnly = false;
    bool unread = false;
    bool resubmission = false;
    QColor background; ///< invalid: none
    QString toolTip;
    bool retention = false;
    QDate retentionEnd; ///< invalid: none is known
};

/// fields: a row of getDocuments() with its rights letters last.
DocumentRowLook documentRowLook(const QStringList &fields, const DocumentRowContext &context);

Qt::ItemFlags documentCellFlags(int column, bool readOnly, bool trash);

/// A number as it is shown: with the locale's decimal point, and with a trailing ",00" cut to ",". The point
/// that stays behind is meant to; the line editor takes it off again.
QString numericCellText(QString value, QChar decimalPoint);

/// End of the retention period; invalid unless retention is "years;months;days".
QDate retentionEnd(const QDate &documentDate, const QString &retention);

/// Whether the header row of an answer names the attributes that the vocabulary has: rows of title and field
/// key, one row too many. What is typed into a column would otherwise be stored as another attribute.
bool sameAttributes(const QString &header, const QStringList &vocabulary);
