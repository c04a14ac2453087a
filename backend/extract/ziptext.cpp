#include "extract/ziptext.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <quazip.h>
#include <quazipfile.h>

namespace kelva {
namespace {

QStringList textParts(const QStringList &names, XmlText::Format format)
{
    const QRegularExpression wanted(
        format == XmlText::Format::OpenDocument
            ? QStringLiteral("^(content|styles)\\.xml$")
            : QStringLiteral("^(word/(document|header\\d*|footer\\d*|footnotes|endnotes|comments)\\.xml"
                             "|xl/(sharedStrings|worksheets/[^/]+)\\.xml"
                             "|ppt/(slides|notesSlides)/[^/]+\\.xml)$"));
    return names.filter(wanted);
}

} // namespace

ExtractedText zippedText(QFile &file, XmlText::Format format, const TextLimits &limits)
{
    QuaZip zip(&file);
    zip.setAutoClose(false);
    if (!zip.open(QuaZip::mdUnzip))
        return std::nullopt;
    const QStringList parts = textParts(zip.getFileNameList(), format);
    if (parts.isEmpty())
        return std::nullopt;
    XmlText text(format, limits);
    for (const QString &part : parts) {
        if (text.isFull())
            break;
        // What the directory says of the size is not believed: the reader counts.
        QuaZipFile member(&zip);
        if (!zip.setCurrentFile(part) || !member.open(QIODevice::ReadOnly) || !text.read(member))
            return std::nullopt;
    }
    return text.text();
}

} // namespace kelva
