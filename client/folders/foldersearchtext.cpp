#include "folders/foldersearchtext.h"

#include <QRegularExpression>
#include <QStringList>

QString foundFolderText(const QString &text, const QString &search, int *matches)
{
    *matches = 0;
    QStringList words = search.split(' ', Qt::SkipEmptyParts);
    for (QString &word : words)
        word = QRegularExpression::escape(word);
    if (words.isEmpty())
        return text.toHtmlEscaped();
    const QRegularExpression pattern('(' + words.join('|') + ')', QRegularExpression::CaseInsensitiveOption);
    QString html;
    int end = 0;
    for (auto found = pattern.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        html += text.mid(end, match.capturedStart() - end).toHtmlEscaped();
        html += QStringLiteral("<a name=\"myanchor%1\"><b>").arg(*matches); // the anchor is not closed
        html += match.captured().toHtmlEscaped() + QStringLiteral("</b>");
        end = match.capturedEnd();
        ++*matches;
    }
    return html + text.mid(end).toHtmlEscaped();
}
