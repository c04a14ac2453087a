#include "extract/xmltext.h"

#include <QFile>

#include <algorithm>

namespace kelva {
namespace {

template<std::size_t Count>
bool isOneOf(const QStringRef &name, const char *const (&names)[Count])
{
    return std::any_of(std::begin(names), std::end(names),
                       [&](const char *other) { return name == QLatin1String(other); });
}

} // namespace

bool XmlText::read(QIODevice &device)
{
    constexpr qint64 pieceSize = 64 * 1024;
    QXmlStreamReader xml;
    xml.setEntityExpansionLimit(0);
    m_textDepth = 0;
    m_skipDepth = 0;
    while (!isFull()) {
        xml.readNext();
        if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
            const QByteArray piece = device.read(pieceSize);
            m_unpacked += piece.size();
            if (piece.isEmpty() || m_unpacked > m_limits.unpackedBytes)
                return false;
            xml.addData(piece);
        } else if (xml.hasError() || !take(xml)) {
            return false;
        } else if (xml.atEnd()) {
            return true;
        }
    }
    return true;
}

bool XmlText::take(const QXmlStreamReader &xml)
{
    switch (xml.tokenType()) {
    case QXmlStreamReader::DTD:
    case QXmlStreamReader::EntityReference:
        return false;
    case QXmlStreamReader::StartElement:
        startElement(xml);
        break;
    case QXmlStreamReader::EndElement:
        endElement(xml);
        break;
    case QXmlStreamReader::Characters:
        if (m_textDepth > 0 && m_skipDepth == 0)
            m_text += xml.text();
        break;
    default:
        break;
    }
    return true;
}

bool XmlText::isText(const QXmlStreamReader &xml) const
{
    if (m_format == Format::OpenDocument)
        return isOneOf(xml.name(), {"p", "h"});
    return xml.name() == QLatin1String("t") || (m_cellIsText && xml.name() == QLatin1String("v"));
}

/// Pictures, deleted passages, and how words are pronounced.
bool XmlText::isSkipped(const QXmlStreamReader &xml) const
{
    return m_format == Format::OpenDocument ? isOneOf(xml.name(), {"binary-data", "tracked-changes"})
                                            : xml.name() == QLatin1String("rPh");
}

void XmlText::startElement(const QXmlStreamReader &xml)
{
    if (m_skipDepth > 0 || isSkipped(xml)) {
        ++m_skipDepth;
        return;
    }
    // The value of a cell is a number, a text, or the place of a text that stands elsewhere.
    if (xml.name() == QLatin1String("c")) {
        const QXmlStreamAttributes attributes = xml.attributes();
        const QStringRef type = attributes.value(QLatin1String("t"));
        m_cellIsText = type.isEmpty() || isOneOf(type, {"n", "str", "d"});
    }
    if (isText(xml))
        ++m_textDepth;
    else if (isOneOf(xml.name(), {"tab", "br", "cr", "s", "line-break"}))
        m_text += QLatin1Char(' ');
}

void XmlText::endElement(const QXmlStreamReader &xml)
{
    if (m_skipDepth > 0) {
        --m_skipDepth;
        return;
    }
    if (isText(xml))
        --m_textDepth;
    if (isOneOf(xml.name(), {"p", "h", "si", "c"}))
        m_text += QLatin1Char('\n');
}

ExtractedText flatOpenDocumentText(const QString &path, const TextLimits &limits)
{
    QFile file(path);
    XmlText text(XmlText::Format::OpenDocument, limits);
    if (!file.open(QIODevice::ReadOnly) || !text.read(file))
        return std::nullopt;
    return text.text();
}

} // namespace kelva
