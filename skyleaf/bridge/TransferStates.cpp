#include "bridge/TransferStates.h"

#include <QJsonArray>
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

QString failureText(const QString& encoded)
{
    const QString text =
        QString::fromUtf8(QByteArray::fromBase64(encoded.toLatin1().replace('-', '+').replace('_', '/')));
    return text.isEmpty() ? QStringLiteral("Failed to Upload") : text;
}

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

    const auto detail = [&](int field) { return details.value(field).toString(); };
    QJsonObject report{
        {QStringLiteral("src"), fields[3].toString()},
        {QStringLiteral("uploadTo"), QJsonObject{{QStringLiteral("groupid"), fields[1].toString()},
                                                 {QStringLiteral("parentid"), fields[2].toString()}}},
        {QStringLiteral("size"), fields[4].toString()}};
    switch (*state) {
    case UploadState::Done:
        report.insert(QStringLiteral("taskId"), detail(1));
        report.insert(QStringLiteral("sha1"), fields[5].toString());
        report.insert(QStringLiteral("fileid"), fields[6].toString());
        break;
    case UploadState::Failed:
        report.insert(QStringLiteral("taskId"), detail(3));
        report.insert(QStringLiteral("result"), QStringLiteral("Failed"));
        report.insert(QStringLiteral("msg"), failureText(detail(5)));
        report.insert(QStringLiteral("errorCode"), detail(2));
        report.insert(QStringLiteral("errorDetailCode"), detail(4));
        break;
    case UploadState::Stopped:
        report.insert(QStringLiteral("taskId"), detail(1));
        report.insert(QStringLiteral("result"), QStringLiteral("Stop"));
        report.insert(QStringLiteral("msg"), QStringLiteral("Stop to Uoload"));
        break;
    case UploadState::Uploading:
        report.insert(QStringLiteral("taskId"), detail(2));
        report.insert(QStringLiteral("percent"), detail(1));
        break;
    case UploadState::Queued:
        report.insert(QStringLiteral("taskId"), detail(2));
        report.insert(QStringLiteral("percent"), 0);
        break;
    }
    return UploadItem{*state, std::move(report)};
}

QJsonObject UploadWatch::takeIn(const QSet<QString>& paths, const QMap<QString, QString>& records)
{
    QJsonArray queued;
    QJsonArray failed;
    QJsonArray success;
    for (const QString& path : paths) {
        const std::optional<UploadItem> item = uploadItem(records, path);
        if (!item)
            continue;
        switch (item->state) {
        case UploadState::Done:
            if (!m_reported.contains(path)) {
                success.append(item->report);
                m_reported.insert(path);
            }
            m_active.remove(path);
            break;
        case UploadState::Failed:
            failed.append(item->report);
            m_active.remove(path);
            break;
        case UploadState::Stopped:
            failed.append(item->report);
            break;
        case UploadState::Uploading:
        case UploadState::Queued:
            queued.append(item->report);
            m_active.insert(path);
            break;
        }
    }
    QJsonObject report{{QStringLiteral("failed"), failed}, {QStringLiteral("success"), success}};
    if (isAnyActive())
        report.insert(QStringLiteral("queued"), queued);
    return report;
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
