#include "extract/htmltext.h"

#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>

namespace kelva {
namespace {

/// Names of U+00A0 to U+00FF in their order.
const char latinNames[] =
    "nbsp iexcl cent pound curren yen brvbar sect uml copy ordf laquo not shy reg macr deg plusmn sup2 sup3 "
    "acute micro para middot cedil sup1 ordm raquo frac14 frac12 frac34 iquest Agrave Aacute Acirc Atilde "
    "Auml Aring AElig Ccedil Egrave Eacute Ecirc Euml Igrave Iacute Icirc Iuml ETH Ntilde Ograve Oacute "
    "Ocirc Otilde Ouml times Oslash Ugrave Uacute Ucirc Uuml Yacute THORN szlig agrave aacute acirc atilde "
    "auml aring aelig ccedil egrave eacute ecirc euml igrave iacute icirc iuml eth ntilde ograve oacute "
    "ocirc otilde ouml divide oslash ugrave uacute ucirc uuml yacute thorn yuml";

QHash<QString, uint> makeNames()
{
    QHash<QString, uint> names{{QStringLiteral("amp"), '&'},      {QStringLiteral("lt"), '<'},
                               {QStringLiteral("gt"), '>'},       {QStringLiteral("quot"), '"'},
                               {QStringLiteral("apos"), '\''},    {QStringLiteral("euro"), 0x20ac},
                               {QStringLiteral("ndash"), 0x2013}, {QStringLiteral("mdash"), 0x2014},
                               {QStringLiteral("lsquo"), 0x2018}, {QStringLiteral("rsquo"), 0x2019},
                               {QStringLiteral("ldquo"), 0x201c}, {QStringLiteral("rdquo"), 0x201d},
                               {QStringLiteral("bdquo"), 0x201e}, {QStringLiteral("hellip"), 0x2026},
                               {QStringLiteral("oelig"), 0x153},  {QStringLiteral("scaron"), 0x161}};
    uint code = 0xa0;
    for (const QString &name : QString::fromLatin1(latinNames).split(QLatin1Char(' ')))
        names.insert(name, code++);
    return names;
}

uint referencedCharacter(const QString &name)
{
    static const QHash<QString, uint> names = makeNames();
    if (!name.startsWith(QLatin1Char('#')))
        return names.value(name);
    const bool hexadecimal = name.midRef(1, 1).compare(QLatin1Char('x'), Qt::CaseInsensitive) == 0;
    bool isNumber = false;
    const uint code = hexadecimal ? name.midRef(2).toUInt(&isNumber, 16) : name.midRef(1).toUInt(&isNumber);
    return isNumber && code <= 0x10ffff && !(code >= 0xd800 && code < 0xe000) ? code : 0;
}

/// Reads a reference whose "&" stands at the place. Returns the place behind it; an "&" that begins none
/// stands for itself.
int appendReference(const QString &page, int at, QString *text)
{
    constexpr int longestName = 10;
    // Looked for no further than a name reaches: a page may be made of nothing but "&".
    const int length = page.midRef(at, longestName + 1).indexOf(QLatin1Char(';'));
    const uint code = length > 0 ? referencedCharacter(page.mid(at + 1, length - 1)) : 0;
    if (code == 0) {
        text->append(QLatin1Char('&'));
        return at + 1;
    }
    text->append(QString::fromUcs4(&code, 1));
    return at + length + 1;
}

/// Words go on across these.
bool isInline(const QString &tag)
{
    static const QSet<QString> names{QStringLiteral("a"),    QStringLiteral("abbr"), QStringLiteral("b"),
                                     QStringLiteral("em"),   QStringLiteral("font"), QStringLiteral("i"),
                                     QStringLiteral("mark"), QStringLiteral("s"),    QStringLiteral("small"),
                                     QStringLiteral("span"), QStringLiteral("u"),    QStringLiteral("strong"),
                                     QStringLiteral("sub"),  QStringLiteral("sup"),  QStringLiteral("wbr")};
    return names.contains(tag);
}

QString tagName(const QString &page, int at)
{
    QString name;
    constexpr int longestName = 20;
    for (; at < page.size() && name.size() < longestName && page.at(at).isLetterOrNumber(); ++at)
        name += page.at(at).toLower();
    return name;
}

/// The place behind a tag, ">" in a quoted value left aside; a tag that is never closed reaches to the end.
int endOfTag(const QString &page, int at)
{
    QChar quote;
    for (; at < page.size(); ++at) {
        const QChar c = page.at(at);
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
        } else if (c == QLatin1Char('>')) {
            return at + 1;
        }
    }
    return page.size();
}

int behind(const QString &page, const QString &mark, int at)
{
    const int found = page.indexOf(mark, at, Qt::CaseInsensitive);
    return found < 0 ? page.size() : found + mark.size();
}

/// The place behind a tag, a comment, or the whole of a script.
int skipMarkup(const QString &page, int at, QString *text)
{
    if (page.midRef(at, 4) == QLatin1String("<!--"))
        return behind(page, QStringLiteral("-->"), at + 4);
    const bool closing = page.midRef(at + 1, 1) == QLatin1String("/");
    const QString name = tagName(page, at + (closing ? 2 : 1));
    if (!isInline(name))
        text->append(QLatin1Char('\n'));
    int end = endOfTag(page, at + 1);
    if (!closing && (name == QLatin1String("script") || name == QLatin1String("style")))
        end = endOfTag(page, behind(page, QStringLiteral("</") + name, end));
    return end;
}

} // namespace

QString textOfHtml(const QString &page)
{
    QString text;
    for (int at = 0; at < page.size();) {
        const QChar c = page.at(at);
        const QChar next = at + 1 < page.size() ? page.at(at + 1) : QChar();
        if (c == QLatin1Char('<') && (next.isLetter() || next == QLatin1Char('/') ||
                                      next == QLatin1Char('!') || next == QLatin1Char('?'))) {
            at = skipMarkup(page, at, &text);
        } else if (c == QLatin1Char('&')) {
            at = appendReference(page, at, &text);
        } else {
            text += c;
            ++at;
        }
    }
    // Soft hyphens only say where a word may be broken.
    return text.remove(QChar(0xad));
}

ExtractedText htmlText(QFile &file, const TextLimits &limits)
{
    const QByteArray bytes = file.read(std::min<qint64>(limits.unpackedBytes, limits.characters * qint64(4)));
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    QTextCodec *codec = QTextCodec::codecForHtml(bytes, QTextCodec::codecForName("UTF-8"));
    return textOfHtml(codec->toUnicode(bytes)).left(limits.characters);
}

} // namespace kelva
