#include "shell/system/StandardStreams.h"

#include <cstdio>
#include <fcntl.h>

namespace shell {

namespace {

FileDescriptor duplicate(int descriptor)
{
    return FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 3));
}

} // namespace

ControlStreams takeStandardStreams()
{
    std::fflush(stdout);
    ControlStreams streams{duplicate(STDIN_FILENO), duplicate(STDOUT_FILENO)};
    const FileDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ::dup2(nothing.get(), STDIN_FILENO);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
    return streams;
}

} // namespace shell
