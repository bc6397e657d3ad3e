#include "gateway/LocalFiles.h"

#include "gateway/CacheRules.h"

#include <QDateTime>
#include <QLocale>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <memory>

namespace gateway {
namespace {

const auto httpDate = QStringLiteral("ddd, dd MMM yyyy hh:mm:ss 'GMT'");

std::optional<char> hexPair(std::string_view text)
{
    if (text.size() != 2 || !std::isxdigit(static_cast<unsigned char>(text[0])) ||
        !std::isxdigit(static_cast<unsigned char>(text[1])))
        return std::nullopt;
    return static_cast<char>(std::strtol(std::string(text).c_str(), nullptr, 16));
}

bool climbs(std::string_view path)
{
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        if (path.substr(0, slash) == "..")
            return true;
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
    }
    return false;
}

std::string realPath(const std::string& path)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), std::free);
    return resolved ? resolved.get() : std::string();
}

/** Where an open file really is: no later change of links can make this answer wrong. */
std::string pathOfDescriptor(int descriptor)
{
    std::array<char, PATH_MAX> path;
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return size > 0 ? std::string(path.data(), static_cast<std::size_t>(size)) : std::string();
}

/**
 * Unpackers restore modification times, so another file of equal size and time may come to lie at the place:
 * the file's number and the time of its last change tell them apart.
 */
std::string entityTag(const struct stat& information)
{
    const qint64 changed = qint64(information.st_ctim.tv_sec) * 1000000000 + information.st_ctim.tv_nsec;
    const QByteArray text = '"' + QByteArray::number(changed, 16) + '-' +
                            QByteArray::number(quint64(information.st_ino), 16) + '-' +
                            QByteArray::number(qint64(information.st_size), 16) + '"';
    return text.toStdString();
}

} // namespace

std::optional<std::string> relativeFilePath(std::string_view urlRest)
{
    urlRest = urlRest.substr(0, urlRest.find_first_of("?#"));
    std::string path;
    path.reserve(urlRest.size());
    for (std::size_t i = 0; i < urlRest.size(); ++i) {
        if (urlRest[i] != '%') {
            path.push_back(urlRest[i]);
            continue;
        }
        const std::optional<char> decoded = hexPair(urlRest.substr(i + 1, 2));
        if (!decoded)
            return std::nullopt;
        path.push_back(*decoded);
        i += 2;
    }
    path.erase(0, path.find_first_not_of('/'));
    if (path.empty() || path.find('\0') != std::string::npos || path.find('\\') != std::string::npos ||
        climbs(path))
        return std::nullopt;
    return path;
}

std::optional<LocalFile> openBelow(const std::string& directory, const std::string& relativePath)
{
    std::string root = realPath(directory);
    if (root.empty())
        return std::nullopt;
    if (root.back() != '/')
        root.push_back('/');

    // Not blocking, so that a named pipe cannot hold the thread.
    LocalFile file;
    file.handle =
        FileHandle(::open((root + relativePath).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat information = {};
    if (!file.handle.isOpen() || ::fstat(file.handle.get(), &information) != 0 ||
        !S_ISREG(information.st_mode))
        return std::nullopt;
    if (pathOfDescriptor(file.handle.get()).compare(0, root.size(), root) != 0)
        return std::nullopt;

    file.size = information.st_size;
    file.etag = entityTag(information);
    const QDateTime modified = QDateTime::fromSecsSinceEpoch(information.st_mtim.tv_sec, Qt::UTC);
    file.lastModified = QLocale::c().toString(modified, httpDate).toStdString();
    return file;
}

bool isUnchanged(const LocalFile& file, std::string_view ifNoneMatch, std::string_view ifModifiedSince)
{
    // The tag decides alone when there is one.
    if (!ifNoneMatch.empty())
        return listsTag(ifNoneMatch, file.etag);
    if (ifModifiedSince.empty())
        return false;
    const auto parse = [](std::string_view text) {
        return QLocale::c().toDateTime(QString::fromLatin1(text.data(), static_cast<int>(text.size())),
                                       httpDate);
    };
    const QDateTime since = parse(ifModifiedSince);
    return since.isValid() && parse(file.lastModified) <= since;
}

} // namespace gateway
