#include "extract/xmltext.h"

#include <QIODevice>

#include <algorithm>

namespace kelva {
namespace {

/// No office file comes near.
constexpr int deepest = 1000;

/// One in which the marks of elements are the bytes that they are in ASCII.
bool isCountable(const QStringRef &encoding)
{
    const char *const plain[] = {"utf-8", "us-ascii", "ascii", "iso-8859-", "windows-125"};
    return encoding.isEmpty() || std::any_of(std::begin(plain), std::end(plain), [&](const char *name) {
               return encoding.startsWith(QLatin1String(name), Qt::CaseInsensitive);
           });
}

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
    m_depth = 0;
    m_equals = 0;
    m_quotes = 0;
    while (!isFull()) {
        xml.readNext();
        if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
            const QByteArray piece = device.read(pieceSize);
            m_unpacked += piece.size();
            if (piece.isEmpty() || m_unpacked > m_limits.unpackedBytes || !mayRead(piece))
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

/// The reader compares each attribute of an element with all before it, so they are counted in what it gets:
/// "<" stands in no value, and each attribute has a "=" and two quotes.
bool XmlText::mayRead(const QByteArray &piece)
{
    constexpr int mostAttributes = 1000;
    for (const char c : piece) {
        if (c == '<')
            m_equals = m_quotes = 0;
        m_equals += c == '=';
        m_quotes += c == '"' || c == '\'';
        // In an encoding of two bytes these marks may be halves of others.
        if (c == '\0' || std::min(m_equals, m_quotes / 2) > mostAttributes)
            return false;
    }
    return true;
}

bool XmlText::take(const QXmlStreamReader &xml)
{
    switch (xml.tokenType()) {
    case QXmlStreamReader::StartDocument:
        return isCountable(xml.documentEncoding());
    case QXmlStreamReader::DTD:
    case QXmlStreamReader::EntityReference:
        return false;
    case QXmlStreamReader::StartElement:
        startElement(xml);
        return ++m_depth <= deepest;
    case QXmlStreamReader::EndElement:
        --m_depth;
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

ExtractedText flatOpenDocumentText(QIODevice &file, const TextLimits &limits)
{
    XmlText text(XmlText::Format::OpenDocument, limits);
    if (!text.read(file))
        return std::nullopt;
    return text.text();
}

} // namespace kelva
