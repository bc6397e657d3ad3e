#pragma once

#include <QFile>
#include <QString>

#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** What may lie where a program expects a file of its own; whoever reads it as it is waits or reads for ever.
 */
struct OddFile
{
    const char* name;
    bool (*put)(const char* path);
};

inline const OddFile oddFiles[] = {
    {"pipe", [](const char* path) { return ::mkfifo(path, 0600) == 0; }},
    {"link to an endless device", [](const char* path) { return ::symlink("/dev/zero", path) == 0; }},
    {"folder",
     [](const char* path) {
         return ::mkdir(path, 0700) == 0 && ::mkdir((std::string(path) + "/inner").c_str(), 0700) == 0;
     }},
    {"larger than everything",
     [](const char* path) {
         const int file = ::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
         return ::ftruncate(file, 3LL << 30) == 0 && ::close(file) == 0;
     }},
};

/** Puts it at `path`, in the place of what is there (a folder only when it is empty). */
inline bool putOddFile(const OddFile& odd, const QString& path)
{
    QFile::remove(path);
    return odd.put(QFile::encodeName(path).constData());
}
