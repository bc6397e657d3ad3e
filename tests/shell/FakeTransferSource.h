#pragma once

#include "shell/cloud/TransferSource.h"

#include <QPair>
#include <QVector>

#include <utility>

/** Transfers that a test makes; answers only when it is told to. */
class FakeTransferSource final : public shell::TransferSource
{
    Q_OBJECT
public:
    using TransferSource::TransferSource;

    vlt::cloudsvr::TransferDirection direction() const override { return shownDirection; }
    void list(int offset, int count, Reply reply) override
    {
        asked.append({offset, count});
        m_open.append({{offset, count}, std::move(reply)});
    }
    void cancel(const QStringList& ids) override { cancelled += ids; }
    void retry(const QStringList& ids) override { retried += ids; }
    void clearFinished() override { ++cleared; }

    /** Answers all questions, those too that come of the answers. */
    void deliverAll(bool success = true)
    {
        while (!m_open.isEmpty()) {
            const auto [place, reply] = m_open.takeFirst();
            vlt::cloudsvr::TransferList page = numbers;
            page.offset = place.first;
            page.rows = rows.mid(place.first, place.second);
            page.total = rows.size();
            reply(success, page);
        }
    }

    vlt::cloudsvr::TransferDirection shownDirection = vlt::cloudsvr::TransferDirection::Upload;
    QVector<vlt::cloudsvr::TransferRow> rows;
    vlt::cloudsvr::TransferList numbers;
    QVector<QPair<int, int>> asked;
    QStringList cancelled;
    QStringList retried;
    int cleared = 0;

private:
    QVector<QPair<QPair<int, int>, Reply>> m_open;
};
