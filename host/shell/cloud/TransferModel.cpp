#include "shell/cloud/TransferModel.h"

#include "shell/cloud/TransferSource.h"
#include "shell/cloud/TransferTexts.h"

#include <QPointer>

#include <algorithm>

namespace shell {

using namespace vlt::cloudsvr;

namespace {

constexpr int rowsAround = 60; //!< those in sight, on either side

} // namespace

TransferModel::TransferModel(TransferSource& source, QObject* parent)
    : QAbstractTableModel(parent)
    , m_source(source)
{
    connect(&source, &TransferSource::changed, this, &TransferModel::refresh);
}

void TransferModel::setInSight(int first, int last)
{
    m_first = std::max(first, 0);
    m_last = std::max(last, m_first);
    const int lastHeld = m_list.offset + m_list.rows.size() - 1;
    if (m_first < m_list.offset || std::min(m_last, m_count - 1) > lastHeld)
        refresh();
}

void TransferModel::refresh()
{
    m_asksAgain = m_isAsking;
    if (m_isAsking)
        return;
    m_isAsking = true;
    const int offset = std::max(m_first - rowsAround, 0);
    const int count = std::min(m_last + rowsAround - offset + 1, largestTransferPage);
    m_source.list(offset, count,
                  [guarded = QPointer<TransferModel>(this)](bool success, const TransferList& list) {
                      if (guarded)
                          guarded->take(success, list);
                  });
}

void TransferModel::take(bool success, const TransferList& list)
{
    m_isAsking = false;
    m_isAnswered = success;
    if (success) {
        m_list.rows.clear(); // a view that reads while rows come or go finds none of the old ones
        setCount(std::max(list.total, 0));
        m_list = list;
        m_list.rows.resize(std::clamp(m_count - list.offset, 0, list.rows.size()));
        if (m_count > 0)
            Q_EMIT dataChanged(index(0, 0), index(m_count - 1, ColumnCount - 1));
    }
    Q_EMIT refreshed();
    if (m_asksAgain)
        refresh();
}

void TransferModel::setCount(int count)
{
    if (count > m_count) {
        beginInsertRows({}, m_count, count - 1);
        m_count = count;
        endInsertRows();
    } else if (count < m_count) {
        beginRemoveRows({}, count, m_count - 1);
        m_count = count;
        endRemoveRows();
    }
}

const TransferRow* TransferModel::row(int index) const
{
    const int held = index - m_list.offset;
    return held >= 0 && held < m_list.rows.size() ? &m_list.rows.at(held) : nullptr;
}

int TransferModel::indexOf(const QString& id) const
{
    const auto found = std::find_if(m_list.rows.begin(), m_list.rows.end(),
                                    [&](const TransferRow& each) { return each.id == id; });
    return found == m_list.rows.end() ? -1 : m_list.offset + static_cast<int>(found - m_list.rows.begin());
}

int TransferModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_count;
}

int TransferModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant TransferModel::data(const QModelIndex& index, int role) const
{
    const TransferRow* transfer = index.isValid() ? row(index.row()) : nullptr;
    if (!transfer)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return text(*transfer, index.column());
    case Qt::ToolTipRole:
        return index.column() == State ? text(*transfer, State) : transfer->path;
    case PercentRole:
        return transfertexts::percent(*transfer);
    case StateRole:
        return static_cast<int>(transfer->state);
    default:
        return {};
    }
}

QString TransferModel::text(const TransferRow& transfer, int column) const
{
    switch (column) {
    case Name:
        return transfer.name;
    case Size:
        return transfer.isFolder ? QString() : transfertexts::size(transfer.size);
    case Progress:
        return QStringLiteral("%1 %").arg(transfertexts::percent(transfer));
    case Speed:
        return transfertexts::speed(transfer.speed);
    case State:
        return transfertexts::state(transfer, m_source.direction());
    default:
        return {};
    }
}

QVariant TransferModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Name");
    case Size:
        return tr("Size");
    case Progress:
        return tr("Progress");
    case Speed:
        return tr("Speed");
    case State:
        return tr("State");
    default:
        return {};
    }
}

} // namespace shell
