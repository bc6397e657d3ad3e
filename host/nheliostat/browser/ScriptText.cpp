#include "nheliostat/browser/ScriptText.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

namespace nheliostat::browser {

namespace {

QString readResource(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing resource %s", qPrintable(path));
    return QString::fromUtf8(file.readAll());
}

QString ownResource(const char* name)
{
    return readResource(QStringLiteral(":/nheliostat/browser/") + QLatin1String(name));
}

} // namespace

QString freshSecret()
{
    quint32 random[8];
    QRandomGenerator::system()->fillRange(random);
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(random), sizeof(random));
    return QString::fromLatin1(bytes.toHex());
}

QString scriptObjectText(const QString& viewSecret, const QStringList& origins)
{
    static const QString channel = readResource(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
    static const QString object = ownResource("helio.js");
    const QJsonObject setup{{QStringLiteral("secret"), viewSecret},
                            {QStringLiteral("origins"), QJsonArray::fromStringList(origins)}};
    const QString setupText = QString::fromUtf8(QJsonDocument(setup).toJson(QJsonDocument::Compact));
    return QLatin1String("(function (setup) {\n'use strict';\n") + channel + QLatin1Char('\n') + object +
           QLatin1String("\n})(") + setupText + QLatin1String(");\n");
}

QString evaluationText(int id, const QString& code)
{
    static const QString text = ownResource("evaluate.js");
    return QString(text)
        .replace(QLatin1String("@ID@"), QString::number(id))
        .replace(QLatin1String("@CODE@"), code);
}

QString evaluationPollText(int id)
{
    static const QString text = ownResource("evaluate_poll.js");
    return QString(text).replace(QLatin1String("@ID@"), QString::number(id));
}

QString documentQuestionText()
{
    static const QString text = ownResource("ask_document.js");
    return text;
}

QString documentStateText()
{
    static const QString text = ownResource("document_state.js");
    return text;
}

QString loadProbeText()
{
    static const QString text = ownResource("load_probe.js");
    return text;
}

} // namespace nheliostat::browser
