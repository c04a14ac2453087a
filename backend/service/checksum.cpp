#include "service/checksum.h"

#include <QtGlobal>

#include <openssl/evp.h>

namespace kelva {

Checksum::Checksum() : m_context(EVP_MD_CTX_new())
{
    Q_CHECK_PTR(m_context);
    EVP_DigestInit_ex(m_context, EVP_sha256(), nullptr);
}

Checksum::~Checksum()
{
    EVP_MD_CTX_free(m_context);
}

QByteArray Checksum::of(const QByteArray &content)
{
    Checksum checksum;
    checksum.add(content);
    return checksum.result();
}

void Checksum::add(const QByteArray &piece)
{
    EVP_DigestUpdate(m_context, piece.constData(), static_cast<size_t>(piece.size()));
}

QByteArray Checksum::result()
{
    constexpr int size = 32;
    QByteArray sum(size, '\0');
    EVP_DigestFinal_ex(m_context, reinterpret_cast<unsigned char *>(sum.data()), nullptr);
    return sum;
}

} // namespace kelva
