#pragma once

#include <QStringList>

class QMimeData;

/// Documents that are dragged within this program.
namespace documentmime {

/// The format: private to this process, so that a second client takes such a drag for a foreign one. Its data
/// is a QDataStream of the classification ids, each a QString.
QString type();
/// The ids of the dragged documents, each once. Empty when the data is of another format, is damaged, holds
/// something that is no id, or more documents than any list shows.
QStringList documentIds(const QMimeData *data);

} // namespace documentmime
