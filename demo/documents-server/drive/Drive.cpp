#include "drive/Drive.h"

#include <utility>

namespace documents {

Drive::Drive(const QString& directory, Clock clock)
    : m_tables(directory + QLatin1String("/drive.sqlite"))
    , m_store(m_tables, ContentFiles(directory + QLatin1String("/content")), std::move(clock))
    , m_uploads(m_tables, m_store, directory + QLatin1String("/uploads"))
{
}

Failure Drive::open()
{
    if (Failure failure = m_uploads.open())
        return failure;
    return m_tables.open();
}

} // namespace documents
