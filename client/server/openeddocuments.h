#pragma once

#include <QDateTime>
#include <QStringList>

class QSettings;

/// Copies of documents that stay behind when the program ends: a viewer may still show them, or the user may
/// have changed them. They are taken down in the settings, so that a later start can clear up after this one.
namespace openeddocuments {

/// To be called when the copy is whole, before anybody else gets it.
void note(QSettings &settings, const QString &path, const QDateTime &now);

/// Removes the copies that are more than a day old, as they were fetched, and open nowhere; forgets those
/// that are gone. Returns the ones that were changed since: these are never removed, and are forgotten with
/// this.
QStringList clearUp(QSettings &settings, const QDateTime &now);

} // namespace openeddocuments
