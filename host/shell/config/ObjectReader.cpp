#include "shell/config/ObjectReader.h"

#include <cmath>
#include <limits>
#include <utility>

namespace shell {

ObjectReader::ObjectReader(QJsonObject object, QString path)
    : m_object(std::move(object))
    , m_path(std::move(path))
{
}

QString ObjectReader::pathOf(const QString& name) const
{
    return m_path.isEmpty() ? name : m_path + QLatin1Char('.') + name;
}

const QJsonValue* ObjectReader::take(const QString& name, QJsonValue& storage)
{
    m_asked.insert(name);
    const auto member = m_object.constFind(name);
    if (member == m_object.constEnd())
        return nullptr;
    storage = member.value();
    return &storage;
}

void ObjectReader::read(const QString& name, QString& target)
{
    QJsonValue value;
    if (!take(name, value))
        return;
    if (value.isString())
        target = value.toString();
    else
        fail(name, QStringLiteral("must be a text"));
}

void ObjectReader::read(const QString& name, bool& target)
{
    QJsonValue value;
    if (!take(name, value))
        return;
    if (value.isBool())
        target = value.toBool();
    else
        fail(name, QStringLiteral("must be true or false"));
}

void ObjectReader::read(const QString& name, quint32& target)
{
    QJsonValue value;
    if (!take(name, value))
        return;
    const double number = value.toDouble(-1);
    if (number >= 0 && number <= std::numeric_limits<quint32>::max() && std::floor(number) == number)
        target = static_cast<quint32>(number);
    else
        fail(name, QStringLiteral("must be an integer of 0 to 4294967295"));
}

void ObjectReader::readObject(const QString& name, const std::function<void(ObjectReader&)>& visit)
{
    QJsonValue value;
    if (!take(name, value))
        return;
    if (!value.isObject()) {
        fail(name, QStringLiteral("must be an object"));
        return;
    }
    ObjectReader reader(value.toObject(), pathOf(name));
    visit(reader);
    const QString error = reader.finish();
    if (m_error.isEmpty())
        m_error = error;
}

void ObjectReader::forEach(const std::function<void(const QString&, const QJsonValue&)>& visit)
{
    for (auto member = m_object.constBegin(); member != m_object.constEnd(); ++member) {
        m_asked.insert(member.key());
        visit(member.key(), member.value());
    }
}

void ObjectReader::fail(const QString& name, const QString& text)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("member \"%1\" %2").arg(pathOf(name), text);
}

QString ObjectReader::finish()
{
    for (auto member = m_object.constBegin(); m_error.isEmpty() && member != m_object.constEnd(); ++member) {
        if (!m_asked.contains(member.key()))
            m_error = QStringLiteral("unknown member \"%1\"").arg(pathOf(member.key()));
    }
    return m_error;
}

} // namespace shell
