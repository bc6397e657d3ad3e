#pragma once

#include "vltcloudsvr/common/Transfers.h"

#include <QAbstractTableModel>

namespace shell {

class TransferSource;

/**
 * The transfers of a source as a table of which only the rows around those in sight are held; the others read
 * as empty until they come in sight. Follows the changes of the source; one question is open at a time.
 */
class TransferModel final : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column { Name, Size, Progress, Speed, State, ColumnCount };
    enum Role {
        PercentRole = Qt::UserRole, //!< 0 to 100
        StateRole                   //!< vlt::cloudsvr::TransferState as int; invalid for rows not held
    };

    /** `source` outlives the model. */
    explicit TransferModel(TransferSource& source, QObject* parent = nullptr);

    /** The rows that the user sees; asks for them unless they are held. */
    void setInSight(int first, int last);
    /** Asks the source again for what is in sight. */
    void refresh();

    /** Null when the row is not held. */
    const vlt::cloudsvr::TransferRow* row(int index) const;
    /** The row of an id among those held; -1 for none. */
    int indexOf(const QString& id) const;
    /** The numbers of the last answer; its rows are those that are held. */
    const vlt::cloudsvr::TransferList& list() const { return m_list; }
    /** False when the last question was not answered. */
    bool isAnswered() const { return m_isAnswered; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /** The rows and numbers are those of a new answer, or there was none. */
    void refreshed();

private:
    void take(bool success, const vlt::cloudsvr::TransferList& list);
    void setCount(int count);
    QString text(const vlt::cloudsvr::TransferRow& row, int column) const;

    TransferSource& m_source;
    vlt::cloudsvr::TransferList m_list;
    int m_first = 0;
    int m_last = 0;
    int m_count = 0;
    bool m_isAsking = false;
    bool m_asksAgain = false;
    bool m_isAnswered = true;
};

} // namespace shell
