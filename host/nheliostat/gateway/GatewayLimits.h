#pragma once

#include <chrono>
#include <cstddef>

/**
 * How long the gateway waits for its peers, and how much of a message it keeps that it cannot pass on yet.
 *
 * A limit of time is noticed up to a second late. Without any are: a handler that takes its time, a browser
 * that does not read what it asked for (paused media and downloads do that), and a tunnel whose both sides
 * are open.
 */
struct GatewayLimits
{
    using Time = std::chrono::milliseconds;

    // A browser's connection.
    Time idle = std::chrono::minutes(2);         //!< without a request; ended in order then
    Time requestHead = std::chrono::seconds(30); //!< from a head's first byte to its last; 408 then
    Time handshake = std::chrono::seconds(30);   //!< TLS
    /** For the rest of a body that nobody wants, and for a peer without credentials to read its refusal. */
    Time refused = std::chrono::seconds(30);
    Time farewell = std::chrono::seconds(5); //!< until the browser closes what has been ended

    // A server's.
    Time connect = std::chrono::seconds(30);    //!< name, connection and TLS together; 502 then
    Time serverIdle = std::chrono::seconds(30); //!< a connection kept for further requests
    Time answerHead = std::chrono::seconds(30); //!< as `requestHead`; 504 then
    /** Nothing moves although the gateway could take it: to or from the server, or after one side of a tunnel
     * has ended. 504, or the end of an answer under way. */
    Time silence = std::chrono::minutes(5);

    // Bytes, before and after anybody has shown credentials. A chunk head is its size with the extensions.
    static constexpr std::size_t requestHeadBytes = 64 * 1024;
    static constexpr std::size_t answerHeadBytes = 256 * 1024;
    static constexpr std::size_t chunkHeadBytes = 64 * 1024; //!< also the last one with the trailer

    /** Of one request, answers 1xx before the real one. */
    static constexpr int interimAnswers = 32;
};
