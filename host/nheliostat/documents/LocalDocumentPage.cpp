#include "nheliostat/documents/LocalDocumentPage.h"

#include "nheliostat/NHelioApplication.h"
#include "nheliostat/NHelioCloudSvrProxy.h"
#include "nheliostat/documents/DocumentMessage.h"
#include "nheliostat/documents/DocumentViews.h"
#include "nheliostat/documents/LocalDocumentFetch.h"
#include "nheliostat/documents/LocalDocumentSubPage.h"
#include "zeolite/NCoreApplication.h"
#include "zeolite/NDomainMgr.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStackedLayout>
#include <QTemporaryDir>
#include <QUrl>

namespace {

LocalDocumentSource documentSource()
{
    const NHelioApplication* application = NHelioApplication::instance();
    NCoreApplication* services = NCoreApplication::instance();
    const NDomainMgr* domains = services ? services->getDomainMgr() : nullptr;
    return {application ? application->cloudSvrProxy() : nullptr,
            domains ? domains->getDomainUrl(QStringLiteral("quill_api")) : QString()};
}

QString cacheDirectory()
{
    NHelioUserInfo user;
    if (const NHelioCloudSvrProxy* service = documentSource().service)
        service->currentUserInfo(user);
    return user.cacheRoot.isEmpty() ? QDir::tempPath() : user.cacheRoot + QStringLiteral("/opened");
}

QString pathOf(const QString& text)
{
    const QUrl url(text);
    return url.isLocalFile() ? url.toLocalFile() : text;
}

} // namespace

LocalDocumentPage::LocalDocumentPage(bool offersSystem, QWidget* parent)
    : NHelioVltPage(parent)
    , m_offersSystem(offersSystem)
    , m_stack(new QStackedLayout(this))
    , m_message(new DocumentMessage(this))
{
    setObjectName(QStringLiteral("documentPage"));
    setAttribute(Qt::WA_StyledBackground);
    m_stack->addWidget(m_message);
    connect(m_message, &DocumentMessage::retryRequested, this, &LocalDocumentPage::fetch);
    showFailure(tr("No document is open."));
    m_state = State::Empty;
}

LocalDocumentPage::~LocalDocumentPage() = default;

void LocalDocumentPage::open(const LocalDocumentRequest& request)
{
    m_request = request;
    setProperty("File_ID", request.fileId);
    setProperty("fileName", request.fileName);
    setTitle(request.fileName.isEmpty() ? request.fileId : request.fileName);
    fetch();
}

void LocalDocumentPage::fetch()
{
    if (!m_request.namesFile())
        return showFailure(m_request.fileId.isEmpty() || m_request.fileId == QLatin1String("-1")
                               ? tr("The document has not been stored in the cloud yet.")
                               : tr("\"%1\" is no file of the cloud.").arg(m_request.fileId));
    if (!prepareDirectory())
        return showFailure(tr("There is no room for the file in \"%1\".").arg(cacheDirectory()));
    m_fetch = std::make_unique<LocalDocumentFetch>(documentSource(), m_request, m_directory->path());
    const QString heading = tr("Opening %1…").arg(pageTitle());
    connect(m_fetch.get(), &LocalDocumentFetch::progressed, this,
            [this, heading](int percent) { m_message->showProgress(heading, percent); });
    connect(m_fetch.get(), &LocalDocumentFetch::fetched, this, &LocalDocumentPage::show);
    connect(m_fetch.get(), &LocalDocumentFetch::failed, this, &LocalDocumentPage::showFailure);
    m_state = State::Fetching;
    m_path.clear();
    m_message->showProgress(heading, 0);
    m_stack->setCurrentWidget(m_message);
    m_fetch->start();
}

bool LocalDocumentPage::prepareDirectory()
{
    m_fetch.reset();
    const QString cache = cacheDirectory();
    QDir().mkpath(cache);
    m_directory = std::make_unique<QTemporaryDir>(cache + QStringLiteral("/document-XXXXXX"));
    return m_directory->isValid();
}

void LocalDocumentPage::show(const QString& path, const QString& name)
{
    delete m_view;
    const QString title = name.isEmpty() ? QFileInfo(path).fileName() : name;
    DocumentViewSetup setup;
    setup.title = title;
    if (m_offersSystem)
        setup.openWithSystem = [this] { openWithSystem(); };
    m_view = createDocumentView(path, setup, this);
    if (!m_view)
        return showFailure(tr("\"%1\" is no file that can be read.").arg(title));
    m_state = State::Shown;
    m_path = path;
    setTitle(title);
    m_stack->addWidget(m_view);
    m_stack->setCurrentWidget(m_view);
}

void LocalDocumentPage::showFailure(const QString& why)
{
    m_state = State::Failed;
    m_path.clear();
    m_message->showFailure(m_title.isEmpty() ? QString() : tr("%1 cannot be opened.").arg(m_title), why,
                           m_request.namesFile());
    m_stack->setCurrentWidget(m_message);
}

void LocalDocumentPage::setTitle(const QString& title)
{
    m_title = title;
    if (NHelioSubPage* subPage = initialSubPage())
        subPage->setWindowTitle(title);
}

QString LocalDocumentPage::pageTitle() const
{
    return m_title.isEmpty() ? tr("Document") : m_title;
}

NHelioSubPage* LocalDocumentPage::createSubPage(NHelioSubPages* subPages)
{
    auto* subPage = new LocalDocumentSubPage(subPages);
    subPage->setWindowTitle(m_title);
    return subPage;
}

void LocalDocumentPage::notify(const QString& text)
{
    const QString path = pathOf(text);
    m_fetch.reset();
    m_request = {};
    m_request.fileName = QFileInfo(path).fileName();
    setTitle(m_request.fileName);
    show(path, m_request.fileName);
}

bool LocalDocumentPage::openFiles(const QStringList& args, const QStringList&, NHelioProxyStrategy,
                                  NHelioSubPage*, const QVariantMap&)
{
    if (args.size() != 1)
        return false;
    notify(args.first());
    return m_state == State::Shown;
}

bool LocalDocumentPage::openLocalFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy,
                                       NHelioSubPage*, const QVariantMap&, bool activate)
{
    if (args.isEmpty())
        return false;
    LocalDocumentRequest request;
    request.fileId = args.first();
    request.fileName = names.value(0);
    open(request);
    if (activate && initialSubPage())
        initialSubPage()->activate({}, true);
    return m_state != State::Failed;
}

NHelioSubPage* LocalDocumentPage::findSubPage(const QMap<QString, QString>& parameters,
                                              bool includesHidden) const
{
    const bool counts = m_state == State::Fetching || m_state == State::Shown || includesHidden;
    return counts && m_request.isNamedBy(parameters) ? initialSubPage() : nullptr;
}

bool LocalDocumentPage::closeSubPage(NHelioSubPage* subPage)
{
    return subPage && subPage == initialSubPage() && close();
}

void LocalDocumentPage::openWithSystem()
{
    // The other program may write to it: it is no longer this page's to remove.
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(m_path)) && m_directory)
        m_directory->setAutoRemove(false);
}
