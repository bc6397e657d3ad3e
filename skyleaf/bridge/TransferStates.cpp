#include "bridge/TransferStates.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>
#include <QVector>

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int resultFields = 7;

/** The states by their words, in the order in which they are looked for. */
constexpr std::array<std::pair<const char*, UploadState>, 5> stateWords = {
    {{"ok", UploadState::Done},
     {"fail", UploadState::Failed},
     {"stop", UploadState::Stopped},
     {"uploading", UploadState::Uploading},
     {"queue", UploadState::Queued}}};

std::optional<UploadState> stateOf(const QStringRef& word)
{
    for (const auto& [text, state] : stateWords) {
        if (word.contains(QLatin1String(text)))
            return state;
    }
    return {};
}

QString failureText(const QStringRef& encoded)
{
    const QString text =
        QString::fromUtf8(QByteArray::fromBase64(encoded.toLatin1().replace('-', '+').replace('_', '/')));
    return text.isEmpty() ? QStringLiteral("Failed to Upload") : text;
}

inline bool needsEscape(QChar c)
{
    return c < QLatin1Char(' ') || c == QLatin1Char('"') || c == QLatin1Char('\\') || c.isSurrogate();
}

void appendJsonText(QString& json, const QStringRef& text)
{
    if (std::any_of(text.begin(), text.end(), [](QChar c) { return needsEscape(c); })) {
        const QByteArray list = QJsonDocument(QJsonArray{text.toString()}).toJson(QJsonDocument::Compact);
        json += QString::fromUtf8(list.constData() + 1, list.size() - 2);
        return;
    }
    json += QLatin1Char('"');
    json += text;
    json += QLatin1Char('"');
}

/** An item of a list of the report; its members are added in the order of their names. */
class ItemText
{
public:
    void add(const char* name, const QStringRef& value)
    {
        addName(name);
        appendJsonText(m_json, value);
    }
    void add(const char* name, const QString& value) { add(name, QStringRef(&value)); }
    void addZero(const char* name)
    {
        addName(name);
        m_json += QLatin1Char('0');
    }
    /** Where it goes in the drive comes last. */
    QString endWithPlace(const QStringRef& groupId, const QStringRef& parentId)
    {
        addName("uploadTo");
        m_json += QLatin1String("{                \"groupid\": ");
        appendJsonText(m_json, groupId);
        m_json += QLatin1String(",                \"parentid\": ");
        appendJsonText(m_json, parentId);
        m_json += QLatin1String("            }        }");
        return std::move(m_json);
    }

private:
    void addName(const char* name)
    {
        m_json += QLatin1String(m_json.isEmpty() ? "        {            \"" : ",            \"");
        m_json += QLatin1String(name);
        m_json += QLatin1String("\": ");
    }

    static QString withRoom()
    {
        constexpr int usualLength = 512;
        QString json;
        json.reserve(usualLength);
        return json;
    }

    QString m_json = withRoom();
};

/** A list of items with its name. */
class ListText
{
public:
    explicit ListText(const char* name)
        : m_json(QStringLiteral("    \"%1\": [").arg(QLatin1String(name)))
    {
    }
    void add(const QString& item)
    {
        if (m_hasItems)
            m_json += QLatin1Char(',');
        m_json += item;
        m_hasItems = true;
    }
    QString end() { return m_json + QStringLiteral("    ]"); }

private:
    QString m_json;
    bool m_hasItems = false;
};

} // namespace

std::optional<UploadItem> uploadItem(const QMap<QString, QString>& records, const QString& path)
{
    const QString result = records.value(path + QStringLiteral("_result"));
    const QVector<QStringRef> fields = result.splitRef(QLatin1Char('|'));
    if (fields.size() < resultFields)
        return {};
    const QString record = records.value(path);
    const QVector<QStringRef> details = record.splitRef(QLatin1Char('/'));
    const std::optional<UploadState> state = stateOf(details.constFirst());
    if (!state)
        return {};

    const auto detail = [&](int field) { return details.value(field); };
    ItemText item;
    int taskField = 1;
    switch (*state) {
    case UploadState::Done:
        item.add("fileid", fields[6]);
        item.add("sha1", fields[5]);
        break;
    case UploadState::Failed: {
        const QString message = failureText(detail(5));
        item.add("errorCode", detail(2));
        item.add("errorDetailCode", detail(4));
        item.add("msg", message);
        item.add("result", QStringLiteral("Failed"));
        taskField = 3;
        break;
    }
    case UploadState::Stopped:
        item.add("msg", QStringLiteral("Stop to Uoload"));
        item.add("result", QStringLiteral("Stop"));
        break;
    case UploadState::Uploading:
        item.add("percent", detail(1));
        taskField = 2;
        break;
    case UploadState::Queued:
        item.addZero("percent");
        taskField = 2;
        break;
    }
    item.add("size", fields[4]);
    item.add("src", fields[3]);
    item.add("taskId", detail(taskField));
    return UploadItem{*state, item.endWithPlace(fields[1], fields[2])};
}

QString UploadWatch::takeIn(const QSet<QString>& paths, const QMap<QString, QString>& records)
{
    ListText queued("queued");
    ListText failed("failed");
    ListText success("success");
    for (const QString& path : paths) {
        const std::optional<UploadItem> item = uploadItem(records, path);
        if (!item)
            continue;
        switch (item->state) {
        case UploadState::Done:
            if (!m_reportedUploads.contains(path)) {
                success.add(item->report);
                m_reportedUploads.insert(path);
            }
            m_activeUploads.remove(path);
            break;
        case UploadState::Failed:
            failed.add(item->report);
            m_activeUploads.remove(path);
            break;
        case UploadState::Stopped:
            failed.add(item->report);
            break;
        case UploadState::Uploading:
        case UploadState::Queued:
            queued.add(item->report);
            m_activeUploads.insert(path);
            break;
        }
    }
    const QString middle = isAnyActive() ? queued.end() + QLatin1Char(',') : QString();
    return QLatin1Char('{') + failed.end() + QLatin1Char(',') + middle + success.end() + QLatin1Char('}');
}

DownloadState DownloadState::parse(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('|'));
    const QString& word = parts.constFirst();
    DownloadState state;
    state.isIdle = word == QLatin1String("finished") || word == QLatin1String("notask") ||
                   word == QLatin1String("prestart");
    state.hasPayload = parts.size() > 1;
    state.payload = onOneLine(parts.value(1));
    return state;
}

QString onOneLine(QString text)
{
    const auto isBreak = [](QChar c) {
        return c == QLatin1Char('\n') || c == QLatin1Char('\t') || c == QLatin1Char('\r');
    };
    const auto end = std::remove_if(text.begin(), text.end(), isBreak);
    text.truncate(int(end - text.begin()));
    return text;
}
