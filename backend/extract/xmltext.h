#pragma once

#include "extract/extractedtext.h"

#include <QXmlStreamReader>

class QIODevice;

namespace kelva {

/// Gathers the text of the XML of office files. A document type is refused, and with it every entity: these
/// files never have one, and an entity can grow without end.
class XmlText
{
public:
    enum class Format { OpenDocument, OfficeOpenXml };

    XmlText(Format format, const TextLimits &limits) : m_format(format), m_limits(limits) {}

    /// Reads one XML file to its end, or until there is text enough; the limits hold for all files together.
    /// False when it is damaged or too large.
    bool read(QIODevice &device);
    bool isFull() const { return m_text.size() >= m_limits.characters; }
    QString text() const { return m_text.left(m_limits.characters); }

private:
    bool mayRead(const QByteArray &piece);
    bool take(const QXmlStreamReader &xml);
    void startElement(const QXmlStreamReader &xml);
    void endElement(const QXmlStreamReader &xml);
    bool isText(const QXmlStreamReader &xml) const;
    bool isSkipped(const QXmlStreamReader &xml) const;

    Format m_format;
    TextLimits m_limits;
    QString m_text;
    qint64 m_unpacked = 0;
    int m_textDepth = 0; ///< elements open whose characters are text
    int m_skipDepth = 0; ///< elements open from one whose whole content is left out
    bool m_cellIsText = false;
    int m_depth = 0;
    int m_equals = 0; ///< since the last "<"
    int m_quotes = 0;
};

ExtractedText flatOpenDocumentText(QIODevice &file, const TextLimits &limits);

} // namespace kelva
