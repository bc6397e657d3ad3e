#include "shell/pages/ProcessPage.h"

#include "nheliostat/NHelioSubPage.h"
#include "zeolite/NxLoggerLite.h"

#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace shell {

namespace {

QLabel* plainText(const QString& objectName, const QString& text = {})
{
    auto* label = new QLabel(text);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

ProcessPage::ProcessPage(int type, QWidget* parent)
    : NHelioAppPage(parent)
    , m_type(type)
    , m_heading(plainText(QStringLiteral("documentHeading")))
    , m_hint(plainText(QStringLiteral("documentDetail")))
    , m_rows(new QFormLayout)
{
    setObjectName(QStringLiteral("processPage"));
    setAttribute(Qt::WA_StyledBackground);
    m_rows->setHorizontalSpacing(24);
    m_rows->setVerticalSpacing(10);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(64, 56, 64, 40);
    column->setSpacing(12);
    column->addWidget(m_heading);
    column->addWidget(m_hint);
    column->addSpacing(8);
    column->addLayout(m_rows);
    column->addStretch();
    m_heading->setText(kind());
    m_hint->setText(tr("Nothing is open."));
}

QString ProcessPage::kind() const
{
    return m_type == flowType ? tr("Flow chart") : tr("Process map");
}

QString ProcessPage::pageTitle() const
{
    return m_title.isEmpty() ? kind() : m_title;
}

NHelioSubPage* ProcessPage::createSubPage(NHelioSubPages* subPages)
{
    auto* subPage = new NHelioSubPage(subPages);
    subPage->setWindowTitle(pageTitle());
    return subPage;
}

void ProcessPage::notify(const QString& text)
{
    if (const auto content = ProcessPageContent::fromText(text))
        return show(*content, {});
    NxLoggerLite::writeWarning(QStringLiteral("shell"),
                               QStringLiteral("a process page cannot show \"%1\"").arg(text));
}

bool ProcessPage::openLocalFiles(const QStringList& args, const QStringList& names, NHelioProxyStrategy,
                                 NHelioSubPage*, const QVariantMap&, bool activate)
{
    const auto content = ProcessPageContent::fromFileArguments(args);
    if (!content)
        return false;
    show(*content, names.value(0));
    if (activate && initialSubPage())
        initialSubPage()->activate({}, true);
    return true;
}

void ProcessPage::show(const ProcessPageContent& content, const QString& name)
{
    if (content.isNew())
        m_title = m_type == flowType ? tr("New flow chart") : tr("New process map");
    else
        m_title = name.isEmpty() ? QStringLiteral("%1 %2").arg(kind(), content.fileId) : name;
    m_heading->setText(m_title);
    m_hint->setText(content.isNew() ? tr("It will be stored in this folder of the cloud.")
                                    : tr("This file of the cloud is open."));
    while (m_rows->rowCount() > 0)
        m_rows->removeRow(0);
    if (!content.isNew())
        addRow(tr("File"), content.fileId);
    addRow(tr("Group"), content.groupId.isEmpty() ? tr("none") : content.groupId);
    if (content.isNew())
        addRow(tr("Folder"), content.parentId == QLatin1String("0") ? tr("top folder") : content.parentId);
    if (NHelioSubPage* subPage = initialSubPage())
        subPage->setWindowTitle(m_title);
}

void ProcessPage::addRow(const QString& label, const QString& value)
{
    m_rows->addRow(plainText(QStringLiteral("documentDetail"), label),
                   plainText(QStringLiteral("documentDetail"), value));
}

} // namespace shell
