#pragma once

#include <QString>

#include <optional>

namespace kelva {

/// How the text of a file is found.
enum class FileKind {
    Pdf,
    Plain,
    Html,
    OpenDocument,     ///< zipped
    FlatOpenDocument, ///< one XML file
    OfficeOpenXml,
};

/// The kind that a file name's suffix stands for; none for files that hold no text, pictures for example.
std::optional<FileKind> kindOfFile(const QString &fileName);

/// The word for a kind on the command line of kelvatextract, and back.
QString kindName(FileKind kind);
std::optional<FileKind> kindNamed(const QString &name);

} // namespace kelva
