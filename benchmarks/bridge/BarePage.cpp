#include "BarePage.h"

#include <QVBoxLayout>

QByteArray sampleText(int size)
{
    const QByteArray line =
        QByteArrayLiteral("<p class=\"line\">A \"quoted\" word, \xe6\x96\x87\xe6\xa1\xa3.</p>\n");
    return line.repeated(size / line.size() + 1);
}

QString BareEcho::produce(int size) const
{
    return QString::fromUtf8(sampleText(size));
}

BarePage::BarePage(QWidget* parent)
    : QObject(parent)
{
    m_channel.registerObject(QStringLiteral("echo"), &m_echo);
    m_view.page()->setWebChannel(&m_channel);
    parent->layout()->addWidget(&m_view);
    connect(m_view.page(), &QWebEnginePage::loadFinished, this, &BarePage::loaded);
}

void BarePage::load()
{
    m_view.setHtml(QStringLiteral("<script src='qrc:///qtwebchannel/qwebchannel.js'></script>"
                                  "<script>new QWebChannel(qt.webChannelTransport, (channel) => {"
                                  "  window.echo = channel.objects.echo; });</script>"),
                   QUrl(QStringLiteral("qrc:///bare.html")));
}
