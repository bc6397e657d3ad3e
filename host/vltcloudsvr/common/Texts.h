#pragma once

#include <QMap>
#include <QString>

#include <map>
#include <string>

namespace vlt::cloudsvr {

inline QMap<QString, QString> toQt(const std::map<std::string, std::string>& texts)
{
    QMap<QString, QString> converted;
    for (const auto& [key, value] : texts)
        converted.insert(QString::fromStdString(key), QString::fromStdString(value));
    return converted;
}

inline std::map<std::string, std::string> toStd(const QMap<QString, QString>& texts)
{
    std::map<std::string, std::string> converted;
    for (auto text = texts.begin(); text != texts.end(); ++text)
        converted.emplace(text.key().toStdString(), text.value().toStdString());
    return converted;
}

} // namespace vlt::cloudsvr
