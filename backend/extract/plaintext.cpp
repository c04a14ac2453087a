#include "extract/plaintext.h"

#include <QFile>
#include <QTextCodec>

namespace kelva {

QString decodedText(const QByteArray &bytes)
{
    QTextCodec *utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec *codec = QTextCodec::codecForUtfText(bytes, utf8);
    // A character cut in two at the end is not invalid, it only remains.
    QTextCodec::ConverterState state;
    const QString text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 || codec != utf8)
        return text;
    QTextCodec *western = QTextCodec::codecForName("windows-1252");
    return western ? western->toUnicode(bytes) : QString::fromLatin1(bytes);
}

ExtractedText plainText(QFile &file, const TextLimits &limits)
{
    const QByteArray bytes = file.read(limits.characters);
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return decodedText(bytes);
}

} // namespace kelva
