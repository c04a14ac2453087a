#pragma once

#include <QByteArray>

struct evp_md_ctx_st;

namespace kelva {

/// SHA-256 of a content, 32 bytes, taken piece by piece. Uses the processor's own instructions for it.
class Checksum
{
public:
    Checksum();
    ~Checksum();
    Checksum(const Checksum &) = delete;
    Checksum &operator=(const Checksum &) = delete;

    static QByteArray of(const QByteArray &content);
    void add(const QByteArray &piece);
    /// Ends the calculation.
    QByteArray result();

private:
    evp_md_ctx_st *const m_context;
};

} // namespace kelva
