#include "shell/system/QuitSignals.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>

namespace shell {

namespace {

constexpr std::array<int, 3> quitSignals = {SIGTERM, SIGINT, SIGHUP};

/** The pipe's end that the handler writes to; -1 when nobody listens. */
std::atomic<int> wakeUpEnd{-1};

void onSignal(int)
{
    const int savedError = errno;
    const char byte = 1;
    // A full pipe has woken the other side already.
    [[maybe_unused]] const ssize_t ignored = ::write(wakeUpEnd.load(), &byte, 1);
    errno = savedError;
}

void handleQuitSignals(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : quitSignals)
        ::sigaction(signal, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals(QObject* parent)
    : QObject(parent)
{
    std::array<int, 2> ends = {-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        qWarning("No pipe for signals: they end the shell without further ado");
        return;
    }
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(m_readEnd.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &QuitSignals::onReadable);
    wakeUpEnd.store(m_writeEnd.get());
    handleQuitSignals(&onSignal);
}

QuitSignals::~QuitSignals()
{
    if (!m_writeEnd)
        return;
    handleQuitSignals(SIG_DFL);
    wakeUpEnd.store(-1);
}

void QuitSignals::onReadable()
{
    std::array<char, 16> bytes = {};
    while (::read(m_readEnd.get(), bytes.data(), bytes.size()) > 0) {
    }
    Q_EMIT quitRequested();
}

} // namespace shell
