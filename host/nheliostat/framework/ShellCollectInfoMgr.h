#pragma once

#include "nheliostat/NHelioApplication.h"

#include <functional>

/** Remembers when the last open was asked for, while it can still be under way. User-interface thread. */
class ShellCollectInfoMgr final : public NHelioCloudCollectInfoMgr
{
public:
    /** Answers monotonic nanoseconds. */
    using Clock = std::function<qint64()>;

    ShellCollectInfoMgr();
    explicit ShellCollectInfoMgr(Clock clock);

    /** The shell was asked to open something just now. */
    void markOpenStarted();

    /** 0 when no open was asked for within the last minute. */
    qint64 openStartTime() const override;
    void reportDownloadProhibited() override;
    /** The event "tab_menu_click" with the item and the type of the page. */
    void reportTabMenuClick(const QString& item, NHelioSubPage* subPage) override;
    void sendCloudFileOpen(const QString& userId, const QString& source, const QString& action,
                           int virtualType) override;

private:
    Clock m_clock;
    qint64 m_openStart = 0;
};
