#include "extract/filekind.h"

#include <QFileInfo>
#include <QStringList>

namespace kelva {
namespace {

struct Entry
{
    FileKind kind;
    const char *name;
    const char *suffixes;
};

const Entry entries[] = {
    {FileKind::Pdf, "pdf", "pdf"},
    {FileKind::Plain, "plain", "txt text csv tsv md log"},
    {FileKind::Html, "html", "html htm xhtml"},
    {FileKind::OpenDocument, "opendocument", "odt ods odp odg ott ots otp otg"},
    {FileKind::FlatOpenDocument, "flat-opendocument", "fodt fods fodp fodg"},
    {FileKind::OfficeOpenXml, "office-open-xml", "docx xlsx pptx docm xlsm pptm dotx xltx potx ppsx"},
};

} // namespace

std::optional<FileKind> kindOfFile(const QString &fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    for (const Entry &entry : entries)
        if (!suffix.isEmpty() && QString::fromLatin1(entry.suffixes).split(QLatin1Char(' ')).contains(suffix))
            return entry.kind;
    return std::nullopt;
}

QString kindName(FileKind kind)
{
    for (const Entry &entry : entries)
        if (entry.kind == kind)
            return QString::fromLatin1(entry.name);
    return {};
}

std::optional<FileKind> kindNamed(const QString &name)
{
    for (const Entry &entry : entries)
        if (name == QLatin1String(entry.name))
            return entry.kind;
    return std::nullopt;
}

} // namespace kelva
