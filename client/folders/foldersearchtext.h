#pragma once

#include <QString>

/// A found folder as rich text: the words of the search are bold, each after an anchor "myanchor" and its
/// number from 0 on. The text itself is taken as plain.
QString foundFolderText(const QString &text, const QString &search, int *matches);
