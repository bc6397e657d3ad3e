#pragma once

#include "nheliostat/NHelioPage.h"
#include "nheliostat/documents/LocalDocumentRequest.h"

#include <memory>

class DocumentMessage;
class LocalDocumentFetch;
class QStackedLayout;
class QTemporaryDir;

/**
 * A page that shows one local document: a file of this machine, or a file of the cloud that it has brought to
 * this machine. The copy of a file of the cloud goes with the page, unless another program was given it.
 */
class LocalDocumentPage final : public NHelioVltPage
{
    Q_OBJECT
public:
    /** The widget type it is registered under. */
    static constexpr int type = 2;
    enum class State { Empty, Fetching, Failed, Shown };

    /** `offersSystem`: whether files may be handed to programs of the system. */
    explicit LocalDocumentPage(bool offersSystem, QWidget* parent = nullptr);
    ~LocalDocumentPage() override;

    /** Brings the file of the cloud here and shows it; what was shown before goes. */
    void open(const LocalDocumentRequest& request);
    /** What was opened last; of a file of this machine only the name. */
    const LocalDocumentRequest& request() const { return m_request; }
    State state() const { return m_state; }
    /** The file that is shown; empty for none. */
    QString path() const { return m_path; }

    int widgetType() const override { return type; }
    QString pageTitle() const override;
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override;
    /** The path or "file" URL of a file of this machine. */
    void notify(const QString& text) override;
    /** Does nothing: a document is shown when it is opened. */
    void load() override {}
    /** One path of this machine. */
    bool openFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                   NHelioSubPage* subPage, const QVariantMap& extra) override;
    /** The id of a file of the cloud, and its name. */
    bool openLocalFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                        NHelioSubPage* subPage, const QVariantMap& extra, bool activate) override;
    /** A document that could not be opened is found with the hidden ones only. */
    NHelioSubPage* findSubPage(const QMap<QString, QString>& parameters,
                               bool includesHidden = false) const override;
    bool closeSubPage(NHelioSubPage* subPage) override;

private:
    void fetch();
    bool prepareDirectory();
    void show(const QString& path, const QString& name);
    void showFailure(const QString& why);
    void setTitle(const QString& title);
    void openWithSystem();

    bool m_offersSystem;
    State m_state = State::Empty;
    LocalDocumentRequest m_request;
    QString m_title;
    QString m_path;
    QStackedLayout* m_stack;
    DocumentMessage* m_message;
    QWidget* m_view = nullptr;
    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<LocalDocumentFetch> m_fetch; //!< ends before its directory
};
