#include "vltcloudsvr/functions/TransferFunctions.h"

#include "vltcloudsvr/transfers/FolderScan.h"
#include "vltcloudsvr/transfers/SourceFile.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace vlt::cloudsvr {
namespace {

constexpr int longestId = 64;
const QString roamingSetting = QStringLiteral("roamingmode");

QString text(const Values& arguments, const char* key)
{
    return arguments.value(QLatin1String(key));
}

/** Ids of the drive are handed through; what cannot be one is refused here. */
bool isId(const QString& id)
{
    return !id.isEmpty() && id.size() <= longestId && std::all_of(id.begin(), id.end(), [](QChar character) {
        return character.unicode() < 0x7f &&
               (character.isLetterOrNumber() || character == u'-' || character == u'_');
    });
}

CallResult badArgument(const QString& message)
{
    return failure(ResultCode::BadArgument, message);
}

CallResult storageError(const QString& message)
{
    return failure(ResultCode::StorageError, message);
}

QStringList idsOf(const QString& joined)
{
    QStringList ids = joined.split(u'|', Qt::SkipEmptyParts);
    ids.removeDuplicates();
    return ids;
}

QVector<qint64> rowsOf(const Values& arguments)
{
    QVector<qint64> rows;
    for (const QString& id : idsOf(arguments.value(positionKey(0)))) {
        if (const qint64 row = rowOfTask(id))
            rows.append(row);
    }
    return rows;
}

std::optional<TransferDirection> directionOf(const QString& word)
{
    for (const TransferDirection direction : {TransferDirection::Upload, TransferDirection::Download}) {
        if (word == toText(direction))
            return direction;
    }
    return {};
}

/** Empty, or what is wrong with the place that an upload goes to. */
QString placeProblem(const Values& arguments)
{
    for (const char* key : {"groupid", "parentid"}) {
        if (!isId(text(arguments, key)))
            return QStringLiteral("\"%1\" is no id").arg(QLatin1String(key));
    }
    return {};
}

/** Empty, or what is wrong with the directory that downloads go to. */
QString directoryProblem(const QString& directory)
{
    const QFileInfo info(directory);
    if (!info.isAbsolute() || !info.isDir())
        return QStringLiteral("\"%1\" is not a directory").arg(directory);
    return {};
}

Transfer pattern(qint64 context, TransferDirection direction, const Values& arguments)
{
    Transfer row;
    row.context = context;
    row.direction = direction;
    row.groupId = text(arguments, "groupid");
    row.remoteParent = text(arguments, "parentid");
    return row;
}

CallResult counted(const Result<int>& count)
{
    return count ? CallResult{ResultCode::Ok, {{QStringLiteral("count"), QString::number(*count)}}}
                 : storageError(count.error().text);
}

} // namespace

TransferFunctions::TransferFunctions(TransferEngine& engine, QString file)
    : m_engine(engine)
{
    m_queryThread.run([&] { m_queries = std::make_unique<TransferQueries>(std::move(file)); });
}

TransferFunctions::~TransferFunctions()
{
    m_queryThread.run([this] { m_queries.reset(); });
}

void TransferFunctions::addTo(FunctionRegistry& registry)
{
    const auto add = [&](const QString& name, Function function) {
        registry.add(name, [this, function](const Caller& caller, const Values& arguments) {
            const Result<qint64> context = m_engine.contextOf(caller);
            return context ? (this->*function)(caller, *context, arguments)
                           : storageError(context.error().text);
        });
    };
    add(names::folderUpload, &TransferFunctions::uploadFolder);
    add(names::uploadFiles, &TransferFunctions::uploadFiles);
    add(names::downloadDir, &TransferFunctions::downloadFolders);
    add(names::downloadFiles, &TransferFunctions::downloadFiles);
    add(names::uploadStates, &TransferFunctions::uploadStates);
    add(names::downloadStates, &TransferFunctions::downloadStates);
    add(names::listTransfers, &TransferFunctions::list);
    add(names::cancelTransfers, &TransferFunctions::cancel);
    add(names::retryTransfers, &TransferFunctions::retry);
    add(names::clearFinishedTransfers, &TransferFunctions::clearFinished);
    add(names::getRoamingMode, &TransferFunctions::getRoamingMode);
    add(names::changeRoamingMode, &TransferFunctions::changeRoamingMode);
}

CallResult TransferFunctions::uploadFolder(const Caller&, qint64 context, const Values& arguments)
{
    const QString problem = placeProblem(arguments);
    if (!problem.isEmpty())
        return badArgument(problem);
    const Transfer row = pattern(context, TransferDirection::Upload, arguments);
    // All rows are there when this answers: whoever asks for states next finds them.
    const auto task = carryOut(context, arguments, [&](TransferStore& store) -> Result<QString> {
        const Result<qint64> top = scanFolder(text(arguments, "path"), row,
                                              [&store](const Transfer& found) { return store.add(found); });
        return top ? Result<QString>(taskIdOf(*top)) : Result<QString>(top.error());
    });
    return task ? CallResult{ResultCode::Ok, {{QStringLiteral("taskid"), *task}}}
                : badArgument(task.error().text);
}

Result<QString> TransferFunctions::carryOut(qint64 context, const Values& arguments, const Add& add)
{
    const QString requestId = arguments.value(requestIdKey);
    return m_engine.withStore([&](TransferStore& store) -> Result<QString> {
        if (!store.begin())
            return Error{store.error()};
        const auto known = store.orderAnswer(context, requestId);
        const Result<QString> answer = known ? Result<QString>(*known) : add(store);
        if (known || !answer) {
            store.rollBack();
            return answer;
        }
        if (!store.noteOrder(context, requestId, *answer)) {
            const QString error = store.error();
            store.rollBack();
            return Error{error};
        }
        return store.commit() ? answer : Result<QString>(Error{store.error()});
    });
}

CallResult TransferFunctions::addAll(qint64 context, const Values& arguments, const QVector<Transfer>& rows)
{
    const auto tasks = carryOut(context, arguments, [&](TransferStore& store) -> Result<QString> {
        QStringList ids;
        for (const Transfer& transfer : rows) {
            const qint64 row = store.add(transfer);
            if (row == 0)
                return Error{store.error()};
            ids.append(taskIdOf(row));
        }
        return ids.join(u'|');
    });
    return tasks ? CallResult{ResultCode::Ok, {{QStringLiteral("taskids"), *tasks}}}
                 : storageError(tasks.error().text);
}

CallResult TransferFunctions::uploadFiles(const Caller&, qint64 context, const Values& arguments)
{
    const QJsonArray paths = QJsonDocument::fromJson(text(arguments, "paths").toUtf8()).array();
    QString problem = placeProblem(arguments);
    if (problem.isEmpty() && paths.isEmpty())
        problem = QStringLiteral("\"paths\" is empty or no list");
    QString fileId = text(arguments, "fileid");
    if (fileId == QLatin1String("0") || paths.size() != 1) // several files are no version of one
        fileId.clear();
    if (problem.isEmpty() && !fileId.isEmpty() && !isId(fileId))
        problem = QStringLiteral("\"fileid\" is no id");
    if (!problem.isEmpty())
        return badArgument(problem);

    QVector<Transfer> rows;
    for (const QJsonValue& value : paths) {
        Transfer row = pattern(context, TransferDirection::Upload, arguments);
        row.path = value.toString();
        row.name = QFileInfo(row.path).fileName();
        row.remoteId = fileId;
        row.problem = QDir::isAbsolutePath(row.path) ? QString() : QStringLiteral("The path is not absolute");
        // What is no file now would only be found out when its turn comes.
        const Result<SourceFile> source = openSource(row.path, true);
        if (source)
            row.size = source->size;
        else if (row.problem.isEmpty())
            row.problem = source.error().text;
        if (row.problem.isEmpty() && !isDriveName(row.name))
            row.problem = QStringLiteral("The name cannot be stored in the drive");
        if (!row.problem.isEmpty())
            row.state = TransferState::Failed;
        rows.append(row);
    }
    return addAll(context, arguments, rows);
}

CallResult TransferFunctions::downloadFolders(const Caller&, qint64 context, const Values& arguments)
{
    const QString directory = QDir::cleanPath(text(arguments, "directory"));
    QString problem = directoryProblem(directory);
    if (problem.isEmpty() && !isId(text(arguments, "groupid")))
        problem = QStringLiteral("\"groupid\" is no id");
    QVector<Transfer> rows;
    for (const QString& id : idsOf(text(arguments, "folderids"))) {
        Transfer row = pattern(context, TransferDirection::Download, arguments);
        row.kind = Transfer::Kind::Folder;
        row.remoteId = id;
        row.root = directory;
        row.size = 0;
        if (!isId(id))
            problem = QStringLiteral("\"%1\" is no id").arg(id);
        rows.append(row);
    }
    return problem.isEmpty() ? addAll(context, arguments, rows) : badArgument(problem);
}

CallResult TransferFunctions::downloadFiles(const Caller&, qint64 context, const Values& arguments)
{
    const QString directory = QDir::cleanPath(text(arguments, "directory"));
    const QString history = text(arguments, "historyid");
    QString problem = directoryProblem(directory);
    if (problem.isEmpty() && !history.isEmpty() && !isId(history))
        problem = QStringLiteral("\"historyid\" is no id");
    QVector<Transfer> rows;
    for (const QString& id : idsOf(text(arguments, "fileids"))) {
        Transfer row = pattern(context, TransferDirection::Download, arguments);
        row.remoteId = id;
        row.history = history == QLatin1String("0") ? QString() : history;
        row.root = directory;
        if (!isId(id))
            problem = QStringLiteral("\"%1\" is no id").arg(id);
        rows.append(row);
    }
    if (problem.isEmpty() && rows.isEmpty())
        problem = QStringLiteral("\"fileids\" is empty");
    return problem.isEmpty() ? addAll(context, arguments, rows) : badArgument(problem);
}

CallResult TransferFunctions::uploadStates(const Caller&, qint64 context, const Values& arguments)
{
    const RunningTransfers running = m_engine.running();
    const auto values = withQueries([&](TransferQueries& queries) {
        return queries.uploadStates(context, arguments.value(positionKey(0)), running);
    });
    return values ? CallResult{ResultCode::Ok, *values} : storageError(values.error().text);
}

CallResult TransferFunctions::downloadStates(const Caller&, qint64 context, const Values& arguments)
{
    const RunningTransfers running = m_engine.running();
    const auto values = withQueries([&](TransferQueries& queries) {
        return queries.downloadStates(context, arguments.value(positionKey(0)), running);
    });
    return values ? CallResult{ResultCode::Ok, *values} : storageError(values.error().text);
}

CallResult TransferFunctions::list(const Caller&, qint64 context, const Values& arguments)
{
    const auto direction = directionOf(text(arguments, "direction"));
    bool isOffset = false;
    bool isCount = false;
    const int offset = text(arguments, "offset").toInt(&isOffset);
    const int count = text(arguments, "count").toInt(&isCount);
    if (!direction || !isOffset || !isCount || offset < 0 || count < 0)
        return badArgument(QStringLiteral("\"direction\", \"offset\" or \"count\" is wrong"));
    const RunningTransfers running = m_engine.running();
    const auto page = withQueries([&](TransferQueries& queries) {
        return queries.list(context, *direction, offset, std::min(count, largestTransferPage), running);
    });
    return page ? CallResult{ResultCode::Ok, page->toValues()} : storageError(page.error().text);
}

CallResult TransferFunctions::cancel(const Caller&, qint64 context, const Values& arguments)
{
    return counted(m_engine.cancel(context, rowsOf(arguments)));
}

CallResult TransferFunctions::retry(const Caller&, qint64 context, const Values& arguments)
{
    const QVector<qint64> rows = rowsOf(arguments);
    return counted(m_engine.withStore([&](TransferStore& store) { return store.retry(context, rows); }));
}

CallResult TransferFunctions::clearFinished(const Caller&, qint64 context, const Values& arguments)
{
    const auto direction = directionOf(arguments.value(positionKey(0)));
    if (!direction)
        return badArgument(QStringLiteral("there is no such direction"));
    return counted(m_engine.clearFinished(context, *direction));
}

CallResult TransferFunctions::getRoamingMode(const Caller& caller, qint64, const Values&)
{
    const auto mode = m_engine.withStore([&](TransferStore& store) {
        return store.setting(caller.userId, roamingSetting, QStringLiteral("off"));
    });
    return mode ? CallResult{ResultCode::Ok, {{roamingSetting, *mode}}} : storageError(mode.error().text);
}

CallResult TransferFunctions::changeRoamingMode(const Caller& caller, qint64, const Values& arguments)
{
    const QString on = QStringLiteral("on");
    const QString off = QStringLiteral("off");
    const QString wish = arguments.value(positionKey(0));
    if (!wish.isEmpty() && wish != on && wish != off)
        return badArgument(QStringLiteral("\"%1\" is no roaming mode").arg(wish));
    const auto mode = m_engine.withStore([&](TransferStore& store) -> Result<QString> {
        const Result<QString> present = store.setting(caller.userId, roamingSetting, off);
        if (!present)
            return present;
        const QString next = !wish.isEmpty() ? wish : *present == on ? off : on;
        return store.setSetting(caller.userId, roamingSetting, next) ? Result<QString>(next)
                                                                     : Result<QString>(Error{store.error()});
    });
    return mode ? CallResult{ResultCode::Ok, {{roamingSetting, *mode}}} : storageError(mode.error().text);
}

} // namespace vlt::cloudsvr
