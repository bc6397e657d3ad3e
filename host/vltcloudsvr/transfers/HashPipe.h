#pragma once

#include "vltcloudsvr/transfers/Sha1.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace vlt::cloudsvr {

/**
 * Adds bytes to a sum while the next ones are fetched: on a thread of its own, or, for few bytes, at once.
 * Nobody else touches the sum until `finish` or the end of the pipe.
 */
class HashPipe
{
public:
    static constexpr std::size_t pieceSize = 256UL * 1024;

    HashPipe(Sha1& sum, bool isThreaded);
    ~HashPipe();
    HashPipe(const HashPipe&) = delete;
    HashPipe& operator=(const HashPipe&) = delete;

    /** Room for the next `pieceSize` bytes; waits until there is some. */
    char* piece();
    /** The room that was got last holds so many bytes now. They can be read until the next call of `piece`.
     */
    void add(std::size_t size);
    /** Waits until everything is added. */
    void finish();

private:
    void run();

    Sha1& m_sum;
    std::vector<std::vector<char>> m_pieces;
    std::vector<std::size_t> m_sizes;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::size_t m_filled = 0; //!< pieces so far
    std::size_t m_summed = 0;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace vlt::cloudsvr
