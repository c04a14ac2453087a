#include "admin/samplefiles.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QXmlStreamWriter>

namespace {

QByteArray pdfString(const QString &line)
{
    QByteArray bytes = line.toLatin1();
    bytes.replace('\\', "\\\\").replace('(', "\\(").replace(')', "\\)");
    return '(' + bytes + ')';
}

} // namespace

QByteArray kelva::samplefiles::pdf(const QStringList &lines)
{
    QByteArray page = "BT /F1 11 Tf 14 TL 72 780 Td\n";
    for (const QString &line : lines)
        page += pdfString(line) + " Tj T*\n";
    page += "ET\n";
    const QList<QByteArray> objects{
        "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
        "/Resources << /Font << /F1 5 0 R >> >> >>",
        "<< /Length " + QByteArray::number(page.size()) + " >>\nstream\n" + page + "endstream",
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>"};

    QByteArray file = "%PDF-1.4\n";
    QByteArray table = "0000000000 65535 f \n";
    for (int i = 0; i < objects.size(); ++i) {
        table += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
        file += QByteArray::number(i + 1) + " 0 obj\n" + objects.at(i) + "\nendobj\n";
    }
    const QByteArray count = QByteArray::number(objects.size() + 1);
    const QByteArray start = QByteArray::number(file.size());
    file += "xref\n0 " + count + '\n' + table + "trailer\n<< /Size " + count +
            " /Root 1 0 R >>\nstartxref\n" + start + "\n%%EOF\n";
    return file;
}

QByteArray kelva::samplefiles::text(const QStringList &lines)
{
    return lines.join(QLatin1Char('\n')).toUtf8() + '\n';
}

QByteArray kelva::samplefiles::spreadsheet(const QList<QStringList> &rows)
{
    const QString office = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:office:1.0");
    const QString table = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:table:1.0");
    const QString textNamespace = QStringLiteral("urn:oasis:names:tc:opendocument:xmlns:text:1.0");
    QByteArray file;
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeNamespace(office, QStringLiteral("office"));
    xml.writeNamespace(table, QStringLiteral("table"));
    xml.writeNamespace(textNamespace, QStringLiteral("text"));
    xml.writeStartElement(office, QStringLiteral("document"));
    xml.writeAttribute(office, QStringLiteral("version"), QStringLiteral("1.2"));
    xml.writeAttribute(office, QStringLiteral("mimetype"),
                       QStringLiteral("application/vnd.oasis.opendocument.spreadsheet"));
    xml.writeStartElement(office, QStringLiteral("body"));
    xml.writeStartElement(office, QStringLiteral("spreadsheet"));
    xml.writeStartElement(table, QStringLiteral("table"));
    xml.writeAttribute(table, QStringLiteral("name"), QStringLiteral("Sheet1"));
    for (const QStringList &row : rows) {
        xml.writeStartElement(table, QStringLiteral("table-row"));
        for (const QString &cell : row) {
            bool isNumber = false;
            cell.toDouble(&isNumber);
            xml.writeStartElement(table, QStringLiteral("table-cell"));
            xml.writeAttribute(office, QStringLiteral("value-type"),
                               isNumber ? QStringLiteral("float") : QStringLiteral("string"));
            if (isNumber)
                xml.writeAttribute(office, QStringLiteral("value"), cell);
            xml.writeTextElement(textNamespace, QStringLiteral("p"), cell);
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return file;
}

QByteArray kelva::samplefiles::picture(int number)
{
    QImage image(240, 160, QImage::Format_RGB32);
    for (int x = 0; x < image.width(); ++x) {
        const QColor colour = QColor::fromHsv((number * 47 + x / 24 * 31) % 360, 120, 220);
        for (int y = 0; y < image.height(); ++y)
            image.setPixelColor(x, y,
                                y > 160 - (x / 24 * 37 + number * 13) % 150 ? colour : QColor(Qt::white));
    }
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return file;
}
