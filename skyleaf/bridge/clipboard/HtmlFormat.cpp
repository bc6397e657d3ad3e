#include "bridge/clipboard/HtmlFormat.h"

#include <array>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

namespace {

/** The header; a number takes ten characters where its pattern takes five. */
constexpr char headerPattern[] =
    "Version:0.9\r\nStartHTML:%010u\r\nEndHTML:%010u\r\nStartFragment:%010u\r\nEndFragment:%010u\r\n";
constexpr std::string_view numberPattern = "%010u";
constexpr std::string_view opening = "<html>\r\n<body>\r\n<!--StartFragment-->";
constexpr std::string_view closing = "<!--EndFragment-->\r\n</body>\r\n</html>";
constexpr std::string_view officeStart = "<html xmlns:o=\"urn:schemas-microsoft-com:office:office\"";
constexpr std::string_view htmlEnd = "</html>";

/** A header is short: an offset that is named further in is a part of the document. */
constexpr std::size_t longestHeader = 1024;

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

/** The offset that follows a name in the header. */
std::optional<qint64> offset(std::string_view header, std::string_view name)
{
    std::size_t at = header.find(name);
    if (at == header.npos)
        return {};
    at += name.size();
    const std::size_t first = at;
    qint64 value = 0;
    for (; at < header.size() && header[at] >= '0' && header[at] <= '9'; ++at) {
        value = value * 10 + (header[at] - '0');
        if (value > std::numeric_limits<int>::max())
            return {};
    }
    return at > first ? std::optional<qint64>(value) : std::nullopt;
}

/** The first place of a text at or after `from`. */
std::size_t placeOf(std::string_view in, std::string_view text, std::size_t from)
{
    const void* const found =
        from < in.size() ? memmem(in.data() + from, in.size() - from, text.data(), text.size()) : nullptr;
    return found ? std::size_t(static_cast<const char*>(found) - in.data()) : in.npos;
}

/**
 * The first closing tag at or after `from`. Markup is full of "<", "h" and "l", which makes a general search
 * slow: blocks without "tm" are passed over, in a loop that the compiler makes vector instructions of.
 */
std::size_t placeOfHtmlEnd(std::string_view in, std::size_t from)
{
    constexpr std::size_t blockSize = 512;
    static_assert(htmlEnd[3] == 't' && htmlEnd[4] == 'm');
    for (; from + blockSize + htmlEnd.size() <= in.size(); from += blockSize) {
        const char* const block = in.data() + from;
        unsigned char isThere = 0;
        for (std::size_t i = 0; i < blockSize; ++i)
            isThere |= static_cast<unsigned char>((block[i + 3] == 't') & (block[i + 4] == 'm'));
        if (isThere == 0)
            continue;
        const std::size_t place = in.substr(from, blockSize + htmlEnd.size()).find(htmlEnd);
        if (place != in.npos)
            return from + place;
    }
    return placeOf(in, htmlEnd, from);
}

/** Appends the pattern with the numbers in their places. */
void appendHeader(QByteArray& bytes, const std::array<qint64, 4>& numbers)
{
    std::string_view rest = headerPattern;
    for (qint64 number : numbers) {
        const std::size_t place = rest.find(numberPattern);
        bytes.append(rest.data(), int(place));
        rest.remove_prefix(place + numberPattern.size());
        std::array<char, 10> digits;
        digits.fill('0');
        for (auto digit = digits.rbegin(); number > 0; ++digit, number /= 10)
            *digit = char('0' + number % 10);
        bytes.append(digits.data(), int(digits.size()));
    }
    bytes.append(rest.data(), int(rest.size()));
}

} // namespace

namespace htmlformat {

const char* const formatName = "HTML Format";

QByteArray build(const QByteArray& fragment)
{
    const qint64 startHtml = qint64(std::strlen(headerPattern)) + 20;
    const qint64 startFragment = startHtml + qint64(opening.size());
    const qint64 endFragment = startFragment + fragment.size();
    const qint64 endHtml = endFragment + qint64(closing.size());
    if (endHtml > std::numeric_limits<int>::max() - 64)
        throw std::bad_alloc();

    QByteArray bytes;
    bytes.reserve(int(endHtml));
    appendHeader(bytes, {startHtml, endHtml, startFragment, endFragment});
    bytes.append(opening.data(), int(opening.size()));
    bytes.append(fragment);
    bytes.append(closing.data(), int(closing.size()));
    return bytes;
}

std::optional<QByteArray> document(const QByteArray& bytes)
{
    if (!bytes.startsWith("Version:"))
        return {};
    const std::string_view header = viewOf(bytes).substr(0, longestHeader);
    const std::optional<qint64> start = offset(header, "StartHTML:");
    const std::optional<qint64> end = offset(header, "EndHTML:");
    if (!start || !end || *start > *end || *end > bytes.size())
        return {};
    return bytes.mid(int(*start), int(*end - *start));
}

QByteArray cutOfficeDocument(const QByteArray& bytes)
{
    const std::string_view text = viewOf(bytes);
    const std::size_t start = placeOf(text, officeStart, 0);
    if (start == text.npos || start == 0)
        return bytes;
    const std::size_t end = placeOfHtmlEnd(text, start);
    if (end == text.npos)
        return bytes;
    return bytes.mid(int(start), int(end + htmlEnd.size() - start));
}

} // namespace htmlformat
