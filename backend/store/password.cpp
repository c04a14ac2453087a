#include "store/password.h"

#include <QByteArray>

#include <sodium.h>

namespace kelva {

QString hashPassword(const QString &password)
{
    if (sodium_init() < 0)
        return {};
    const QByteArray text = password.toUtf8();
    char hash[crypto_pwhash_STRBYTES];
    if (crypto_pwhash_str(hash, text.constData(), static_cast<unsigned long long>(text.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE, crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        return {};
    return QString::fromLatin1(hash);
}

bool isPassword(const QString &password, const QString &hash)
{
    if (sodium_init() < 0)
        return false;
    if (hash.isEmpty()) {
        hashPassword(password);
        return false;
    }
    const QByteArray text = password.toUtf8();
    return crypto_pwhash_str_verify(hash.toLatin1().constData(), text.constData(),
                                    static_cast<unsigned long long>(text.size())) == 0;
}

} // namespace kelva
