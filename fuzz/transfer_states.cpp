#include "check.h"

#include "bridge/TransferStates.h"

#include <QStringList>

// The input's lines are the states of one path and the record of its result; the whole is the state of
// downloads.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(inputBytes(data, size));
    const QStringList lines = text.split(QLatin1Char('\n'));
    const QString path = QStringLiteral("p");
    UploadWatch watch;
    for (int i = 0; i + 1 < lines.size(); i += 2) {
        const QMap<QString, QString> records{{path, lines[i]},
                                             {path + QStringLiteral("_result"), lines[i + 1]}};
        uploadItem(records, path);
        watch.takeIn({path}, records);
    }
    const DownloadState state = DownloadState::parse(text);
    check(state.hasPayload || state.payload.isEmpty());
    check(!state.payload.contains(QLatin1Char('\n')));
    return 0;
}
