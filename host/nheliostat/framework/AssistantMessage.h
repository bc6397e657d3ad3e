#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/** A message to the assistant, as its panel shows it. */
struct AssistantMessage
{
    QString source;    //!< who sent it; may be empty
    QString docSource; //!< where its document lives, such as "online"; may be empty
    QString data;      //!< indented JSON; its beginning when there is very much of it
    QDateTime time;

    /**
     * From the text {"data": object, "receiverId": the panel's id, "docSource"}. Nothing when it is malformed
     * or meant for another receiver.
     */
    static std::optional<AssistantMessage> parse(const QString& text, const QString& receiverId,
                                                 const QString& source, const QDateTime& time);
};
