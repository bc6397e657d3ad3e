#include "ncloudfiledialog/CfdDialog.h"

#include <QFileSystemModel>
#include <QHeaderView>
#include <QListView>
#include <QMessageBox>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>
#include <QUrl>

#include <algorithm>

namespace cfd {

namespace {

constexpr QSize dialogSize(820, 520);
constexpr int placesWidth = 150;

bool isRoot(const QString& path)
{
    return QDir::cleanPath(path) == QDir::rootPath();
}

} // namespace

CfdDialog::CfdDialog(const CfdPlan& plan, QWidget* parent)
    : QFileDialog(parent, plan.title, plan.directory)
    , m_plan(plan)
{
    setObjectName(plan.source);
    // Only the toolkit's own dialog takes the palette and several directories.
    setOption(DontUseNativeDialog);
    const bool choosesDirectories = plan.choice == CfdPlan::Choice::Directories;
    setAcceptMode(plan.choice == CfdPlan::Choice::SaveFile ? AcceptSave : AcceptOpen);
    if (choosesDirectories) {
        setFileMode(Directory);
        setOption(ShowDirsOnly);
    } else {
        setFileMode(plan.choice == CfdPlan::Choice::SaveFile ? AnyFile
                    : plan.multiple                          ? ExistingFiles
                                                             : ExistingFile);
        setNameFilters(plan.filters);
        selectNameFilter(plan.selectedFilter);
    }
    if (!plan.confirmLabel.isEmpty())
        setLabelText(Accept, plan.confirmLabel);
    if (choosesDirectories && plan.multiple) {
        for (const QString& name : {QStringLiteral("listView"), QStringLiteral("treeView")}) {
            if (auto* view = findChild<QAbstractItemView*>(name))
                view->setSelectionMode(QAbstractItemView::ExtendedSelection);
        }
    }
    if (!plan.showsRecent)
        setHistory({});
    showPlaces();
    widenColumns();
    resize(dialogSize);
}

void CfdDialog::widenColumns()
{
    if (auto* files = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        files->header()->setSectionResizeMode(0, QHeaderView::Stretch); // the name
    }
    if (auto* splitter = findChild<QSplitter*>(QStringLiteral("splitter")))
        splitter->setSizes({placesWidth, dialogSize.width() - placesWidth});
}

void CfdDialog::showPlaces()
{
    QList<QUrl> places;
    for (const auto location : {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation,
                                QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation}) {
        const QUrl place = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
        if (QFileInfo(place.toLocalFile()).isDir() && !places.contains(place))
            places.append(place);
    }
    places.append(QUrl::fromLocalFile(QDir::rootPath()));
    setSidebarUrls(places);
}

void CfdDialog::accept()
{
    const QStringList untypable = untypableSelection();
    const QStringList paths = untypable.isEmpty() ? selectedFiles() : untypable;
    if (!m_plan.allowsRoot && std::any_of(paths.begin(), paths.end(), &isRoot)) {
        QMessageBox::information(this, windowTitle(),
                                 tr("The root of the file system cannot be chosen. Choose a folder in it."));
        return;
    }
    if (!untypable.isEmpty())
        done(Accepted);
    else
        QFileDialog::accept();
    if (result() == QDialog::Accepted) {
        for (const QString& path : paths)
            m_chosen.append(QDir::cleanPath(QFileInfo(path).absoluteFilePath()));
    }
}

QStringList CfdDialog::untypableSelection() const
{
    // The toolkit reads the names back from the text in which it quotes them.
    QStringList paths;
    bool hasQuote = false;
    const auto* view = findChild<QListView*>(QStringLiteral("listView"));
    if (!view || !view->selectionModel() || acceptMode() == AcceptSave)
        return {};
    const QModelIndexList rows = view->selectionModel()->selectedRows();
    for (const QModelIndex& row : rows) {
        paths.append(row.data(QFileSystemModel::FilePathRole).toString());
        const QFileInfo file(paths.constLast());
        if ((fileMode() == Directory) != file.isDir())
            return {};
        hasQuote = hasQuote || file.fileName().contains(u'"');
    }
    return hasQuote ? paths : QStringList();
}

} // namespace cfd
