#include "offline/NDOPStorageFileHandler.h"

#include "handlers/HandlerFixture.h"
#include "offline/LinklessFiles.h"

#include <QDir>
#include <QFile>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QByteArray done = R"({"callstatus":"ok","result":true})";
const QByteArray fail = R"(cb {"callstatus":"fail","err":""})";

QByteArray error(const QByteArray& text)
{
    return R"({"callstatus":"error","err":")" + text + "\"}";
}

class StorageFiles : public HandlerFixture
{
protected:
    void SetUp() override
    {
        HandlerFixture::SetUp();
        nclock::setNowForTest([] { return QDateTime::fromMSecsSinceEpoch(1234); });
        shell.cloud.user.localDataDir = directory.path();
        root = directory.filePath(QStringLiteral("quillfile/L"));
        QDir().mkpath(root);
        handler = new NDOPStorageFileHandler(object.get(), object.get());
        setHandler(handler);
    }

    /** Calls with the members added to those that name the file "a/f" of the package. */
    QByteArray ask(const char* method, const QByteArray& more = "{}")
    {
        QJsonObject arguments =
            json(R"({"localId":"L","relativePos":"a/f","callback":"cb","dataCallbackName":"cb"})");
        const QJsonObject further = json(more);
        for (auto member = further.begin(); member != further.end(); ++member)
            arguments.insert(member.key(), member.value());
        return call(method, arguments);
    }
    QByteArray content(const char* name) const
    {
        QFile file(root + u'/' + QLatin1String(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    void write(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QStringList entries(const char* folder) const
    {
        return QDir(root + u'/' + QLatin1String(folder))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QString root;
    NDOPStorageFileHandler* handler = nullptr;
};

TEST_F(StorageFiles, WrongArgumentsAreRepliedInOrder)
{
    const struct
    {
        const char* method;
        QByteArray arguments;
        QByteArray error;
    } cases[] = {
        {"create", R"({"localId":""})", "localId isEmpty"},
        {"create", R"({"localId":".."})", "localPckRootPath isEmpty"},
        {"create", R"({"localId":"a/b"})", "localPckRootPath isEmpty"},
        {"read", R"({"dataCallbackName":"","localId":""})", "readDataCB isEmpty"},
        {"read", R"({"localId":""})", "localId isEmpty"},
        {"read", R"({"localId":".","relativePos":".."})", "localPckRootPath isEmpty"},
        {"read", "{}", "targetPath does not exist"},
        {"update", R"({"callback":"","localId":""})", "callBack isEmpty"},
        {"update", R"({"localId":""})", "localId isEmpty"},
        {"remove", R"({"callback":"","localId":""})", "callBack isEmpty"},
        {"remove", "{}", "targetPath does not exist"},
        {"remove", R"({"relativePos":"","isFolder":true})", "relativePos is invalid"},
        {"readDataSteam", R"({"callback":""})", "targetPath does not exist"},
        {"writeDataSteam", R"({"callback":"","localId":""})", "localId isEmpty"},
        {"writeDataSteam", R"({"relativePos":"./"})", "relativePos is invalid"},
        {"unzip", R"({"isEncrypt":true,"localId":""})", "encrypt not support"},
        {"unzip", R"({"localId":""})", "localId isEmpty"},
        {"unzip", R"({"localId":"..","distRelativePos":""})", "path isEmpty"},
        {"unzip", R"({"localId":"..","distRelativePos":"d"})", "localPckRootPath isEmpty"},
        {"unzip", R"({"distRelativePos":"../d"})", "relativePos is invalid"},
        {"unzip", R"({"distRelativePos":"d"})", "srcPath isVaild"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(ask(each.method, each.arguments), error(each.error))
            << each.method << each.arguments.constData();
    EXPECT_EQ(callbacks(), "");
    EXPECT_TRUE(shell.cloud.calls.isEmpty());
}

TEST_F(StorageFiles, FilesAreMadeReadChangedAndRemoved)
{
    // "b25l" is "one", "dHdv" is "two".
    const QByteArray page = R"(","page":{"cur":0,"total":1}}})";
    const struct
    {
        const char* method;
        QByteArray arguments;
        QByteArray answer; //!< of the function, or of the call when it has no function
        QByteArray content;
    } steps[] = {
        {"create", R"({"data":"b25l"})", done, "one"},
        {"read", "{}", R"(cb {"callstatus":"ok","result":{"body":"b25l)" + page, "one"},
        {"update", R"({"data":"dHdv","append":true})", "cb " + done, "onetwo"},
        {"update", R"({"data":"dHdv","crypto":"Base64"})", "cb " + done, "dHdv"},
        {"update", R"({"data":"b25l","crypto":"base64","append":true})", "cb " + done, "dHdvb25l"},
        {"read", R"({"crypto":"BASE64"})", R"(cb {"callstatus":"ok","result":{"body":"dHdvb25l)" + page,
         "dHdvb25l"},
        {"read", "{}", R"(cb {"callstatus":"ok","result":{"body":"ZEhkdmIyNWw=)" + page, "dHdvb25l"},
        {"create", R"({"data":"b25l","crypto":"base64"})", done, "b25l"},
        {"writeDataSteam", R"({"data":"\"\\\n\u0001ß"})",
         R"(cb {"callstatus":"ok","result":{"result":true}})", "\"\\\n\x01ß"},
        {"readDataSteam", "{}", R"(cb {"callstatus":"ok","result":{"data":"\"\\\n\u0001ß"}})", "\"\\\n\x01ß"},
        {"remove", R"({"isFolder":true})", fail, "\"\\\n\x01ß"},
        {"remove", "{}", "cb " + done, "none"},
        {"update", R"({"data":"b25l","append":true})", "cb " + done, "one"},
        {"create", R"({"isFolder":true,"relativePos":"a/b/c"})", done, "one"},
        {"create", R"({"isFolder":true})", error(""), "one"},
        {"update", R"({"relativePos":"none/f","data":"b25l"})", fail, "one"},
        {"readDataSteam", R"({"relativePos":"a"})",
         R"(cb {"callstatus":"fail","err":"read data steam fail"})", "one"},
        {"remove", R"({"relativePos":"/a"})", fail, "one"},
        {"remove", R"({"relativePos":"/a","isFolder":true})", "cb " + done, "none"},
    };
    for (const auto& step : steps) {
        const QByteArray reply = ask(step.method, step.arguments);
        const QByteArray later = callbacks();
        const QByteArray wanted =
            step.answer.startsWith("cb ") ? "cb " + compact(step.answer.mid(3)) : step.answer;
        EXPECT_EQ(later.isEmpty() ? reply : later, wanted) << step.method << step.arguments.constData();
        EXPECT_EQ(content("a/f"), step.content) << step.method << step.arguments.constData();
    }
    EXPECT_EQ(shell.cloud.calls.filter(QStringLiteral("L|{\"accessTimeL\":1234}|jsapiFileRead|")).size(), 3);
    EXPECT_EQ(shell.cloud.calls.filter(QStringLiteral("L|{\"modifyTimeL\":1234}|jsapiFileUpdate|")).size(),
              5);
}

TEST_F(StorageFiles, NoPositionLeavesThePackage)
{
    const QString outside = directory.filePath(QStringLiteral("outside"));
    QDir().mkpath(outside);
    write(outside + QStringLiteral("/secret"), "kept");
    QFile::link(outside, root + QStringLiteral("/out"));
    QFile::link(outside + QStringLiteral("/secret"), root + QStringLiteral("/file"));
    QFile::link(outside + QStringLiteral("/none"), root + QStringLiteral("/dangling"));
    QDir().mkpath(root + QStringLiteral("/in"));
    for (const char* position :
         {"..", "../outside/secret", "in/../../../outside/secret", "out/secret", "out/new", "out", "file",
          "dangling", "in/../../../outside/new", R"(..\\outside)"}) {
        const QByteArray arguments = QByteArray(R"({"isFolder":false,"data":"b25l","relativePos":")") +
                                     position + R"(","distRelativePos":"in"})";
        for (const char* method :
             {"create", "read", "update", "remove", "readDataSteam", "writeDataSteam", "unzip"})
            EXPECT_EQ(ask(method, arguments), error("relativePos is invalid")) << method << position;
        EXPECT_EQ(ask("create", QByteArray(arguments).replace("false", "true")),
                  error("relativePos is invalid"));
    }
    EXPECT_EQ(ask("read", QByteArray(R"({"relativePos":"in/\u0000x"})")), error("relativePos is invalid"));
    EXPECT_EQ(callbacks(), "");
    EXPECT_EQ(QDir(outside).entryList(QDir::Files), QStringList(QStringLiteral("secret")));

    // A second name of a file elsewhere is no link on the way, but none of the package's files either.
    ASSERT_EQ(::link(qUtf8Printable(outside + QStringLiteral("/secret")),
                     qUtf8Printable(root + QStringLiteral("/name"))),
              0);
    for (const char* method : {"read", "readDataSteam", "update", "writeDataSteam"}) {
        ask(method, R"({"relativePos":"name","data":"b25l","append":true})");
        EXPECT_TRUE(callbacks().startsWith(R"(cb {"callstatus":"fail")")) << method;
    }
    EXPECT_EQ(ask("create", R"({"relativePos":"name","data":"b25l"})"), done)
        << "a file of its own takes the place";
    EXPECT_EQ(content("name"), "one");

    // A link that is planted between the check of a path and its use.
    const QString planted = root + QStringLiteral("/out/secret");
    EXPECT_FALSE(nlinklessfiles::readFile(planted));
    EXPECT_FALSE(nlinklessfiles::readFile(root + QStringLiteral("/file")));
    EXPECT_FALSE(nlinklessfiles::writeFile(planted, "x"));
    EXPECT_FALSE(nlinklessfiles::appendToFile(root + QStringLiteral("/file"), "x"));
    EXPECT_FALSE(nlinklessfiles::makeFolder(root + QStringLiteral("/out/new")));
    EXPECT_FALSE(nlinklessfiles::removeFile(planted));
    EXPECT_FALSE(nlinklessfiles::removeFolder(root + QStringLiteral("/out")));
    EXPECT_TRUE(nlinklessfiles::removeFolder(root));
    QFile secret(outside + QStringLiteral("/secret"));
    ASSERT_TRUE(secret.open(QIODevice::ReadOnly));
    EXPECT_EQ(secret.readAll(), "kept");
}

TEST_F(StorageFiles, PipesFailAtOnceAndAFullDiskLeavesTheOldContent)
{
    ask("create", R"({"data":"b25l"})");
    ASSERT_EQ(::mkfifo(QFile::encodeName(root + QStringLiteral("/a/pipe")).constData(), 0666), 0);
    for (const char* method : {"read", "update"}) {
        ask(method, R"({"relativePos":"a/pipe","data":"b25l","append":true})");
        EXPECT_EQ(callbacks(), fail) << method;
    }
    EXPECT_EQ(ask("create", R"({"relativePos":"a/pipe","data":"b25l"})"), error(""));

    const QByteArray large = R"({"data":")" + QByteArray(40000, 'a') + "\"}";
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{10000, before.rlim_max};
    const auto handled = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &full);
    ask("update", large);
    const QByteArray updated = callbacks();
    ask("writeDataSteam", large);
    const QByteArray written = callbacks();
    const QByteArray created = ask("create", large);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handled);
    EXPECT_EQ(updated, fail);
    EXPECT_EQ(written, R"(cb {"callstatus":"fail","err":"write data steam fail"})");
    EXPECT_EQ(created, error(""));
    EXPECT_EQ(content("a/f"), "one");
    EXPECT_EQ(entries("a"), (QStringList{QStringLiteral("f"), QStringLiteral("pipe")}));
}

TEST_F(StorageFiles, AppendsAtTheSameTimeAllArrive)
{
    ask("create", R"({"data":""})");
    constexpr int count = 200;
    for (int i = 0; i < count; ++i)
        ask(i % 2 ? "writeDataSteam" : "update", R"({"data":"AAAA","append":true})");
    callbacks();
    EXPECT_EQ(content("a/f").size(), count / 2 * 4 + count / 2 * 3);
    EXPECT_EQ(entries("a").size(), 1);
}

TEST_F(StorageFiles, TheWorkGoesOnWithoutTheDocumentAndItsAnswerEndsWithIt)
{
    ask("create", R"({"data":"b25l"})");
    const struct
    {
        const char* method;
        QByteArray arguments;
        QByteArray content;
    } cases[] = {
        {"read", "{}", "one"},
        {"readDataSteam", "{}", "one"},
        {"update", R"({"data":"dHdv"})", "two"},
        {"writeDataSteam", R"({"data":"three"})", "three"},
        {"remove", "{}", "none"},
    };
    for (const auto& each : cases) {
        ask(each.method, each.arguments);
        container.deliverNextDocument(*object);
        EXPECT_EQ(callbacks(), "") << each.method;
        EXPECT_EQ(content("a/f"), each.content) << each.method;
    }
    ask("create", R"({"data":"b25l"})");
    ask("unzip", R"({"distRelativePos":"/d"})");
    const QString request = QString::number(shell.cloud.calls.size());
    container.deliverNextDocument(*object);
    handler->onUnzip(true, request, {});
    EXPECT_EQ(callbacks(), "");
}

TEST_F(StorageFiles, ZipsAreUnpackedByTheService)
{
    ask("create", R"({"data":"b25l"})");
    for (const bool success : {true, false}) {
        EXPECT_EQ(ask("unzip", R"({"distRelativePos":"/d","isRemoveZip":true})"), "");
        EXPECT_EQ(shell.cloud.calls.last(), QStringLiteral("L|false|true|%1/a/f|%1/d|onUnzip").arg(root));
        handler->onUnzip(success, QStringLiteral("none"), {});
        EXPECT_EQ(callbacks(), "");
        handler->onUnzip(success, QString::number(shell.cloud.calls.size()), {7, {}});
        EXPECT_EQ(callbacks(), success ? QByteArray("cb " + done)
                                       : R"(cb {"callstatus":"fail","err":"unzip error","ipcerrorcode":7})");
    }
}

} // namespace
