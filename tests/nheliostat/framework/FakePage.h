#pragma once

#include "nheliostat/NHelioPage.h"
#include "nheliostat/NHelioSubPage.h"

#include <QStringList>

#include <functional>

/** A sub page with a work-area record and one menu action of its own. */
class FakeSubPage final : public NHelioSubPage
{
    Q_OBJECT
public:
    using NHelioSubPage::NHelioSubPage;

    bool supportsWorkArea() const override { return true; }
    void doAttachContextMenuActions(QMenu* menu) override;
    NHelioTabDelegate* createTabDelegate(QObject* parent) override;

    QIcon icon;
};

/** A page that writes what happens to it, with its name in front, into a list that outlives it. */
class FakePage final : public NHelioAppPage
{
    Q_OBJECT
public:
    static constexpr int type = 901;

    FakePage(QString name, QStringList& log, QWidget* parent = nullptr);
    ~FakePage() override;

    int widgetType() const override { return type; }
    QString pageTitle() const override { return title; }
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override;
    void notify(const QString& text) override { write(QStringLiteral("notify(%1)").arg(text)); }
    void load() override;
    bool isDiscardable() const override { return discardable; }
    void releasePage() override;
    bool isReleased() const override { return released; }
    void notifyFocusIn() override { write(QStringLiteral("notifyFocusIn")); }
    void updateLastActiveTime() override { write(QStringLiteral("updateLastActiveTime")); }
    void handleNotifyParams(const QVariantMap& params) override;

    Q_INVOKABLE void refreshPage() { write(QStringLiteral("refreshPage")); }

    FakeSubPage* subPage() const { return static_cast<FakeSubPage*>(initialSubPage()); }

    QString title;
    bool discardable = false;
    bool released = false;
    bool refusesToClose = false;
    std::function<void()> whenAskedToClose;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void onActived() { write(QStringLiteral("subPageActived")); }
    void write(const QString& what) { m_log.append(m_name + u'.' + what); }

    QString m_name;
    QStringList& m_log;
};
