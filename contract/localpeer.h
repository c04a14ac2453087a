#pragma once

#include <QLocalSocket>

#include <sys/socket.h>
#include <unistd.h>

/// The program at the other end of a connected socket is one of this user. Sockets lie in a directory in
/// which others may have laid one of the same name.
inline bool isPeerOfUser(const QLocalSocket &socket, uid_t user = ::getuid())
{
    ucred peer = {};
    socklen_t size = sizeof(peer);
    const int descriptor = static_cast<int>(socket.socketDescriptor());
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == user;
}
