#pragma once

#include "nheliostat/NHelioPage.h"
#include "shell/pages/ProcessPageContent.h"

class QFormLayout;
class QLabel;

namespace shell {

/** A page of flow charts or process maps: shows which one it was told to work on. */
class ProcessPage final : public NHelioAppPage
{
    Q_OBJECT
public:
    /** The widget types that it is registered under. */
    static constexpr int flowType = 21;
    static constexpr int processType = 27;

    explicit ProcessPage(int type, QWidget* parent = nullptr);

    int widgetType() const override { return m_type; }
    QString pageTitle() const override;
    NHelioSubPage* createSubPage(NHelioSubPages* subPages) override;
    /** "&group id&folder id": a new one in that folder. Any other text changes nothing. */
    void notify(const QString& text) override;
    /** Does nothing: what the page was told is shown at once. */
    void load() override {}
    /** [file id, group id], and the file's name if it is known. */
    bool openLocalFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy strategy,
                        NHelioSubPage* subPage, const QVariantMap& extra, bool activate) override;

private:
    QString kind() const;
    void show(const ProcessPageContent& content, const QString& name);
    void addRow(const QString& label, const QString& value);

    int m_type;
    QString m_title;
    QLabel* m_heading;
    QLabel* m_hint;
    QFormLayout* m_rows;
};

} // namespace shell
