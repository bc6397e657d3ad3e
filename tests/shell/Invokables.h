#pragma once

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

/** Methods of the kinds that pages offer by name. */
class Invokables final : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE QString join(const QStringList& texts, const QString& between) { return texts.join(between); }
    Q_INVOKABLE int add(int a, int b = 100) { return a + b; }
    Q_INVOKABLE double half(double number) { return number / 2; }
    Q_INVOKABLE bool negate(bool value) { return !value; }
    Q_INVOKABLE QVariantMap swap(const QVariantMap& map) { return {{QStringLiteral("was"), map}}; }
    Q_INVOKABLE QVariant same(const QVariant& value) { return value; }
    Q_INVOKABLE QMap<QString, QString> info() { return {{QStringLiteral("a"), QStringLiteral("b")}}; }
    Q_INVOKABLE QString kind(const QString&) { return QStringLiteral("text"); }
    Q_INVOKABLE QString kind(int) { return QStringLiteral("number"); }
    Q_INVOKABLE void object(QObject*) {}

    QString last;

public Q_SLOTS:
    void remember(const QString& text) { last = text; }
};
