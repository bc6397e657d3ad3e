#pragma once

#include "DriveProcess.h"
#include "vltcloudsvr/client/CloudServiceClient.h"
#include "vltcloudsvr/common/ServicePlace.h"
#include "vltcloudsvr/common/Transfers.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <csignal>
#include <memory>

/** The service process over the documents server, both real. */
class TransfersFixture : public testing::Test
{
protected:
    using Values = vlt::cloudsvr::Values;

    TransfersFixture() { connectService(); }
    ~TransfersFixture() override { end(SIGTERM); }

    void connectService()
    {
        using testfiles::s;
        shell = std::make_unique<vlt::cloudsvr::CloudServiceClient>(vlt::cloudsvr::ClientSetup{
            s(SERVICE_PROGRAM),
            dataDir,
            {s("--idle-exit-seconds"), s("1"), s("--transfer-retry-ms"), s("10")}});
    }

    template <typename Condition>
    static bool waitFor(Condition condition, int patienceMs = 60'000)
    {
        QElapsedTimer time;
        time.start();
        while (!condition()) {
            if (time.hasExpired(patienceMs))
                return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        return true;
    }

    bool isServiceThere() const { return isServed(vlt::cloudsvr::placeOf(dataDir)); }
    /** Ends the service, if there is one, and waits for it. */
    void end(int signal)
    {
        const auto place = vlt::cloudsvr::placeOf(dataDir);
        const pid_t pid =
            isServed(place) ? testfiles::read(place.lockPath).value_or(QByteArray()).trimmed().toInt() : 0;
        if (pid > 0)
            ::kill(pid, signal);
        waitFor([&] { return !isServed(place); });
    }

    /** What a function answers; a call that fails while the service dies is made again. */
    vlt::cloudsvr::CallResult call(QLatin1String function, const Values& values)
    {
        const vlt::cloudsvr::Caller caller{QStringLiteral("anna"), directory.filePath(QStringLiteral("anna")),
                                           apiUrl, resolve, QStringLiteral("sid=1; vlt_sid=test;")};
        for (int attempt = 0; attempt < 5; ++attempt) {
            bool isThere = false;
            bool isAnswered = false;
            vlt::cloudsvr::CallResult answer;
            shell->call(caller, function, values, [&](bool success, const vlt::cloudsvr::CallResult& result) {
                isThere = true;
                isAnswered = success;
                answer = result;
            });
            waitFor([&] { return isThere; });
            if (isAnswered)
                return answer;
        }
        ADD_FAILURE() << "no answer";
        return {};
    }

    Values uploadFiles(const QStringList& paths, const QString& parent = QStringLiteral("0"),
                       const QString& fileId = {})
    {
        return call(vlt::cloudsvr::names::uploadFiles,
                    {{QStringLiteral("groupid"), QStringLiteral("7")},
                     {QStringLiteral("parentid"), parent},
                     {QStringLiteral("fileid"), fileId},
                     {QStringLiteral("paths"),
                      QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(paths)).toJson())}})
            .values;
    }
    Values downloadFiles(const QString& joinedIds, const QString& history = {})
    {
        return call(vlt::cloudsvr::names::downloadFiles, {{QStringLiteral("fileids"), joinedIds},
                                                          {QStringLiteral("directory"), target},
                                                          {QStringLiteral("historyid"), history}})
            .values;
    }
    Values states(QLatin1String function, const QString& joined)
    {
        return call(function, {{vlt::cloudsvr::positionKey(0), joined}}).values;
    }
    QString uploadState(const QString& path)
    {
        return states(vlt::cloudsvr::names::uploadStates, path).value(path);
    }
    /** Waits until an upload is no longer under way; its state then. */
    QString uploadEnd(const QString& path)
    {
        QString state;
        waitFor([&] {
            state = uploadState(path);
            return !state.startsWith(QStringLiteral("queue")) &&
                   !state.startsWith(QStringLiteral("uploading"));
        });
        return state;
    }
    /** The state word and the tasks of downloads. */
    std::pair<QString, QJsonArray> downloads(const QString& joined)
    {
        const QString content =
            states(vlt::cloudsvr::names::downloadStates, joined).value(QStringLiteral("jsonConten"));
        const QStringList parts = content.split(u'|');
        EXPECT_EQ(parts.size(), 2) << qPrintable(content);
        return {parts[0], QJsonDocument::fromJson(parts.value(1).toUtf8())
                              .object()
                              .value(QStringLiteral("tasks"))
                              .toArray()};
    }
    QJsonArray downloadEnd(const QString& joined)
    {
        QJsonArray tasks;
        EXPECT_TRUE(waitFor([&] {
            const auto [word, found] = downloads(joined);
            tasks = found;
            return word == QLatin1String("finished");
        }));
        return tasks;
    }
    vlt::cloudsvr::TransferList list(vlt::cloudsvr::TransferDirection direction, int count = 500)
    {
        return vlt::cloudsvr::TransferList::fromValues(
            call(vlt::cloudsvr::names::listTransfers, {{QStringLiteral("direction"), toText(direction)},
                                                       {QStringLiteral("offset"), QStringLiteral("0")},
                                                       {QStringLiteral("count"), QString::number(count)}})
                .values);
    }

    /** A file of bytes that are its own. */
    QString makeFile(const QString& name, int size)
    {
        QByteArray bytes(size, Qt::Uninitialized);
        quint32 state = qHash(name) | 1U;
        for (char& byte : bytes) {
            state ^= state << 13U;
            state ^= state >> 17U;
            state ^= state << 5U;
            byte = char(state);
        }
        const QString path = source + u'/' + name;
        testfiles::write(path, bytes);
        return path;
    }

    DriveProcess drive;
    QTemporaryDir directory;
    const QString dataDir = directory.filePath(QStringLiteral("data"));
    const QString source = directory.filePath(QStringLiteral("source"));
    const QString target = [this] {
        QDir(directory.path()).mkdir(QStringLiteral("target"));
        return directory.filePath(QStringLiteral("target"));
    }();
    QString apiUrl = QStringLiteral("http://docs.test");
    QMap<QString, QString> resolve = drive.resolve();
    std::unique_ptr<vlt::cloudsvr::CloudServiceClient> shell;
};
