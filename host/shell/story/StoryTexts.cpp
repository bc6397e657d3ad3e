#include "shell/story/StoryTexts.h"

#include "shell/story/StoryUrl.h"

#include <QUrl>

#include <algorithm>

namespace shell::story {

namespace {

struct Word
{
    const char* name;
    const char* text;
};

template <std::size_t Count>
QString lookUp(const Word (&words)[Count], const QString& name)
{
    const auto found = std::find_if(std::begin(words), std::end(words),
                                    [&name](const Word& word) { return name == QLatin1String(word.name); });
    return found == std::end(words) ? QString() : QString::fromUtf8(found->text);
}

constexpr Word stepWords[] = {
    {"create_succeeded", "Browser widget made"},
    {"browser_created", "Browser ready"},
    {"webview_created", "Web view made"},
    {"creating_api", "Script interface made"},
    {"init_self_load", "Told to load"},
    {"notify_later_load", "Told to load, browser not there yet"},
    {"initself", "Page set up"},
    {"network_request", "Requests sent ahead"},
    {"load_start", "Browser begins to load"},
    {"load_started", "Load started"},
    {"load_finished", "Page fully loaded"},
    {"web_file_ready", "Document visible and editable"},
    {"share_dlg_ready", "Share dialog ready"},
};

constexpr Word serverWords[] = {
    {"vcs", "Version check"},
    {"get_res_pck_info", "Package information"},
    {"get_env_config", "Configuration"},
    {"get_ssr_content", "Rendered content"},
    {"open_file", "Document"},
    {"data_upgrade", "Data upgrade"},
    {"download_file", "Download"},
};

constexpr Word refusalWords[] = {
    {"switch_off", "local packages are switched off"},
    {"notify_url_empty", "there is no URL"},
    {"quill_domain_empty", "no documents site is configured"},
    {"url_param_not_match", "the URL is not one that local packages serve"},
    {"direct_plugin_load_error", "no local package is installed"},
    {"plugin_error", "the local package is missing"},
    {"local_pck_data_error", "the local package has no version"},
    {"local_pck_req_expire", "the local package has expired"},
    {"local_pck_must_upgrade", "the local package must be upgraded"},
    {"local_vcs_must_upgrade", "the server wants another version"},
    {"no plugin available", "the wanted version is not installed"},
};

constexpr qint64 kilo = 1024;

QString shortUrl(const QString& url)
{
    constexpr int longest = 90;
    const QString place = placeOf(url);
    return place.size() <= longest ? place : place.left(longest - 1) + QChar(0x2026);
}

} // namespace

QString durationText(double ms)
{
    constexpr double second = 1000;
    if (ms >= 10 * second)
        return QStringLiteral("%1 s").arg(ms / second, 0, 'f', 1);
    if (ms >= second)
        return QStringLiteral("%1 s").arg(ms / second, 0, 'f', 2);
    if (ms < 10 && ms > 0)
        return QStringLiteral("%1 ms").arg(ms, 0, 'f', 1);
    return QStringLiteral("%1 ms").arg(qRound64(ms));
}

QString sizeText(qint64 bytes)
{
    if (bytes < kilo)
        return QStringLiteral("%1 B").arg(bytes);
    if (bytes < kilo * kilo)
        return QStringLiteral("%1 KB").arg((bytes + kilo / 2) / kilo);
    return QStringLiteral("%1 MB").arg(static_cast<double>(bytes) / (kilo * kilo), 0, 'f', 1);
}

QString documentName(const OpenStory& story)
{
    if (!story.title.isEmpty())
        return story.title;
    const QUrl url(story.url);
    const QString file = fileNameOf(story.url);
    if (!file.isEmpty())
        return requestKind(story.url) == RequestKind::Page ? QStringLiteral("Document %1").arg(file) : file;
    return url.host().isEmpty() ? QStringLiteral("A page") : url.host();
}

QString titleText(const OpenStory& story)
{
    const QString name = documentName(story);
    switch (story.outcome()) {
    case Outcome::Ready:
        return QStringLiteral("%1 opened in %2").arg(name, durationText(story.totalMs()));
    case Outcome::Loaded:
        return QStringLiteral("%1 loaded in %2").arg(name, durationText(*story.loadedMs));
    case Outcome::Failed:
        return QStringLiteral("%1 did not open (%2)").arg(name, durationText(story.totalMs()));
    case Outcome::UnderWay:
        break;
    }
    return QStringLiteral("%1 is opening").arg(name);
}

QString summaryText(const OpenStory& story)
{
    const auto page = std::find_if(
        story.browserRequests.begin(), story.browserRequests.end(),
        [](const BrowserRequest& request) { return requestKind(request.url) == RequestKind::Page; });
    QString source = QStringLiteral("The page was not asked for");
    if (page != story.browserRequests.end()) {
        source = page->by == AnsweredBy::Local ? QStringLiteral("Front end from this computer")
                                               : QStringLiteral("Front end over the network");
    }
    const int network = story.count(AnsweredBy::Network) + story.count(AnsweredBy::Refused);
    return QStringLiteral("%1 · %2 requests answered on this computer, %3 over the network")
        .arg(source)
        .arg(story.count(AnsweredBy::Local))
        .arg(network);
}

QString stepText(const QString& step)
{
    const QString text = lookUp(stepWords, step);
    return text.isEmpty() ? step : text;
}

QString serverRequestText(const QString& name)
{
    const QString text = lookUp(serverWords, name);
    return text.isEmpty() ? name : text;
}

QString browserRequestText(const QString& url)
{
    const RequestKind kind = requestKind(url);
    if (kind == RequestKind::Page)
        return QStringLiteral("Page");
    const QString reply = replyNameOf(kind);
    if (!reply.isEmpty())
        return serverRequestText(reply);
    const QString file = fileNameOf(url);
    if (file.isEmpty())
        return QUrl(url).host();
    // The hash of the content in a name tells a reader nothing.
    const QStringList parts = file.split(QLatin1Char('.'));
    return parts.size() == 3 && parts.at(1).size() >= 8 ? parts.first() + QLatin1Char('.') + parts.last()
                                                        : file;
}

QString refusalText(const QString& step, const QString& error)
{
    QString text = lookUp(refusalWords, error);
    if (error.startsWith(QLatin1String("host_not_match_")))
        text = QStringLiteral("the URL is on another host");
    if (text.isEmpty())
        return QStringLiteral("Not from the local package: %1 (%2)").arg(error, step);
    return QStringLiteral("Not from the local package: %1 (%2: %3)").arg(text, step, error);
}

QString serverTroubleText(const QString& name, int errorCode)
{
    return QStringLiteral("%1: the add-on got no answer from the server (error %2)")
        .arg(serverRequestText(name))
        .arg(errorCode);
}

QString requestTroubleText(const BrowserNote& request)
{
    const QString what = QStringLiteral("%1 %2").arg(request.method, shortUrl(request.url));
    if (request.by == AnsweredBy::Refused)
        return QStringLiteral("Refused (%1): %2").arg(request.status).arg(what);
    if (request.status == 0)
        return QStringLiteral("No answer: %1").arg(what);
    return QStringLiteral("Answered with status %1: %2").arg(request.status).arg(what);
}

QString loadErrorText(const QString& message, const QString& code, const QString& url)
{
    return QStringLiteral("The page could not be loaded: %1 (%2) %3").arg(message, code, shortUrl(url));
}

QString versionCheckTimeoutText()
{
    return QStringLiteral("The version check did not answer in time; the page loads without it");
}

QString activationText(const QMap<QString, QString>& fields)
{
    return QStringLiteral("The package %1 is asked for, for a later open (%2)")
        .arg(fields.value(QStringLiteral("pluginname")), fields.value(QStringLiteral("errormsg")));
}

} // namespace shell::story
