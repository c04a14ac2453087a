#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Small, real files for the sample archive: they open in the programs that such files open in.
namespace kelva::samplefiles {

/// One page of text lines. Characters outside Latin-1 become question marks.
QByteArray pdf(const QStringList &lines);
QByteArray text(const QStringList &lines);
/// A spreadsheet with one table, in the flat form of OpenDocument. Cells that are numbers become numbers.
QByteArray spreadsheet(const QList<QStringList> &rows);
/// A PNG picture of coloured bars, different for each number.
QByteArray picture(int number);

} // namespace kelva::samplefiles
