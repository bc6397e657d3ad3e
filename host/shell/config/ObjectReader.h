#pragma once

#include <QJsonObject>
#include <QSet>
#include <QString>

#include <functional>

namespace shell {

/**
 * Reads the members of a JSON object strictly: a member of the wrong type is an error, and so is a member
 * that nobody asked for. The first error is kept; what follows it is read but of no consequence. A member
 * that is missing leaves the target as it is.
 */
class ObjectReader
{
public:
    /** `path` names the object in error texts ("user"); empty for the outermost one. */
    ObjectReader(QJsonObject object, QString path);

    void read(const QString& name, QString& target);
    void read(const QString& name, bool& target);
    void read(const QString& name, quint32& target);
    /** Calls `visit` with the reader of the member, which must be an object, and takes over its error. */
    void readObject(const QString& name, const std::function<void(ObjectReader&)>& visit);
    /** Calls `visit` for every member of the object that is a map: its names are free. */
    void forEach(const std::function<void(const QString& name, const QJsonValue& value)>& visit);

    /** Keeps the error unless there is one: "<path of member>: <text>". */
    void fail(const QString& name, const QString& text);
    /** Empty, or the first error; a member that was not asked for is the last that can be one. */
    QString finish();

private:
    QString pathOf(const QString& name) const;
    /** The member, when it is there; marks it as asked for. */
    const QJsonValue* take(const QString& name, QJsonValue& storage);

    QJsonObject m_object;
    QString m_path;
    QSet<QString> m_asked;
    QString m_error;
};

} // namespace shell
