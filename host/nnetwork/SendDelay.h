#pragma once

namespace nnetwork {

/**
 * Lets this process's TCP connections to `peerPort` send what they have at once. The access manager writes a
 * request's head and body one after the other and shows nobody its sockets; without this the body waits on a
 * connection in use until the server acknowledges the head, which systems put off for about 40 ms.
 */
void turnOffSendDelay(int peerPort);

} // namespace nnetwork
