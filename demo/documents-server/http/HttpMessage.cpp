#include "http/HttpMessage.h"

#include <algorithm>

namespace documents {

QByteArray HttpRequest::header(const char* name) const
{
    const auto found = std::find_if(headers.begin(), headers.end(), [name](const auto& field) {
        return field.first.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == headers.end() ? QByteArray() : found->second;
}

} // namespace documents
