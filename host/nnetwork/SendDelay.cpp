#include "nnetwork/SendDelay.h"

#include <dirent.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <cstdlib>
#include <memory>

namespace nnetwork {
namespace {

struct DirectoryCloser
{
    void operator()(DIR* directory) const { ::closedir(directory); }
};

/** 0 when the descriptor is no connection to an address. */
int peerPortOf(int descriptor)
{
    union {
        sockaddr any;
        sockaddr_in four;
        sockaddr_in6 six;
    } peer = {};
    socklen_t size = sizeof peer;
    if (::getpeername(descriptor, &peer.any, &size) != 0)
        return 0;
    if (peer.any.sa_family == AF_INET)
        return ntohs(peer.four.sin_port);
    return peer.any.sa_family == AF_INET6 ? ntohs(peer.six.sin6_port) : 0;
}

} // namespace

void turnOffSendDelay(int peerPort)
{
    const std::unique_ptr<DIR, DirectoryCloser> directory(::opendir("/proc/self/fd"));
    if (!directory || peerPort <= 0)
        return;
    while (const dirent* entry = ::readdir(directory.get())) {
        // A descriptor that another thread closes meanwhile makes these calls fail, and that is all.
        const int descriptor = std::atoi(entry->d_name);
        const int on = 1;
        if (peerPortOf(descriptor) == peerPort)
            ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
}

} // namespace nnetwork
