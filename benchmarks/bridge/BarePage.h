#pragma once

#include "nheliostat/browser/ScriptEvaluator.h"

#include <QWebChannel>
#include <QWebEngineView>

/** Text as documents hold it, with quotes, markup and letters of two alphabets; `size` UTF-8 bytes, a little
 * more. */
QByteArray sampleText(int size);

/** The plainest object on a channel. */
class BareEcho final : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE QString ping(const QString& text) const { return text; }
    Q_INVOKABLE QString produce(int size) const;
};

/** A web view with nothing but a QWebChannel on it: what the script object is measured against. */
class BarePage final : public QObject
{
    Q_OBJECT
public:
    explicit BarePage(QWidget* parent);

    /** Shows a page whose `window.echo` is the object. */
    void load();
    nheliostat::browser::ScriptEvaluator& evaluator() { return m_evaluator; }

Q_SIGNALS:
    void loaded();

private:
    BareEcho m_echo;
    QWebChannel m_channel;
    QWebEngineView m_view;
    nheliostat::browser::ScriptEvaluator m_evaluator{*m_view.page()};
};
