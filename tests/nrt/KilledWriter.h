#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/**
 * Lets the writer program store at least `count` numbers and kills it in the middle of its work. Answers the
 * last number that it said was stored; 0 when it did not run.
 */
inline int lastNumberOfKilledWriter(const QString& store, const QString& dataDir, int count)
{
    QProcess writer;
    writer.start(QStringLiteral(WRITER_PROGRAM), QStringList{store, dataDir});
    int last = 0;
    while (last < count && (writer.canReadLine() || writer.waitForReadyRead()))
        last = writer.readLine().trimmed().toInt();
    writer.kill();
    writer.waitForFinished();
    while (writer.canReadLine())
        last = writer.readLine().trimmed().toInt();
    return last;
}
