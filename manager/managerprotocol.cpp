#include "manager/managerprotocol.h"

#include <QDataStream>

#include <algorithm>
#include <limits>

#include <unistd.h>

namespace kelva {
namespace {

constexpr int streamVersion = QDataStream::Qt_4_4;
const char lineEnd[] = "\r\n";
constexpr int lineEndSize = 2;

bool parseNumber(const QByteArray &text, qint64 &number)
{
    bool isNumber = false;
    number = text.toLongLong(&isNumber);
    // toLongLong() would also take blanks and a plus.
    return isNumber && text == QByteArray::number(number);
}

bool parseUse(const QByteArray &rest, Request &request)
{
    const int afterPid = rest.indexOf('#');
    const int afterId = rest.indexOf('#', afterPid + 1);
    if (afterPid < 0 || afterId < 0 || !parseNumber(rest.left(afterPid), request.pid) || request.pid <= 0 ||
        request.pid > std::numeric_limits<pid_t>::max() ||
        !parseNumber(rest.mid(afterPid + 1, afterId - afterPid - 1), request.profileId))
        return false;
    // A "#" inside belongs to the program's path, only the last one is a mark.
    QByteArray program = rest.mid(afterId + 1);
    request.wasOnlyOne = program.endsWith('#');
    if (request.wasOnlyOne)
        program.chop(1);
    request.program = QString::fromUtf8(program);
    request.kind = Request::Kind::UseProfile;
    return !program.isEmpty();
}

bool parseBase64(const QByteArray &text, QString &decoded)
{
    const auto bytes = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    decoded = QString::fromUtf8(bytes.decoded);
    return bytes.decodingStatus == QByteArray::Base64DecodingStatus::Ok;
}

bool parseChange(const QByteArray &rest, Request &request)
{
    const QList<QByteArray> parts = rest.split('#');
    request.kind = Request::Kind::ChangePassword;
    return parts.size() == 3 && parseNumber(parts.at(0), request.profileId) &&
           parseBase64(parts.at(1), request.oldPassword) && parseBase64(parts.at(2), request.newPassword);
}

} // namespace

QVector<Request> RequestParser::feed(const QByteArray &bytes)
{
    QVector<Request> requests;
    if (!m_error.isEmpty())
        return requests;
    // The line end may have been cut in two; what lies before was searched already.
    const int searched = std::max(0, m_pending.size() - 1);
    m_pending += bytes;
    int start = 0;
    for (int end = m_pending.indexOf(lineEnd, searched); end >= 0; end = m_pending.indexOf(lineEnd, start)) {
        Request request;
        if (end - start > longestLine || !parse(m_pending.mid(start, end - start), request)) {
            m_error = QStringLiteral("a line that is no request");
            break;
        }
        requests << request;
        start = end + lineEndSize;
    }
    m_pending.remove(0, start);
    const int lineSize = m_pending.size() - (m_pending.endsWith('\r') ? 1 : 0);
    if (m_error.isEmpty() && lineSize > longestLine)
        m_error = QStringLiteral("a line that is too long");
    if (!m_error.isEmpty())
        m_pending.clear();
    return requests;
}

bool RequestParser::parse(const QByteArray &line, Request &request)
{
    const QByteArray use = "USEPROFILE#";
    const QByteArray reload = "RELOADPROFILE#";
    const QByteArray change = "CHANGEPASSWORD#";
    if (line == "GETPROFILES") {
        request.kind = Request::Kind::ListProfiles;
        return true;
    }
    if (line == "SHOWWINDOW") {
        request.kind = Request::Kind::ShowWindow;
        return true;
    }
    if (line.startsWith(use))
        return parseUse(line.mid(use.size()), request);
    if (line.startsWith(change))
        return parseChange(line.mid(change.size()), request);
    request.kind = Request::Kind::ReloadProfile;
    return line.startsWith(reload) && parseNumber(line.mid(reload.size()), request.profileId);
}

QByteArray profileListAnswer(const QList<Profile> &profiles)
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << QStringLiteral("Kelva");
    for (const Profile &profile : profiles)
        stream << profile;
    QByteArray answer;
    QDataStream head(&answer, QIODevice::WriteOnly);
    head << qint64(content.size());
    return answer + content;
}

QByteArray lineAnswer(const QString &text)
{
    QByteArray line = text.toUtf8();
    line.replace('\r', ' ').replace('\n', ' ');
    return line + lineEnd;
}

QString socketName()
{
    return QStringLiteral("Kelva-") + QString::number(getuid(), 16);
}

} // namespace kelva
