#include "store/DocumentStore.h"

#include <algorithm>

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "store/OfficeTypes.h"

// Resources of a static library are registered from outside any namespace.
static void registerSeedDocuments()
{
    Q_INIT_RESOURCE(seed);
}

namespace documents {
namespace {

constexpr qint64 firstId = 100001;
constexpr int longestName = 200;

const QLatin1String fileSuffix(".json");

Failure checkName(const QString& name)
{
    if (name.size() > longestName)
        return Error{ErrorCode::Invalid,
                     QStringLiteral("The name is longer than %1 characters.").arg(longestName)};
    const bool plain = std::all_of(name.begin(), name.end(), [](QChar c) {
        return c != u'/' && c != u'\\' && c.category() != QChar::Other_Control;
    });
    if (!plain)
        return Error{ErrorCode::Invalid, QStringLiteral("The name holds a slash or a control character.")};
    return std::nullopt;
}

} // namespace

DocumentStore::DocumentStore(QString directory, Clock clock)
    : m_directory(std::move(directory))
    , m_clock(std::move(clock))
{
}

Failure DocumentStore::open()
{
    if (!QDir().mkpath(m_directory))
        return Error{ErrorCode::Storage,
                     QStringLiteral("\"%1\" cannot be made as a directory.").arg(m_directory)};
    return ids().isEmpty() ? seed() : std::nullopt;
}

Failure DocumentStore::seed() const
{
    registerSeedDocuments();
    const QDir seedDirectory(QStringLiteral(":/documents/seed"));
    const auto names = seedDirectory.entryList(QDir::Files);
    for (const QString& name : names) {
        QFile file(seedDirectory.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return Error{ErrorCode::Storage, file.errorString()};
        const auto document = documentFromFileText(file.readAll());
        if (!document)
            return document.error();
        Document fresh = *document;
        fresh.modified = m_clock();
        if (Failure failure = write(fresh))
            return failure;
    }
    return std::nullopt;
}

QVector<DocumentSummary> DocumentStore::list() const
{
    QVector<DocumentSummary> summaries;
    const auto known = ids();
    for (const QString& id : known) {
        const auto document = load(id);
        if (!document) {
            qWarning().noquote() << "Document" << id << "is left out of the list:" << document.error().text;
            continue;
        }
        summaries.append({id, document->name, document->officeType, document->version, document->modified,
                          QFileInfo(pathOf(id)).size()});
    }
    return summaries;
}

bool DocumentStore::contains(const QString& id) const
{
    return isDocumentId(id) && QFileInfo(pathOf(id)).isFile();
}

Result<Document> DocumentStore::load(const QString& id) const
{
    if (!contains(id))
        return Error{ErrorCode::NotFound, QStringLiteral("There is no document \"%1\".").arg(id)};
    QFile file(pathOf(id));
    if (!file.open(QIODevice::ReadOnly))
        return Error{ErrorCode::Storage,
                     QStringLiteral("Document %1 cannot be read: %2.").arg(id, file.errorString())};
    auto document = documentFromFileText(file.readAll());
    if (document && document->id != id)
        return Error{ErrorCode::Damaged,
                     QStringLiteral("The file of document %1 holds another one.").arg(id)};
    return document;
}

Result<Document> DocumentStore::create(const QString& officeType, const QString& name)
{
    const OfficeType* type = officeTypeByCode(officeType);
    if (!type)
        return Error{ErrorCode::Invalid,
                     QStringLiteral("\"%1\" is not a known office type.").arg(officeType)};

    Document document;
    document.name = name.trimmed();
    if (document.name.isEmpty())
        document.name = QStringLiteral("Untitled");
    if (suffixOf(document.name).isEmpty())
        document.name += QLatin1Char('.') + type->suffix;
    if (Failure failure = checkName(document.name))
        return *failure;

    const auto known = ids();
    document.id =
        QString::number(known.isEmpty() ? firstId : std::max(firstId, known.last().toLongLong() + 1));
    document.officeType = officeType;
    document.modified = m_clock();
    document.content = emptyContent(*type);
    if (Failure failure = write(document))
        return *failure;
    return document;
}

Result<Document> DocumentStore::save(const QString& id, qint64 baseVersion, const QJsonObject& content)
{
    const auto current = load(id);
    if (!current)
        return current.error();
    if (current->version != baseVersion)
        return Error{ErrorCode::VersionConflict, QStringLiteral("Document %1 is at version %2, not %3.")
                                                     .arg(id)
                                                     .arg(current->version)
                                                     .arg(baseVersion)};
    Document next = *current;
    next.version += 1;
    next.modified = m_clock();
    next.content = content;
    if (Failure failure = write(next))
        return *failure;
    return next;
}

QString DocumentStore::pathOf(const QString& id) const
{
    return m_directory + QLatin1Char('/') + id + fileSuffix;
}

QVector<QString> DocumentStore::ids() const
{
    QVector<QString> found;
    const auto names = QDir(m_directory).entryList({QStringLiteral("*.json")}, QDir::Files);
    for (const QString& name : names) {
        const QString id = name.chopped(fileSuffix.size());
        if (isDocumentId(id))
            found.append(id);
    }
    std::sort(found.begin(), found.end(),
              [](const QString& a, const QString& b) { return a.toLongLong() < b.toLongLong(); });
    return found;
}

Failure DocumentStore::write(const Document& document) const
{
    const QByteArray text = toFileText(document);
    QSaveFile file(pathOf(document.id));
    // The text may still be in a buffer, and `commit` does not tell when a full disk refuses that.
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush() && file.commit())
        return std::nullopt;
    return Error{ErrorCode::Storage,
                 QStringLiteral("Document %1 cannot be written: %2.").arg(document.id, file.errorString())};
}

} // namespace documents
