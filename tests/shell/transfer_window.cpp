#include "FakeTransferSource.h"
#include "shell/cloud/TransferTexts.h"
#include "shell/cloud/TransferWindow.h"

#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTreeView>

using namespace vlt::cloudsvr;
using shell::TransferModel;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

TransferRow row(int number, TransferState state = TransferState::Queued)
{
    TransferRow made;
    made.id = QStringLiteral("t%1").arg(number);
    made.name = QStringLiteral("file %1").arg(number);
    made.size = 1000;
    made.state = state;
    return made;
}

TEST(TransferTexts, PercentStaysInItsRange)
{
    TransferRow shown = row(1, TransferState::Running);
    for (const auto& [size, done, percent] :
         {std::tuple<qint64, qint64, int>{1000, 999, 99}, {-1, 50, 0}, {0, 0, 0}, {10, 20, 100}}) {
        shown.size = size;
        shown.done = done;
        EXPECT_EQ(shell::transfertexts::percent(shown), percent) << size << " " << done;
    }
    EXPECT_EQ(shell::transfertexts::percent(row(1, TransferState::Finished)), 100);
}

class TransferWindowOf : public testing::Test
{
protected:
    void show(int count)
    {
        for (int i = 0; i < count; ++i)
            source->rows.append(row(i));
        source->numbers.active = count;
        window.show();
        update();
    }
    void update()
    {
        Q_EMIT source->changed();
        source->deliverAll();
        QCoreApplication::processEvents();
    }
    QString text(int index) const
    {
        return window.findChild<QTreeView*>()->model()->index(index, TransferModel::Name).data().toString();
    }
    void select(int from, int to)
    {
        QTreeView& view = *window.findChild<QTreeView*>();
        view.selectionModel()->select({view.model()->index(from, 0), view.model()->index(to, 4)},
                                      QItemSelectionModel::ClearAndSelect);
    }
    void press(const char* name) { window.findChild<QPushButton*>(s(name))->click(); }

    FakeTransferSource* source = new FakeTransferSource;
    shell::TransferWindow window{source, nullptr};
};

TEST_F(TransferWindowOf, HoldsTheRowsInSightOnly)
{
    show(10000);
    EXPECT_EQ(window.model().rowCount(), 10000);
    EXPECT_EQ(text(0), s("file 0"));
    EXPECT_EQ(text(5000), QString());
    QTreeView& view = *window.findChild<QTreeView*>();
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    source->deliverAll();
    EXPECT_EQ(text(9999), s("file 9999"));
    EXPECT_EQ(text(0), QString());
    for (const auto& [offset, count] : source->asked)
        EXPECT_LE(count, 200) << "from " << offset;

    source->rows.resize(3);
    update();
    EXPECT_EQ(window.model().rowCount(), 3);
    EXPECT_EQ(text(2), s("file 2"));
}

TEST_F(TransferWindowOf, AsksOnceMoreForChangesWhileItAsks)
{
    show(5);
    source->asked.clear();
    for (int i = 0; i < 10; ++i)
        Q_EMIT source->changed();
    EXPECT_EQ(source->asked.size(), 1);
    source->deliverAll();
    EXPECT_EQ(source->asked.size(), 2);
}

TEST_F(TransferWindowOf, TheSelectionStaysWithItsTransfers)
{
    show(10);
    select(2, 3);
    std::swap(source->rows[2], source->rows[8]);
    source->rows.removeFirst();
    update();
    const QModelIndexList marked = window.findChild<QTreeView*>()->selectionModel()->selectedRows();
    ASSERT_EQ(marked.size(), 2);
    EXPECT_EQ(text(marked.at(0).row()), s("file 3"));
    EXPECT_EQ(text(marked.at(1).row()), s("file 2"));
    press("cancel");
    EXPECT_THAT(source->cancelled, UnorderedElementsAre(s("t2"), s("t3")));
}

TEST_F(TransferWindowOf, ButtonsMeanAllWhenNothingIsSelected)
{
    show(1200);
    for (int i = 0; i < 600; ++i)
        source->rows[i].state = i % 2 ? TransferState::Failed : TransferState::Finished;
    source->numbers.failed = source->numbers.finished = 300;
    update();
    press("cancel");
    source->deliverAll();
    EXPECT_EQ(source->cancelled.size(), 600);
    press("retry");
    source->deliverAll();
    EXPECT_EQ(source->retried.size(), 300);
    EXPECT_TRUE(source->retried.contains(s("t599")));
    press("clear");
    EXPECT_EQ(source->cleared, 1);
}

TEST_F(TransferWindowOf, SaysThatTheServiceDoesNotAnswer)
{
    show(1);
    Q_EMIT source->changed();
    source->deliverAll(false);
    EXPECT_EQ(window.findChild<QLabel*>(s("summary"))->text(), s("The cloud service does not answer."));
    EXPECT_EQ(window.model().rowCount(), 1) << "what was known stays";
}

} // namespace
