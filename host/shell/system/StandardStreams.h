#pragma once

#include "shell/system/FileDescriptor.h"

namespace shell {

/** The standard streams as the process got them, out of reach of libraries and child processes. */
struct ControlStreams
{
    FileDescriptor input;
    FileDescriptor output;
};

/**
 * Takes standard input and output away: from now on everything that writes to standard output writes to
 * standard error, and standard input is empty. Must run before threads and child processes are started. False
 * descriptors when the process was started without the streams.
 */
ControlStreams takeStandardStreams();

} // namespace shell
